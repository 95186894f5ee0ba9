#!/usr/bin/env python3
"""An FTP server on the loopback address for tests: ftp_server.py DIRECTORY

Prints its port. Standard input has the user and the password, or nothing for anonymous logins.
"""

import logging
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer


def main():
    logging.disable()
    login = sys.stdin.read().splitlines()
    authorizer = DummyAuthorizer()
    if login:
        authorizer.add_user(login[0], login[1], sys.argv[1])
    else:
        authorizer.add_anonymous(sys.argv[1])
    FTPHandler.authorizer = authorizer
    FTPHandler.banner = "Depot ready"
    FTPHandler.auth_failed_timeout = 0
    server = FTPServer(("127.0.0.1", 0), FTPHandler)
    print(server.address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
