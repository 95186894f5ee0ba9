#include "tools/sitelist/validate/rules.h"

#include <algorithm>

namespace tool {
namespace {

constexpr Rule error(const char* name, const char* summary, const char* why, const char* mend,
                     const char* faulty, const char* mended, ExitStatus status = exitNegative) {
  return {name, Severity::Error, status, summary, why, mend, faulty, mended};
}

constexpr Rule warning(const char* name, const char* summary, const char* why, const char* mend,
                       const char* faulty, const char* mended) {
  return {name, Severity::Warning, exitSuccess, summary, why, mend, faulty, mended};
}

}  // namespace

const std::vector<Rule>& allRules() {
  static const std::vector<Rule> rules = {
      error("missing-file", "the file exists",
            "There is nothing to read; an import fails and changes nothing.", "Check the path.",
            "sitelist validate incomming/SiteList.xml", "sitelist validate incoming/SiteList.xml",
            exitFile),
      error(
          "unreadable-file", "it is a regular file that may be read",
          "The bytes cannot be had, so nothing can be said of the list.",
          "Name a regular file, not a directory or a device, and check its permissions. A pipe is "
          "read with - as the name.",
          "sitelist validate incoming", "sitelist validate incoming/SiteList.xml", exitFile),
      error("invalid-encoding", "its bytes are valid UTF-8, UTF-16 or UTF-32",
            "One wrong byte makes all of the text doubtful, so the agent refuses the document. "
            "Mostly it was saved in a national encoding, or cut in the middle of a character.",
            "Save the document as UTF-8, or have it sent again by the server.",
            R"(Name="D<E9>pot" with the single byte E9, as Latin-1 has it)",
            R"(Name="Dépot" with the bytes C3 A9, as UTF-8 has it)", exitDocument),
      error("over-limit", "it is within the limits of size and depth",
            "A document far larger or deeper than any real list could take all of the agent's "
            "memory, so the agent refuses it.",
            "Find out where the document comes from; no real list is that large or deep.",
            "a million elements nested one in another",
            "<ns:SiteLists>, <SiteList>, <HttpSite>, <RelativePath>: four", exitDocument),
      error("not-well-formed", "it is well-formed XML without a DOCTYPE",
            "Of a document that is no XML the agent reads nothing. A DOCTYPE is refused as well: "
            "no list needs one, and its entities can be used for attacks.",
            "Mend the document at the place named; the fault may begin a little before it.",
            "<RelativePath>Current</RelativPath>", "<RelativePath>Current</RelativePath>",
            exitDocument),
      error("unknown-site", "the last site's element is of a known kind",
            "The kind of the last site decides the result of a whole read: the agent takes such "
            "a list for unreadable and refuses to import it.",
            "Correct the element's name; case counts. Kinds are VestaSite, KeystoneSite, HttpSite, "
            "FTPSite, UNCSite, LocalSite and ProxyConfigList.",
            R"(<HTTPSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            exitDocument),
      error("no-sites", "the list has at least one site",
            "An agent whose list is empty has no place to go to, so an empty list is never "
            "imported.",
            "Put the sites into the first \"SiteList\" directly below the root.", "<SiteList/>",
            R"(<SiteList><HttpSite Name="Depot" Server="depot.example:80"/></SiteList>)"),
      error("no-server", "the list has a management server",
            "A managed agent that took such a list would no longer know whom to report to.",
            "Add a complete \"VestaSite\". For an agent that is not managed, check with "
            "--unmanaged.",
            R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80"/>)"),
      error("server-not-local", "the server is not local",
            "A local site is known to one agent alone; the management server is there for all.",
            "Set \"Local\" of the first \"VestaSite\" to 0, or leave it out.",
            R"(<VestaSite Type="master" Name="Main" Local="1" Server="pyx.example:80"/>)",
            R"(<VestaSite Type="master" Name="Main" Local="0" Server="pyx.example:80"/>)"),
      error("server-kind-http", "the server is reached over HTTP",
            "The agent-to-server protocol runs over HTTP. A list that was read from a document "
            "cannot break this rule; a program that makes its records itself can.",
            "Give the record of the server the HTTP kind.", "site.eSiteKind = SITE_KIND_FTP;",
            "site.eSiteKind = SITE_KIND_HTTP;"),
      error("server-type-master", "the server's type is \"master\"",
            "The type says what a site is to the agent: the management server is its master, "
            "other types are places for downloads.",
            "Set \"Type\" of the first \"VestaSite\" to master.",
            R"(<VestaSite Type="repository" Name="Main" Server="pyx.example:80"/>)",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80"/>)"),
      error("server-element", "the server's element is \"VestaSite\"",
            "The element says that the site speaks the agent-to-server protocol. A list that was "
            "read from a document cannot break this rule; a program that makes its records itself "
            "can.",
            "Name the element of the record \"VestaSite\".", "site.http.szElement = HttpSite",
            "site.http.szElement = VestaSite"),
      error("server-name", "the server has a name",
            "The programs of the agent that ask for their server are told its name; an empty one "
            "names no server.",
            "Give the first \"VestaSite\" a \"Name\".",
            R"(<VestaSite Type="master" Name="" Server="pyx.example:80"/>)",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80"/>)"),
      error("server-address", "the server has an address",
            "It is where the programs of the agent are told to find their server.",
            "Give the first \"VestaSite\" a \"Server\", as HOST:PORT.",
            R"(<VestaSite Type="master" Name="Main" Server=":80"/>)",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80"/>)"),
      error("server-ip-address", "the server has an IP address",
            "The programs of the agent are told the IP address, too, so that they reach the server "
            "where its host name cannot be resolved.",
            "Give the first \"VestaSite\" a \"ServerIP\"; IPv6 addresses stand in brackets.",
            R"(<VestaSite Type="master" Name="Main" ServerIP=""/>)",
            R"(<VestaSite Type="master" Name="Main" ServerIP="[2001:db8::10]:80"/>)"),
      error(
          "server-computer-name", "the server has a computer name",
          "The programs of the agent are told the server's NetBIOS name beside its two addresses.",
          "Give the first \"VestaSite\" a \"ServerName\".",
          R"(<VestaSite Type="master" Name="Main" ServerName=""/>)",
          R"(<VestaSite Type="master" Name="Main" ServerName="PYX:80"/>)"),
      error("server-path", "the server has a path",
            "What the agent fetches from its server lies below this path.",
            "Give the first \"VestaSite\" a \"RelativePath\".",
            "<VestaSite><RelativePath/></VestaSite>",
            "<VestaSite><RelativePath>Software</RelativePath></VestaSite>"),
      error("server-request-key", "a server with a version has its request key",
            "The agent signs what it asks such a server for. The key travels beside the list; "
            "without it the agent could not talk to the server that it was just given.",
            "Put reqseckey.bin or req2048seckey.bin, not empty, into the directory of the list.",
            "incoming: SiteList.xml srpubkey.bin",
            "incoming: SiteList.xml srpubkey.bin reqseckey.bin"),
      error("server-public-key", "a server with a version has its public key",
            "With it the agent checks that an answer comes from its server. It travels beside "
            "the list.",
            "Put srpubkey.bin or sr2048pubkey.bin, not empty, into the directory of the list.",
            "incoming: SiteList.xml reqseckey.bin",
            "incoming: SiteList.xml reqseckey.bin srpubkey.bin"),

      warning("key-files-unchecked", "the key files of a server can be looked for",
              "Key files are looked for beside the list, and standard input is in no directory. "
              "Whether an import would find them is not known.",
              "Validate the file itself, in the directory from which it will be imported.",
              "sitelist validate - <incoming/SiteList.xml",
              "sitelist validate incoming/SiteList.xml"),
      warning("root-element", "the root is \"ns:SiteLists\" of \"wxSiteList\"",
              "Reading takes any root, editing does not: `sitelist modify` and `sitelist "
              "derive-server-list` refuse the document.",
              "Name the root \"ns:SiteLists\" and give it xmlns:ns=\"wxSiteList\".",
              R"(<SiteLists GlobalVersion="20260914083012">)",
              R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="20260914083012">)"),
      warning("missing-global-version", "the root has a \"GlobalVersion\"",
              "By it agents and server tell whether an agent has the latest list. The agent "
              "writes a version of its own in place of the missing one.",
              "Give the root the version of the list.", R"(<ns:SiteLists xmlns:ns="wxSiteList">)",
              R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="20260914083012">)"),
      warning("policies-after-sites", "\"Policies\" stand in front of \"SiteList\"",
              "Reading ends with the first \"SiteList\"; settings behind it are not loaded.",
              "Move \"Policies\" in front of \"SiteList\".", "<SiteList/><Policies/>",
              "<Policies/><SiteList/>"),
      warning("second-site-list", "there is one \"SiteList\"",
              "Only the first one is read; the sites of all others are not there for the agent.",
              "Put all sites into one \"SiteList\".", "<SiteList/><SiteList/>", "<SiteList/>"),
      warning("second-ca-bundle", "there is one \"CaBundle\"",
              "Only the first one is read; the agent does not trust the certificates of others.",
              "Put all certificates into one \"CaBundle\".", "<CaBundle/><CaBundle/>",
              "<CaBundle/>"),
      warning(
          "second-proxy-config", "a \"ProxyConfigList\" has one \"ProxyConfig\"",
          "Of several the last one replaces all others, with nothing kept of them.",
          "Keep the one that is meant.",
          R"(<ProxyConfigList><ProxyConfig Name="A"/><ProxyConfig Name="B"/></ProxyConfigList>)",
          R"(<ProxyConfigList><ProxyConfig Name="B"/></ProxyConfigList>)"),
      warning("unknown-element", "every element of \"SiteList\" is a site",
              "An element that no reader knows becomes an empty site, which an import writes back "
              "as an HTTP site without name and address.",
              "Correct the element's name; case counts.",
              R"(<FtpSite Type="repository" Name="Files" Server="ftp.example:21"/>)",
              R"(<FTPSite Type="repository" Name="Files" Server="ftp.example:21"/>)"),
      warning(
          "unknown-child", "every child element is one that is read",
          "An element that nobody reads changes nothing, and an import drops it.",
          "Correct the element's name; case counts.",
          R"(<HttpSite Name="Depot" Server="depot.example:80"><Path>Current</Path></HttpSite>)",
          R"(<HttpSite Name="Depot" Server="depot.example:80"><RelativePath>Current</RelativePath></HttpSite>)"),
      warning("unknown-attribute", "every attribute is one that is read",
              "An attribute that nobody reads changes nothing, and an import drops it.",
              "Correct the attribute's name; case counts.",
              R"(<HttpSite Name="Depot" Oder="3" Server="depot.example:80"/>)",
              R"(<HttpSite Name="Depot" Order="3" Server="depot.example:80"/>)"),
      warning("repeated-child", "a site has each child element once",
              "Of several the last one counts; what the others say is lost.",
              "Keep the one that is meant.",
              "<LocalSite Name=\"Disk\"><RelativePath>/a</RelativePath>"
              "<RelativePath>/b</RelativePath></LocalSite>",
              "<LocalSite Name=\"Disk\"><RelativePath>/b</RelativePath></LocalSite>"),
      warning("site-without-name", "every site has a name",
              "Sites are told apart by their names, in logs as well as on the command line.",
              "Give the site a \"Name\".",
              R"(<HttpSite Type="repository" Server="depot.example:80"/>)",
              R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)"),
      warning("site-without-address", "every site but a local one has an address",
              "The agent tries the site in its turn and never reaches it.",
              "Give the site a \"Server\".", R"(<UNCSite Type="repository" Name="Offices"/>)",
              R"(<UNCSite Type="repository" Name="Offices" Server="FILES01"/>)"),
      warning("duplicate-name", "no two sites of one kind share a name",
              "Nobody can say which of them is meant.", "Give each site a name of its own.",
              R"(<LocalSite Name="Disk"/><LocalSite Name="Disk"/>)",
              R"(<LocalSite Name="Disk"/><LocalSite Name="Disk 2"/>)"),
      warning(
          "duplicate-order", "no two enabled sites share an order",
          "Nothing says which of them is tried first, and of several management servers "
          "with one order only the first is told to those who ask for the servers. A missing "
          "\"Order\" counts as 0, that of a fallback site as 65535.",
          "Give each enabled site an \"Order\" of its own. A mirror has no place in the search "
          "order and needs none.",
          R"(<LocalSite Name="A" Enabled="1" Order="2"/><LocalSite Name="B" Enabled="1" Order="2"/>)",
          R"(<LocalSite Name="A" Enabled="1" Order="2"/><LocalSite Name="B" Enabled="1" Order="3"/>)"),
      warning("order-number", "\"Order\" is a number",
              "What does not begin with a number counts as 0, the first place of all; what follows "
              "a number is passed over.",
              "Write the order in decimal digits.", R"(<LocalSite Name="Disk" Order="third"/>)",
              R"(<LocalSite Name="Disk" Order="3"/>)"),
      warning("flag-value", "a flag is 0 or 1",
              "A flag is read as a number: yes, true and on count as 0, so a site that is "
              "Enabled=\"true\" is disabled.",
              "Write 1 or 0.", R"(<LocalSite Name="Disk" Enabled="true"/>)",
              R"(<LocalSite Name="Disk" Enabled="1"/>)"),
      warning("port-number", "a port is a number up to 65535",
              "What does not begin with a number counts as 0, what follows a number is passed "
              "over, and nothing can be reached at a port over 65535.",
              "Write the port in decimal digits, and a path into \"RelativePath\".",
              R"(<HttpSite Name="Depot" Server="depot.example:http"/>)",
              R"(<HttpSite Name="Depot" Server="depot.example:80"/>)"),
      warning("ambiguous-address", "an IPv6 address has brackets and a port",
              "An address is cut at its last colon, so the end of an IPv6 address that has no port "
              "is taken for one.",
              "Write [ADDRESS]:PORT.", R"(<HttpSite Name="Depot" Server="[2001:db8::10]"/>)",
              R"(<HttpSite Name="Depot" Server="[2001:db8::10]:80"/>)"),
      warning("text-cut", "every text fits into its field",
              "The agent keeps a text only as far as its field goes: 259 characters as a rule, 519 "
              "of a path, 260 of a computer name, 99 of an IP address. The rest is lost without a "
              "word.",
              "Shorten the text.",
              R"(<HttpSite Name="Depot in the second building, with ... and 300 characters more">)",
              R"(<HttpSite Name="Depot 2">)"),
      warning(
          "password-form", "a password is in protected form",
          "What is not in the protected form reads as an empty password, whether it is marked "
          "as encrypted or not. And a clear password must not stand in a document.",
          "Protect the password with `sitelist protect`, on the agent that is to read it.",
          R"(<LocalSite Name="Disk"><Password Encrypted="1">secret</Password></LocalSite>)",
          R"(<LocalSite Name="Disk"><Password Encrypted="1">AQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEB</Password></LocalSite>)"),
      warning(
          "proxy-without-port", "a proxy server has a port",
          "The port stands in an attribute of its own. Without it the agent has port 0, at "
          "which no proxy answers; a port behind the host name is not split off.",
          "Write the port into \"HttpProxyPort\" or \"FtpProxyPort\".",
          R"(<ProxyConfigList><ProxyConfig HttpProxyServer="proxy.example:3128"/></ProxyConfigList>)",
          R"(<ProxyConfigList><ProxyConfig HttpProxyServer="proxy.example" HttpProxyPort="3128"/></ProxyConfigList>)"),
      warning("exclusions-cut", "the exclusion hosts fit into 3999 characters",
              "All hosts of a proxy stand in one text with a semicolon between them. A host that "
              "no longer fits is dropped, and the agent reaches it through the proxy.",
              "Shorten the list, with wildcards such as *.example.",
              "<ExclusionHost>host-400.branch.example</ExclusionHost> as the last of 400 hosts",
              "<ExclusionHost>*.branch.example</ExclusionHost>"),
      warning("certificate-unreadable", "every CA certificate can be read",
              "The text is handed on as it stands, and nobody can make a certificate of it: the "
              "agent does not trust the servers that it was to vouch for.",
              "Put the certificate in again, in PEM form or as base64 of its DER form.",
              "<CaCertificate>ca.pem</CaCertificate>",
              "<CaCertificate>-----BEGIN CERTIFICATE----- ... -----END CERTIFICATE-----"
              "</CaCertificate>"),
      warning("certificate-expired", "no CA certificate has expired",
              "The agent no longer accepts servers whose certificate rests on it.",
              "Put in the authority's new certificate, and take the old one out.",
              "<CaCertificate> with a \"valid until\" in the past (see `sitelist certs`)",
              "<CaCertificate> with a \"valid until\" in the future"),
  };
  return rules;
}

const Rule* findRule(const std::string& name) {
  const std::vector<Rule>& rules = allRules();
  const auto found =
      std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) { return name == rule.name; });
  return found == rules.end() ? nullptr : &*found;
}

const char* nameOf(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

std::string ruleHelp(Severity severity) {
  std::string help;
  for (const Rule& rule : allRules()) {
    if (rule.severity != severity) continue;
    std::string line = std::string("  ") + rule.name;
    line.resize(26, ' ');
    help += line + rule.summary + '\n';
  }
  return help;
}

}  // namespace tool
