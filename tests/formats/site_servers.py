"""The web servers of the sites that `probe` tries, on ports that the kernel chooses."""

import base64
import ssl
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

from documents import CANARIES

# The authority and a certificate for 127.0.0.1, with its key. Nothing but these tests trusts them.
AUTHORITY = Path(__file__).resolve().with_name("site_authority.pem")
SITE = AUTHORITY.with_name("site.pem")
LOGIN = "Basic " + base64.b64encode(f"reader:{CANARIES['depot']}".encode()).decode()


class Handler(BaseHTTPRequestHandler):
    """Answers with the status that is the first part of the path."""

    def do_GET(self):  # the name is that of the base class
        status = int(self.path.split("/")[1])
        if status == 401 and self.headers["Authorization"] == LOGIN:
            status = 200
        self.send_response(status, "\x1b[31mred\x9b" if status == 299 else None)
        self.send_header("Location", "http://elsewhere.example/\x1b[31m")
        self.send_header("WWW-Authenticate", 'Basic realm="depot"')
        self.send_header("Content-Length", "0")
        self.end_headers()

    def log_message(self, *_):
        pass


class Quiet(ThreadingHTTPServer):
    def handle_error(self, *_):  # a handshake without a request
        pass


class SiteServers:
    def __init__(self):
        self.plain = Quiet(("127.0.0.1", 0), Handler)
        self.secure = Quiet(("127.0.0.1", 0), Handler)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(SITE)
        self.secure.socket = context.wrap_socket(self.secure.socket, server_side=True)
        for server in (self.plain, self.secure):
            threading.Thread(target=server.serve_forever, daemon=True).start()

    def ports(self):
        return self.plain.server_address[1], self.secure.server_address[1]

    def stop(self):
        for server in (self.plain, self.secure):
            server.shutdown()
            server.server_close()
