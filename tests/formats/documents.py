"""The site lists that the cases work on."""

# Clear passwords. None of them may be seen anywhere unless a case asks for secrets.
CANARIES = {
    "depot": "canary-depot",
    "share": "canary-share",
    "proxy": "canary-proxy",
    "proxy-b": "canary-alternate",
    "fresh": "canary-fresh",
    # This password has characters that XML does not allow: a control character and a noncharacter.
    "hostile": "canary-hostile \"',;<&>\\ \x01\x1b[31m\x9b\u202e\uffff 東 e\u0301 \U0001f600",
}

CERTIFICATES = {
    "expired": "MIIBjTCCATOgAwIBAgIBATAKBggqhkjOPQQDAjA2MRowGAYDVQQDDBFFeHBpcmVkIGF1dGhvcml0"
    "eTEYMBYGA1UECgwPVHVpIEluc3RydW1lbnRzMB4XDTAwMDEwMTAwMDAwMFoXDTAxMDEwMTAwMDAwMFowNjEa"
    "MBgGA1UEAwwRRXhwaXJlZCBhdXRob3JpdHkxGDAWBgNVBAoMD1R1aSBJbnN0cnVtZW50czBZMBMGByqGSM49"
    "AgEGCCqGSM49AwEHA0IABBtuBjUbVC8uYMT6LSq7pU54Y2n0IFpTgx0ZpnjpxGA82fupY3s40REP3iQJcAdq"
    "HhLrYKfYX1bL20yMjlJY2DKjMjAwMA8GA1UdEwEB/wQFMAMBAf8wHQYDVR0OBBYEFApSG5ZuxTknGfjKkGcl"
    "3hv8lr85MAoGCCqGSM49BAMCA0gAMEUCIFUz14KtbBmKkSEelBgpA6K7/ZtrODlC8DCIxwT4qH/0AiEA7gea"
    "leBVi8X4CPPcALGNEMJk4MqKvy2LsGy7PFYClQw=",
    # Valid until the end of the year 9999.
    "lasting": "MIIBkDCCATWgAwIBAgIBAjAKBggqhkjOPQQDAjA2MRowGAYDVQQDDBFMYXN0aW5nIGF1dGhvcml0"
    "eTEYMBYGA1UECgwPVHVpIEluc3RydW1lbnRzMCAXDTIwMDEwMTAwMDAwMFoYDzk5OTkxMjMxMjM1OTU5WjA2"
    "MRowGAYDVQQDDBFMYXN0aW5nIGF1dGhvcml0eTEYMBYGA1UECgwPVHVpIEluc3RydW1lbnRzMFkwEwYHKoZI"
    "zj0CAQYIKoZIzj0DAQcDQgAEQ7pxrULFbh+wKDqK3z7p/X8Sd7jXaFMbUd8Qzrjn/hZl+6ZqrFdq5xyZFVCQ"
    "rfG+IJzy4FTjTYIyVPBNnwf8sKMyMDAwDwYDVR0TAQH/BAUwAwEB/zAdBgNVHQ4EFgQUuIPadGWCKdORudIm"
    "uaB2HMvHSfwwCgYIKoZIzj0EAwIDSQAwRgIhALMcKs5o3u8fMH5wI6wM2YAp3bMaM7Vdwwf1lvY8WL2KAiEA"
    "4e5Q/Y6vttavCyIn7BzeZV5lUIwviTrPykJfZLe+QdA=",
    # The common name of its subject is as hostile as HOSTILE below.
    "hostile": "MIIBtDCCAVugAwIBAgIBAzAKBggqhkjOPQQDAjBJMS0wKwYDVQQDDCRhCWIiYyIs4oCuZTxmPibC"
    "mzMxbSDmnbHkuqwgZcyBIPCfmIAxGDAWBgNVBAoMD1R1aSBJbnN0cnVtZW50czAgFw0yMDAxMDEwMDAwMDBa"
    "GA85OTk5MTIzMTIzNTk1OVowSTEtMCsGA1UEAwwkYQliImMiLOKArmU8Zj4mwpszMW0g5p2x5LqsIGXMgSDw"
    "n5iAMRgwFgYDVQQKDA9UdWkgSW5zdHJ1bWVudHMwWTATBgcqhkjOPQIBBggqhkjOPQMBBwNCAAQZshpgKHcD"
    "NmaGFlZfb9AFnyJ8fusTRxRp0lKCbHxo7M8nLFVqW3aeH4Q4Yoo0QJFX3ysVcNK+oeXbNUrgniokozIwMDAP"
    "BgNVHRMBAf8EBTADAQH/MB0GA1UdDgQWBBRkWwNGXeywblBwp7QJnkx+hqMCtDAKBggqhkjOPQQDAgNHADBE"
    "AiAEUelU6DrAYqDcxDM7OuTpvaWdhTcPeJ1o3uCd05AaIgIgNEX0hOfc8wfgLfPuSOMRT+3tHwUTaVBed88Z"
    "YozYIV0=",
}

