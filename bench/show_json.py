"""Prints a site list as `sitelist show --json` does.

The baseline of this command is a script that a user without the tool would write.
"""

import json
import re
import sys
import xml.etree.ElementTree as ElementTree

MASK = "********"
KINDS = {
    "HttpSite": "http",
    "VestaSite": "server",
    "KeystoneSite": "agent",
    "FTPSite": "ftp",
    "UNCSite": "unc",
    "LocalSite": "local",
}
NUMBER = re.compile(r"\s*([-+]?\d+)")


def number(text):
    match = NUMBER.match(text or "")
    return int(match.group(1)) if match else 0


def address(text):
    host, colon, port = text.rpartition(":")
    return (host, number(port)) if colon else (text, 80)


def secret(text):
    return MASK if text else ""


def http(element, child):
    server, port = address(element.get("Server", ""))
    ip, ip_port = address(element.get("ServerIP", ""))
    name, name_port = address(element.get("ServerName", ""))
    return {
        "element": element.tag,
        "name": element.get("Name", ""),
        "server": server,
        "serverPort": port,
        "serverIP": ip,
        "serverIPPort": ip_port,
        "serverName": name.partition(".")[0],
        "serverNamePort": name_port,
        "securePort": number(element.get("SecurePort")),
        "relativePath": child("RelativePath"),
        "useAuth": number(child("UseAuth")),
        "userName": child("UserName"),
        "password": secret(child("Password")),
        "version": element.get("Version", "") if element.tag == "VestaSite" else "",
    }


def ftp(element, child):
    server, port = address(element.get("Server", ""))
    return {
        "name": element.get("Name", ""),
        "server": server,
        "serverPort": port,
        "securePort": number(element.get("SecurePort")),
        "relativePath": child("RelativePath"),
        "userName": child("UserName"),
        "password": secret(child("Password")),
    }


def unc(element, child):
    return {
        "name": element.get("Name", ""),
        "server": element.get("Server", ""),
        "shareName": child("ShareName"),
        "relativePath": child("RelativePath"),
        "domainName": child("DomainName"),
        "userName": child("UserName"),
        "password": secret(child("Password")),
        "useLoggedonUserAccount": number(child("UseLoggedonUserAccount")),
    }


def local(element, child):
    return {
        "name": element.get("Name", ""),
        "relativePath": child("RelativePath"),
        "domainName": child("DomainName"),
        "userName": child("UserName"),
        "password": secret(child("Password")),
        "useLoggedonUserAccount": number(child("UseLoggedonUserAccount")),
    }


def proxy(element, child):
    http_server = element.get("HttpProxyServer", "")
    ftp_server = element.get("FtpProxyServer", "")
    which = "FtpHttp" if http_server and ftp_server else "HttpSite" if http_server else ""
    hosts = [host.text or "" for host in element.iterfind("ExclusionList/ExclusionHost")]
    fields = {
        "element": which or ("FTPSite" if ftp_server else ""),
        "name": element.get("Name", ""),
        "useIEConfig": number(element.get("UseIEConfig")) != 0,
        "allowUserToConfigureProxy": number(child("AllowUserToConfigureProxy")) != 0,
        "bypassLocalAddress": number(child("BypassLocalAddress")) != 0,
        "exclusionCount": len(hosts),
        "exclusionList": hosts,
    }
    for kind, server in (("Http", http_server), ("Ftp", ftp_server)):
        lower = kind.lower()
        fields[lower + "ProxyServer"] = server
        fields[lower + "ProxyPort"] = number(element.get(kind + "ProxyPort")) if server else 0
        for prefix, name in (("", lower), ("Alternate", "alternate" + kind)):
            fields[name + "UseAuth"] = number(child(prefix + kind + "UseAuth")) != 0
            fields[name + "ProxyUser"] = child(prefix + kind + "ProxyUser")
            fields[name + "ProxyPassword"] = secret(child(prefix + kind + "ProxyPassword"))
    return fields


READERS = {"FTPSite": ftp, "UNCSite": unc, "LocalSite": local, "ProxyConfigList": proxy}


def site(element):
    kind = element.get("Type", "")
    order = element.get("Order")
    is_proxy = element.tag == "ProxyConfigList"
    fields = {
        "kind": "proxy" if is_proxy else KINDS.get(element.tag, "unknown"),
        "enabled": number(element.get("Enabled")) != 0,
        "vestaSite": element.tag in ("VestaSite", "KeystoneSite"),
        "mirror": kind.lower() == "mirror",
        "local": number(element.get("Local")) != 0,
        "order": number(order) if order else 65535 if kind.lower() == "fallback" else 0,
        "type": kind,
    }
    if is_proxy:
        config = element.find("ProxyConfig")
        element = config if config is not None else element
    texts = {child.tag: child.text or "" for child in element}
    reader = proxy if is_proxy else READERS.get(element.tag, http)
    fields.update(reader(element, lambda name: texts.get(name, "")))
    return fields


def main(path):
    root = ElementTree.parse(path).getroot()
    document = {
        "schema_version": 2,
        "command": "show",
        "status": 0,
        "changed": False,
        "warnings": [],
        "file": path,
        "globalVersion": root.get("GlobalVersion", ""),
        "localVersion": root.get("LocalVersion", ""),
        "type": root.get("Type", "Client"),
        "fipsMode": root.get("FipsMode"),
        "result": 0,
        "sites": [site(element) for element in root.find("SiteList")],
    }
    print(json.dumps(document, indent=2))


main(sys.argv[1])
