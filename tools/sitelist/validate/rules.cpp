#include "tools/sitelist/validate/rules.h"

#include <algorithm>

namespace tool {
namespace {

constexpr const char* c_completeServer =
    R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80" )"
    R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)";

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
            "There is nothing to read. An import fails and changes nothing.", "Check the path.",
            "sitelist validate incomming/SiteList.xml", "sitelist validate incoming/SiteList.xml",
            exitFile),
      error("unreadable-file", "the file is a regular file that can be read",
            "The list cannot be checked because its bytes cannot be read.",
            "Name a regular file, not a directory or a device, and check its permissions. To read "
            "a pipe, use - as the name.",
            "sitelist validate incoming", "sitelist validate incoming/SiteList.xml", exitFile),
      error("invalid-encoding", "the bytes are valid UTF-8, UTF-16 or UTF-32",
            "The agent refuses a document with an invalid byte. Usually the document was saved in "
            "an 8-bit encoding such as Latin-1, or was cut in the middle of a character.",
            "Save the document as UTF-8, or request it again from the server.",
            R"(Name="D<E9>pot" with the single byte E9, as Latin-1 has it)",
            R"(Name="Dépot" with the bytes C3 A9, as UTF-8 has it)", exitDocument),
      error("over-limit", "the document is within the limits of size and depth",
            "A document far larger or deeper than any real list could take all of the agent's "
            "memory, so the agent refuses it.",
            "Check where the document comes from. No real list is that large or deep.",
            "a million nested elements",
            "four nested elements: <ns:SiteLists>, <SiteList>, <HttpSite>, <RelativePath>",
            exitDocument),
      error("not-well-formed", "the document is well-formed XML without a DOCTYPE",
            "The agent reads nothing from a document that is not XML. It also refuses a DOCTYPE. "
            "No list needs one, and its entities can be used for attacks.",
            "Fix the document at the reported place. The cause may be before that place.",
            "<RelativePath>Current</RelativPath>", "<RelativePath>Current</RelativePath>",
            exitDocument),
      error("unknown-site", "the last site element is of a known kind",
            "The kind of the last site determines the result of the whole read. The agent treats "
            "such a list as unreadable and refuses to import it.",
            "Correct the name of the element. It is case-sensitive. The known elements are "
            "VestaSite, KeystoneSite, HttpSite, FTPSite, UNCSite, LocalSite and ProxyConfigList.",
            R"(<HTTPSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            exitDocument),
      error("no-sites", "the list has at least one site",
            "An agent with an empty list has no management server and no repository. It therefore "
            "refuses an empty list.",
            "Put the sites into the first \"SiteList\" directly below the root element.",
            "<SiteList/>",
            R"(<SiteList><HttpSite Name="Depot" Server="depot.example:80"/></SiteList>)"),
      error("no-server", "the list has a management server",
            "With such a list, a managed agent would have no management server.",
            "Add a complete \"VestaSite\". For an agent that is not managed, use --unmanaged.",
            R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)",
            c_completeServer),
      error(
          "server-not-local", "the server is not local",
          "A local site is for one agent only. All agents use the management server.",
          "Set the attribute \"Local\" of the first \"VestaSite\" to 0, or remove the attribute.",
          R"(<VestaSite Type="master" Name="Main" Local="1" Server="pyx.example:80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)",
          R"(<VestaSite Type="master" Name="Main" Local="0" Server="pyx.example:80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)"),
      error("server-kind-http", "the server is reached over HTTP",
            "The agent-to-server protocol uses HTTP. A list read from a document cannot break this "
            "rule, but records that a program creates can.",
            "Set \"eSiteKind\" of the server's record to SITE_KIND_HTTP.",
            "site.eSiteKind = SITE_KIND_FTP;", "site.eSiteKind = SITE_KIND_HTTP;"),
      error(
          "server-type-master", "the server's type is \"master\"",
          "The type is the role of a site. The management server is the master. Sites of other "
          "types are for downloads.",
          "Set \"Type\" of the first \"VestaSite\" to \"master\".",
          R"(<VestaSite Type="repository" Name="Main" Server="pyx.example:80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)",
          c_completeServer),
      error("server-element", "the server's element is \"VestaSite\"",
            "The element shows that the site uses the agent-to-server protocol. A list read from a "
            "document cannot break this rule, but records that a program creates can.",
            "Set the element of the record to \"VestaSite\".", "site.http.szElement = HttpSite",
            "site.http.szElement = VestaSite"),
      error(
          "server-name", "the server has a name",
          "Processes of the agent read the name of their management server.",
          "Give the first \"VestaSite\" a \"Name\".",
          R"(<VestaSite Type="master" Name="" Server="pyx.example:80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)",
          c_completeServer),
      error(
          "server-address", "the server has an address",
          "Processes of the agent use this address to reach their management server.",
          "Give the first \"VestaSite\" a \"Server\", as HOST:PORT.",
          R"(<VestaSite Type="master" Name="Main" Server=":80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)",
          c_completeServer),
      error("server-ip-address", "the server has an IP address",
            "Processes of the agent use the IP address if the host name cannot be resolved.",
            "Give the first \"VestaSite\" a \"ServerIP\". Write an IPv6 address in brackets.",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80" )"
            R"(ServerIP="" ServerName="PYX:80"><RelativePath>Software</RelativePath></VestaSite>)",
            c_completeServer),
      error(
          "server-computer-name", "the server has a computer name",
          "Processes of the agent read the computer name of the management server and its two "
          "addresses.",
          "Give the first \"VestaSite\" a \"ServerName\".",
          R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80" )"
          R"(ServerIP="[2001:db8::10]:80" ServerName=""><RelativePath>Software</RelativePath></VestaSite>)",
          c_completeServer),
      error("server-path", "the server has a path",
            "The files that the agent downloads from its management server are below this path.",
            "Give the first \"VestaSite\" a \"RelativePath\".",
            R"(<VestaSite Type="master" Name="Main" Server="pyx.example:80" )"
            R"(ServerIP="[2001:db8::10]:80" ServerName="PYX:80"><RelativePath/></VestaSite>)",
            c_completeServer),
      error("server-request-key", "a server with a version has its request key",
            "The agent signs its requests to such a server with this key. The server sends the key "
            "with the list. Without the key, the agent cannot use the new server.",
            "Put a reqseckey.bin or req2048seckey.bin that is not empty into the directory of the "
            "list.",
            "incoming: SiteList.xml srpubkey.bin",
            "incoming: SiteList.xml srpubkey.bin reqseckey.bin"),
      error("server-public-key", "a server with a version has its public key",
            "The agent uses this key to check that an answer comes from its management server. The "
            "server sends the key with the list.",
            "Put a srpubkey.bin or sr2048pubkey.bin that is not empty into the directory of the "
            "list.",
            "incoming: SiteList.xml reqseckey.bin",
            "incoming: SiteList.xml reqseckey.bin srpubkey.bin"),

      warning("key-files-unchecked", "the key files of a server can be checked",
              "Key files must be in the directory of the list, and standard input has no "
              "directory. An import may not find them.",
              "Validate the file itself, in the directory from which it will be imported.",
              "sitelist validate - <incoming/SiteList.xml",
              "sitelist validate incoming/SiteList.xml"),
      warning(
          "root-element", "the root is \"ns:SiteLists\" with xmlns:ns=\"wxSiteList\"",
          "The agent reads a list with any root element, so such a list is valid. It edits only "
          "a list with this root. `sitelist edit`, `sitelist modify` and `sitelist "
          "derive-server-list` refuse any other root. `sitelist import`, `sitelist install` and "
          "`sitelist server-list` refuse a root that is not \"SiteLists\" with some prefix.",
          "Name the root \"ns:SiteLists\" and give it xmlns:ns=\"wxSiteList\".",
          R"(<SiteLists GlobalVersion="20260914083012">)",
          R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="20260914083012">)"),
      warning("missing-global-version", "the root has a \"GlobalVersion\"",
              "Agents and servers compare this version to find out whether an agent has the latest "
              "list. The agent replaces a missing version with one of its own.",
              "Add the version of the list to the root element.",
              R"(<ns:SiteLists xmlns:ns="wxSiteList">)",
              R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="20260914083012">)"),
      warning("policies-after-sites", "\"Policies\" is before \"SiteList\"",
              "Reading ends with the first \"SiteList\". Settings after it are ignored.",
              "Move \"Policies\" before \"SiteList\".", "<SiteList/><Policies/>",
              "<Policies/><SiteList/>"),
      warning("second-site-list", "there is one \"SiteList\"",
              "Only the first one is read. The agent ignores the sites of the others.",
              "Put all sites into one \"SiteList\".", "<SiteList/><SiteList/>", "<SiteList/>"),
      warning(
          "second-ca-bundle", "there is one \"CaBundle\"",
          "Only the first one is read. The agent does not trust the certificates of the others.",
          "Put all certificates into one \"CaBundle\".", "<CaBundle/><CaBundle/>", "<CaBundle/>"),
      warning(
          "second-proxy-config", "a \"ProxyConfigList\" has one \"ProxyConfig\"",
          "The last one replaces all others completely.", "Keep only the intended one.",
          R"(<ProxyConfigList><ProxyConfig Name="A"/><ProxyConfig Name="B"/></ProxyConfigList>)",
          R"(<ProxyConfigList><ProxyConfig Name="B"/></ProxyConfigList>)"),
      warning(
          "unknown-element", "every element of \"SiteList\" is a site",
          "An unknown element becomes an empty site. An import writes this site as an HTTP site "
          "without name and address.",
          "Correct the name of the element. It is case-sensitive.",
          R"(<FtpSite Type="repository" Name="Files" Server="ftp.example:21"/>)",
          R"(<FTPSite Type="repository" Name="Files" Server="ftp.example:21"/>)"),
      warning(
          "unknown-child", "every child element is known",
          "The agent does not read an unknown element, and an import drops it.",
          "Correct the name of the element. It is case-sensitive.",
          R"(<HttpSite Name="Depot" Server="depot.example:80"><Path>Current</Path></HttpSite>)",
          R"(<HttpSite Name="Depot" Server="depot.example:80"><RelativePath>Current</RelativePath></HttpSite>)"),
      warning("unknown-attribute", "every attribute is known",
              "The agent does not read an unknown attribute, and an import drops it.",
              "Correct the name of the attribute. It is case-sensitive.",
              R"(<HttpSite Name="Depot" Oder="3" Server="depot.example:80"/>)",
              R"(<HttpSite Name="Depot" Order="3" Server="depot.example:80"/>)"),
      warning("repeated-child", "a site has each child element at most once",
              "Only the last one is used. The others are lost.", "Keep only the intended one.",
              "<LocalSite "
              "Name=\"Disk\"><RelativePath>/a</RelativePath><RelativePath>/b</RelativePath></"
              "LocalSite>",
              "<LocalSite Name=\"Disk\"><RelativePath>/b</RelativePath></LocalSite>"),
      warning("site-without-name", "every site has a name",
              "Names identify sites in logs and on the command line.", "Give the site a \"Name\".",
              R"(<HttpSite Type="repository" Server="depot.example:80"/>)",
              R"(<HttpSite Type="repository" Name="Depot" Server="depot.example:80"/>)"),
      warning("site-without-address", "every site except a LocalSite has an address",
              "The agent tries the site but can never reach it.", "Give the site a \"Server\".",
              R"(<UNCSite Type="repository" Name="Offices"/>)",
              R"(<UNCSite Type="repository" Name="Offices" Server="FILES01"/>)"),
      warning("duplicate-name", "no two sites of one kind share a name",
              "If two sites of one kind have the same name, the name does not identify a site.",
              "Give each site a name of its own.",
              R"(<LocalSite Name="Disk"/><LocalSite Name="Disk"/>)",
              R"(<LocalSite Name="Disk"/><LocalSite Name="Disk 2"/>)"),
      warning(
          "duplicate-order", "no two enabled sites share an order",
          "Sites with the same order are tried in the order of the list. That may not be intended. "
          "If several management servers have the same order, the library returns only the first "
          "one. A missing \"Order\" is read as 0, or as 65535 for a fallback site.",
          "Give each enabled site its own \"Order\". A mirror has no place in the search order and "
          "needs none.",
          R"(<LocalSite Name="A" Enabled="1" Order="2"/><LocalSite Name="B" Enabled="1" Order="2"/>)",
          R"(<LocalSite Name="A" Enabled="1" Order="2"/><LocalSite Name="B" Enabled="1" Order="3"/>)"),
      warning("order-number", "\"Order\" is a number",
              "A text that does not begin with a number is read as 0, the first place. A text "
              "after a number is ignored.",
              "Write the order in decimal digits.", R"(<LocalSite Name="Disk" Order="third"/>)",
              R"(<LocalSite Name="Disk" Order="3"/>)"),
      warning("flag-value", "a flag is 0 or 1",
              "A flag is read as a number. The words yes, true and on are read as 0, so a site "
              "with Enabled=\"true\" is disabled.",
              "Write 1 or 0.", R"(<LocalSite Name="Disk" Enabled="true"/>)",
              R"(<LocalSite Name="Disk" Enabled="1"/>)"),
      warning("port-number", "a port is a number up to 65535",
              "A text that does not begin with a number is read as 0, and a text after a number is "
              "ignored. A port over 65535 cannot be reached.",
              "Write the port in decimal digits. Write a path into \"RelativePath\".",
              R"(<HttpSite Name="Depot" Server="depot.example:http"/>)",
              R"(<HttpSite Name="Depot" Server="depot.example:80"/>)"),
      warning("ambiguous-address", "an IPv6 address has brackets and a port",
              "An address is split at its last colon. Without a port, the end of an IPv6 address "
              "is read as the port.",
              "Write [ADDRESS]:PORT.", R"(<HttpSite Name="Depot" Server="[2001:db8::10]"/>)",
              R"(<HttpSite Name="Depot" Server="[2001:db8::10]:80"/>)"),
      warning("text-cut", "every text fits into its field",
              "The agent cuts a longer text and reports it only in the detail log. Most fields "
              "hold at most 259 characters. A path holds 519, a computer name 260 and an IP "
              "address 99.",
              "Shorten the text.",
              R"(<HttpSite Name="Depot in the second building, with ... and 300 characters more">)",
              R"(<HttpSite Name="Depot 2">)"),
      warning(
          "password-form", "a password is encrypted",
          "A password that is not encrypted is read as an empty one, even if it is marked as "
          "encrypted. A clear password must not be in a document.",
          "Encrypt the password with `sitelist protect` and the password key of the agent that "
          "will read it.",
          R"(<LocalSite Name="Disk"><Password Encrypted="1">secret</Password></LocalSite>)",
          R"(<LocalSite Name="Disk"><Password Encrypted="1">AQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEB</Password></LocalSite>)"),
      warning(
          "proxy-without-port", "a proxy server has a port",
          "The port has its own attribute. Without it the agent uses port 0, which cannot be "
          "reached. A port after the host name is not split off.",
          "Write the port into \"HttpProxyPort\" or \"FtpProxyPort\".",
          R"(<ProxyConfigList><ProxyConfig HttpProxyServer="proxy.example:3128"/></ProxyConfigList>)",
          R"(<ProxyConfigList><ProxyConfig HttpProxyServer="proxy.example" HttpProxyPort="3128"/></ProxyConfigList>)"),
      warning(
          "exclusions-cut", "the exclusion hosts fit into one text",
          "The agent keeps all hosts of a proxy in one text of at most 3999 characters, "
          "separated by semicolons. A single host has at most 3998. A host that does not fit is "
          "dropped, and the agent reaches it through the proxy.",
          "Shorten the list, for example with wildcards such as *.example.",
          "<ExclusionHost>host-400.branch.example</ExclusionHost> as the last of 400 hosts",
          "<ExclusionHost>*.branch.example</ExclusionHost>"),
      warning("certificate-unreadable", "every CA certificate can be read",
              "The text cannot be used as a certificate, so the agent does not trust the servers "
              "that depend on it.",
              "Add the certificate again, in PEM form or as base64 of its DER form.",
              "<CaCertificate>ca.pem</CaCertificate>",
              "<CaCertificate>-----BEGIN CERTIFICATE----- ... -----END "
              "CERTIFICATE-----</CaCertificate>"),
      warning("certificate-expired", "no CA certificate has expired",
              "The agent no longer accepts servers whose certificates depend on an expired CA "
              "certificate.",
              "Replace the certificate with the new certificate of the authority.",
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