# Every text of a hostile list has these characters: the control characters that XML allows, C1 control
# characters, line breaks, invisible characters and those that change the direction of writing. It also
# has the quotes, separators and escapes of the formats, and East Asian, combining and astral characters.
HOSTILE = (
    "a&#9;b&#10;c&#13;d&#13;&#10;e&#127;&#133;&#155;31m&#8232;&#8238;f&#8294;g&#8207;&#1564;&#65279;&#173;&#8203;"
    "&quot;h&quot;,'i';&lt;j&gt;&amp;amp;&#8230; \\u001B[0m $(k) =1 東京 e\u0301 \U0001f600\U0001d518 "
)
LONG = "長" * 100 + "x" * 10
VERY_LONG = "long " * 900


def attributes(values):
    return "".join(f' {name}="{value}"' for name, value in values.items())


def site(element, name, order, address="", children="", **more):
    values = {"Type": "repository", "Name": name, "Order": order, "Enabled": 1, "Local": 0}
    values.update({"Server": address} if address else {})
    values.update(more)
    values = {key: value for key, value in values.items() if value is not None}
    return f"<{element}{attributes(values)}>{children}</{element}>"


def path(text, user="", password=""):
    return (
        f"<RelativePath>{text}</RelativePath><UserName>{user}</UserName>"
        f'<Password Encrypted="1">{password}</Password>'
    )


def server(name, order, host, **more):
    values = {
        "Type": "master",
        "SecurePort": 443,
        "ServerName": f"{name}:80",
        "ServerIP": "192.0.2.1:80",
        "Version": "5.9.1",
    }
    values.update(more)
    return site("VestaSite", name, order, f"{host}:80", path("Software"), **values)


def proxy(name, children="", **more):
    return f'<ProxyConfigList><ProxyConfig Name="{name}"{attributes(more)}>{children}</ProxyConfig></ProxyConfigList>'


def document(sites, before="", root='GlobalVersion="20260101000000" LocalVersion="20260102030405"'):
    return (
        f'<?xml version="1.0" encoding="UTF-8"?>\n<ns:SiteLists xmlns:ns="wxSiteList" {root}>{before}'
        f'<SiteList Default="1" Name="SomeGUID">{sites}</SiteList></ns:SiteLists>\n'
    )


def bundle(*names):
    texts = (CERTIFICATES.get(name, name) for name in names)
    return "<CaBundle>" + "".join(f"<CaCertificate>{t}</CaCertificate>" for t in texts) + "</CaBundle>"


def policies(values):
    texts = (f'<Setting name="{name}">{value}</Setting>' for name, value in values.items())
    return "<Policies>" + "".join(texts) + "</Policies>"


def exclusions(*hosts):
    return "<ExclusionList>" + "".join(f"<ExclusionHost>{h}</ExclusionHost>" for h in hosts) + "</ExclusionList>"


def own(sealed):
    """The agent's own list before the import of the example list."""
    sites = (
        server("Main server", 1, "pyx.example")
        + site("HttpSite", "Dépôt Nord", 2, "depot.example:8080",
               path("pub/orb", "reader", sealed["depot"]))
        + site("FTPSite", "Twin", 3, "ftp.example:21", path("Current", "anonymous"))
        + site("HttpSite", "Twin", 3, "twin.example:80", path("Current"), Local=1)
        + site("UNCSite", "Offices", 7, "FILES01", "<ShareName>Orb$</ShareName>"
               + path("2026", "svc-orb", sealed["share"]))
        + site("LocalSite", "Disk", 8, "", path("&lt;DATA&gt;/orb"), Enabled=0)
        + site("HttpSite", "Mirror", None, "mirror.example:80", path("Current"), Type="mirror")
        + site("HttpSite", "Last resort", None, "last.example:80", path("Current"), Type="fallback")
        + proxy("Site proxy",
                "<BypassLocalAddress>1</BypassLocalAddress>"
                + exclusions("pyx.example", "*.tui.example")
                + "<HttpUseAuth>1</HttpUseAuth><HttpProxyUser>agent</HttpProxyUser>"
                + f"<HttpProxyPassword>{sealed['proxy']}</HttpProxyPassword>"
                + "<AlternateHttpUseAuth>1</AlternateHttpUseAuth>"
                + "<AlternateHttpProxyUser>agent-b</AlternateHttpProxyUser>"
                + f"<AlternateHttpProxyPassword>{sealed['proxy-b']}</AlternateHttpProxyPassword>",
                HttpProxyServer="proxy.example", HttpProxyPort=3128)
    )
    return document(sites, bundle("lasting") + policies({"AskIntervalMinutes": 30, "Old": 1}))


def healthy(sealed, *certificates):
    """A list in which no check of an agent finds a fault, with these certificates."""
    sites = (
        server("Main server", 1, "pyx.example")
        + site("HttpSite", "WexHttp", 2, "update.wex.example:80", path("Current", "reader", sealed["depot"]))
        + site("FTPSite", "WexFtp", 3, "ftp.wex.example:21", path("Current", "anonymous"))
    )
    return document(sites, bundle(*(certificates or ["lasting"])))


def ailing(sealed):
    """The same with faults: a wrong order of the vendor repositories, certificates, a fault of `validate`."""
    text = healthy(sealed, "expired", "no certificate", "lasting").replace('Order="2"', 'Order="9"')
    return text.replace('Name="WexFtp"', 'Name="WexFtp" Ordre="1"')


def hostile(sealed):
    """A list with hostile text in every place except the names of elements."""
    h = HOSTILE
    address = {"ServerName": h, "ServerIP": h, "Version": h, "Type": h}
    sites = (
        server("HQ", 1, "hq.example", Version=h)
        + site("VestaSite", h + "server", 2, h, path(h, h), **address)
        + site("HttpSite", h + "http", 3, h, path(h, h, sealed["hostile"]), Type=h)
        + site("FTPSite", h + "ftp", 4, h, path(h, h, sealed["hostile"]), Type=h)
        + site("UNCSite", h + "unc", 5, h, f"<ShareName>{h}</ShareName><DomainName>{h}</DomainName>"
               + path(h, h, sealed["hostile"]), Type=h)
        + site("LocalSite", LONG, 6, "", path(LONG, LONG), Type=LONG)
        + site("HttpSite", "", 7, "", path(""), Type="")
        + proxy(h,
                exclusions(h, LONG, "")
                + f"<HttpUseAuth>1</HttpUseAuth><HttpProxyUser>{h}</HttpProxyUser>"
                + f"<HttpProxyPassword>{sealed['hostile']}</HttpProxyPassword>"
                + f"<FtpUseAuth>1</FtpUseAuth><FtpProxyUser>{h}</FtpProxyUser>"
                + f"<FtpProxyPassword>{sealed['hostile']}</FtpProxyPassword>",
                HttpProxyServer=h, HttpProxyPort=1, FtpProxyServer=LONG, FtpProxyPort=65535)
    )
    before = bundle("hostile", h, VERY_LONG) + policies({h: h, LONG: VERY_LONG, "": ""})
    return document(sites, before, f'GlobalVersion="{h}" LocalVersion="{VERY_LONG}" Type="{h}" FipsMode="{h}"')


def directory(name, order, directory_path, **more):
    return site("LocalSite", name, order, "", path(directory_path), **more)


def network(sealed, ports, authority):
    """A list whose sites are served at these ports."""
    plain, secure = ports
    address = f"127.0.0.1:{plain}"

    def http(name, order, directory_path, children="", **more):
        return site("HttpSite", name, order, address, path(directory_path) + children, **more)

    login = path("401", "reader", sealed["depot"]) + "<UseAuth>1</UseAuth>"
    return document(
        site("VestaSite", "HQ", 1, address, path("200"), Type="master", SecurePort=secure)
        + http("Hidden", 2, "403")
        + http("Moved", 3, "302")
        + http("Login", 4, "401", login)
        + http("Locked", 5, "401")
        + http("Gone", 6, "404")
        + http("Hostile", 7, "299")
        + directory("Disk", 8, "/")
        + directory("No disk", 9, "/nonexistent")
        + directory("Macro", 10, "&lt;DATA&gt;/pub")
        + http("Off", 11, "200", Enabled=0)
        + http("Mirror", None, "200", Type="mirror"),
        f"<CaBundle><CaCertificate>{authority}</CaCertificate></CaBundle>",
    )


def lists(sealed):
    """Every document below "lists", by its name."""
    return {
        "disk.xml": document(directory("Disk", 1, "/") + directory("Spare", 2, "/")),
        "no-disk.xml": document(directory("No disk", 1, "/nonexistent") + directory("Disk", 2, "/")),
        "no-disks.xml": document(directory("No disk", 1, "/nonexistent")),
        "hostile.xml": hostile(sealed),
        "harmless.xml": document(site("HttpSite", "depot", 1, "depot.example:80", path("Current"))),
        "empty.xml": document(""),
        "silent.xml": document("", "", ""),
        "idle.xml": document(
            site("HttpSite", "off", 1, "a.example", Enabled=0)
            + site("HttpSite", "mirror", None, "b.example", Type="mirror")
        ),
        "system.xml": document(
            site("HttpSite", "depot", 1, "depot.example")
            + proxy("p", "<AllowUserToConfigureProxy>1</AllowUserToConfigureProxy>", UseIEConfig=1)
        ),
        "shared-order.xml": document(
            site("HttpSite", "a", 1, "a.example")
            + site("HttpSite", "b", 1, "b.example", Enabled=0)
            + site("HttpSite", "c", 2, "c.example")
        ),
        "three.xml": document(
            site("HttpSite", "a", 1, "a.example")
            + site("HttpSite", "b", 2, "b.example", Enabled=0)
            + site("HttpSite", "c", 3, "c.example")
        ),
        "direct.xml": document(site("HttpSite", "depot", 1, "depot.example")),
        "older.xml": document(server("HQ", 1, "hq.example"), root='GlobalVersion="20200101000000"'),
        "unknown-last.xml": document(site("HttpSite", "depot", 1, "depot.example") + '<WhatSite Name="x"/>'),
        "certificates.xml": document("", bundle("expired", "lasting", "no certificate at all")),
        "expired.xml": document("", bundle("expired")),
        "lasting.xml": document("", bundle("lasting")),
        "incomplete.xml": document(server("", 1, "hq.example", Version="", ServerIP="")),
        "refused-hostile.xml": document(server(HOSTILE, 1, HOSTILE, Version=HOSTILE, Type=HOSTILE)),
        "twins.xml": document(site("HttpSite", "twin", 1, "a.example") + site("HttpSite", "twin", 2, "b.example")),
        "keyless.xml": document(server("HQ", 1, "hq.example")),
        "foreign.xml": document(site("HttpSite", "depot", 1, "a.example", path("x", "u", "QUJDREVG"))),
        "vendor.xml": document(site("HttpSite", "Vendor", 1, "update.wex.example:80", path("x", "u"))),
        "foreign-vendor.xml": document(
            site("HttpSite", "Vendor", 1, "update.wex.example:80", path("x", "u", "QUJDREVG"))
        ),
        "foreign-too.xml": document(site("HttpSite", "depot", 1, "a.example", path("x", "u", "QUJDREVH"))),
        "broken.xml": '<?xml version="1.0"?>\n<ns:SiteLists xmlns:ns="wxSiteList">\n  <SiteList></Site>\n',
        "no-markup.xml": "no markup\n",
        "other-root.xml": "<other/>\n",
        "many-unknown.xml": document("<WhatSite/>" * 1025),
        "deep.xml": "<a>" * 300 + "</a>" * 300,
        "encoding.xml": b"<a>\xc3\x28</a>\n",
    }


def fleet(sealed):
    """Every list below "fleet", by its directory."""
    sites = server("HQ", 1, "hq.example") + site("HttpSite", "depot", 2, "depot.example:80", path("Current"))
    later = 'GlobalVersion="20260202000000" LocalVersion="20260203000000"'
    return {
        "a": document(sites, bundle("lasting")),
        "b": document(sites, bundle("lasting"), later),
        "c": document(server("Old HQ", 1, "old.example") + site("HttpSite", "depot", 2, "depot.example:8080", path("x")),
                      bundle("expired"), later),
        "d": own(sealed),
        "deep/below/e": lists(sealed)["broken.xml"],
    }
