#include "tools/sitelist/edit/field_rules.h"

#include <algorithm>
#include <limits>

#include "sitehlp/site.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace tool {
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

using Rules = std::vector<FieldRule>;

constexpr std::int64_t c_maxText = sitehlp::c_textCapacity - 1;
constexpr std::int64_t c_maxPath = sitehlp::c_pathCapacity - 1;
constexpr std::int64_t c_maxNetbios = sitehlp::c_netbiosCapacity - 1;
constexpr std::int64_t c_maxServerIp = sitehlp::c_serverIpCapacity - 1;
constexpr std::int64_t c_maxNumber = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t c_maxPort = 65535;

FieldRule attribute(const char* name, const wchar_t* xmlName, const wchar_t* initial = L"") {
  return {name, FieldForm::Text, Spot::Attribute, xmlName, initial, c_maxText};
}

FieldRule flagAttribute(const char* name, const wchar_t* xmlName, const wchar_t* initial) {
  return {name, FieldForm::Flag, Spot::Attribute, xmlName, initial};
}

FieldRule portAttribute(const char* name, const wchar_t* xmlName) {
  return {name,      FieldForm::PortOrNone, Spot::Attribute, xmlName, L"0",
          c_maxPort, Presence::WhenGiven};
}

FieldRule child(const char* name, const wchar_t* xmlName, std::int64_t limit = c_maxText) {
  return {name, FieldForm::Text, Spot::Child, xmlName, L"", limit};
}

FieldRule flagChild(const char* name, const wchar_t* xmlName) {
  return {name, FieldForm::Flag, Spot::Child, xmlName, L"0"};
}

FieldRule numberChild(const char* name, const wchar_t* xmlName) {
  return {name, FieldForm::Number, Spot::Child, xmlName, L"0", c_maxNumber};
}

FieldRule password(const char* name, const wchar_t* xmlName) {
  return {name, FieldForm::Password, Spot::Child, xmlName, L"", c_maxText};
}

FieldRule whenGiven(FieldRule rule) {
  rule.presence = Presence::WhenGiven;
  return rule;
}

void append(Rules& rules, const Rules& more) {
  rules.insert(rules.end(), more.begin(), more.end());
}

Rules identity(const wchar_t* type) {
  return {attribute("type", WX_XML_SITE_TYPE, type),
          attribute("name", WX_XML_SITE_NAME),
          {"order", FieldForm::Number, Spot::Attribute, WX_XML_SITE_ORDER, L"", c_maxNumber}};
}

const FieldRule& enabled() {
  static const FieldRule rule = flagAttribute("enabled", WX_XML_SITE_ENABLED, L"1");
  return rule;
}

const FieldRule& local() {
  static const FieldRule rule = flagAttribute("local", WX_XML_SITE_LOCAL, L"0");
  return rule;
}

const FieldRule& securePort() {
  static const FieldRule rule = portAttribute("securePort", WX_XML_SSL_PORT);
  return rule;
}

Rules httpRules(const wchar_t* type, Presence others) {
  Rules rules = identity(type);
  append(rules, {enabled(),
                 local(),
                 securePort(),
                 {"server", FieldForm::Text, Spot::Host, WX_XML_SITE_SERVER, L"", c_maxText},
                 {"serverPort", FieldForm::Port, Spot::Port, WX_XML_SITE_SERVER, L"80", c_maxPort},
                 {"serverName", FieldForm::NetbiosName, Spot::Host, WX_XML_SERVER_NETBIOS_NAME, L"",
                  c_maxNetbios, others},
                 {"serverNamePort", FieldForm::Port, Spot::Port, WX_XML_SERVER_NETBIOS_NAME, L"80",
                  c_maxPort, others},
                 {"serverIP", FieldForm::Text, Spot::Host, WX_XML_SITE_SERVER_IP, L"",
                  c_maxServerIp, others},
                 {"serverIPPort", FieldForm::Port, Spot::Port, WX_XML_SITE_SERVER_IP, L"80",
                  c_maxPort, others}});
  return rules;
}

Rules httpChildren() {
  return {child("relativePath", WX_XML_SITE_RELATIVEPATH, c_maxPath),
          numberChild("useAuth", WX_XML_HTTPSITE_USE_AUTH),
          child("userName", WX_XML_SITE_USER_NAME), password("password", WX_XML_SITE_PASSWORD)};
}

Rules serverRules() {
  Rules rules = httpRules(STR_SITE_TYPE_MASTER, Presence::Always);
  rules.push_back(whenGiven(attribute("version", WX_XML_SITE_SERVER_VERSION)));
  append(rules, httpChildren());
  return rules;
}

// Agents and plain HTTP sites have their NetBIOS name and IP address only when they are known.
Rules repositoryRules() {
  Rules rules = httpRules(STR_SITE_TYPE_REPOSITORY, Presence::WhenGiven);
  append(rules, httpChildren());
  return rules;
}

Rules ftpRules() {
  Rules rules = identity(STR_SITE_TYPE_REPOSITORY);
  append(rules, {{"server", FieldForm::Text, Spot::Host, WX_XML_SITE_SERVER, L"", c_maxText},
                 {"serverPort", FieldForm::Port, Spot::Port, WX_XML_SITE_SERVER, L"21", c_maxPort},
                 enabled(),
                 securePort(),
                 local(),
                 child("relativePath", WX_XML_SITE_RELATIVEPATH, c_maxPath),
                 child("userName", WX_XML_SITE_USER_NAME),
                 password("password", WX_XML_SITE_PASSWORD)});
  return rules;
}

Rules accountChildren() {
  return {child("relativePath", WX_XML_SITE_RELATIVEPATH, c_maxPath),
          numberChild("useLoggedonUserAccount", WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT),
          child("domainName", WX_XML_SITE_DOMAIN_NAME), child("userName", WX_XML_SITE_USER_NAME),
          password("password", WX_XML_SITE_PASSWORD)};
}

Rules uncRules() {
  Rules rules = identity(STR_SITE_TYPE_REPOSITORY);
  append(rules, {attribute("server", WX_XML_SITE_SERVER), enabled(), local(),
                 child("shareName", WX_XML_UNCSITE_SHARENAME)});
  append(rules, accountChildren());
  return rules;
}

Rules localRules() {
  Rules rules = identity(STR_SITE_TYPE_REPOSITORY);
  append(rules, {enabled(), local(), attribute(nullptr, WX_XML_SITE_SERVER, L"127.0.0.1")});
  append(rules, accountChildren());
  return rules;
}

Rules proxyRules() {
  return {
      attribute("name", WX_XML_SITE_NAME),
      whenGiven(flagAttribute("useIEConfig", WX_XML_PROXY_USE_IE_CONFIG, L"0")),
      attribute(nullptr, WX_XML_SITE_LOCAL, L"1"),
      whenGiven(attribute("httpProxyServer", WX_XML_PROXY_HTTP_PROXY_SERVER)),
      portAttribute("httpProxyPort", WX_XML_PROXY_HTTP_PROXY_PORT),
      whenGiven(attribute("ftpProxyServer", WX_XML_PROXY_FTP_PROXY_SERVER)),
      portAttribute("ftpProxyPort", WX_XML_PROXY_FTP_PROXY_PORT),
      flagChild("allowUserToConfigureProxy", WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY),
      flagChild("bypassLocalAddress", WX_XML_PROXY_BYPASSLOCALADDR),
      {"exclusionList", FieldForm::Hosts, Spot::ExclusionHosts, WX_XML_PROXY_EXCLUSIONLIST, L""},
      flagChild("ftpUseAuth", WX_XML_PROXY_FTP_USEAUTH),
      flagChild("httpUseAuth", WX_XML_PROXY_HTTP_USEAUTH),
      child("httpProxyUser", WX_XML_HTTP_PROXY_PROXYUSERNAME),
      password("httpProxyPassword", WX_XML_HTTP_PROXY_PROXYPASSWORD),
      child("ftpProxyUser", WX_XML_FTP_PROXY_PROXYUSERNAME),
      password("ftpProxyPassword", WX_XML_FTP_PROXY_PROXYPASSWORD),
      flagChild("alternateFtpUseAuth", WX_XML_PROXY_ALT_FTP_USEAUTH),
      flagChild("alternateHttpUseAuth", WX_XML_PROXY_ALT_HTTP_USEAUTH),
      child("alternateHttpProxyUser", WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME),
      password("alternateHttpProxyPassword", WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD),
      child("alternateFtpProxyUser", WX_XML_FTP_PROXY_ALT_PROXYUSERNAME),
      password("alternateFtpProxyPassword", WX_XML_FTP_PROXY_ALT_PROXYPASSWORD),
  };
}

const std::vector<KindRules>& allRules() {
  static const std::vector<KindRules> rules = {
      {"server", WX_XML_SITELIST_VESTA_SITE, serverRules()},
      {"agent", WX_XML_SITELIST_KEYSTONE_SITE, repositoryRules()},
      {"http", WX_XML_SITELIST_HTTP_SITE, repositoryRules()},
      {"ftp", WX_XML_SITELIST_FTP_SITE, ftpRules()},
      {"unc", WX_XML_SITELIST_UNC_SITE, uncRules()},
      {"local", WX_XML_SITELIST_LOCAL_SITE, localRules()},
      {"proxy", WX_XML_PROXY_CONFIG_LIST, proxyRules()},
  };
  return rules;
}

}  // namespace

const KindRules* findRules(const std::string& kind) {
  for (const KindRules& rules : allRules()) {
    if (kind == rules.kind) return &rules;
  }
  return nullptr;
}

const FieldRule* findField(const KindRules& rules, const std::string& name) {
  for (const FieldRule& rule : rules.fields) {
    if (rule.name && name == rule.name) return &rule;
  }
  return nullptr;
}

std::vector<std::string> kinds() {
  std::vector<std::string> names;
  for (const KindRules& rules : allRules()) names.emplace_back(rules.kind);
  return names;
}

std::string kindNames() {
  std::string names;
  for (const std::string& kind : kinds()) names += (names.empty() ? "" : ", ") + kind;
  return names;
}

std::string fieldNames(const KindRules& rules, const std::string& indent) {
  constexpr std::size_t c_columns = 79;
  std::string text;
  std::string line;
  for (const FieldRule& rule : rules.fields) {
    if (!rule.name || rule.name == std::string("name")) continue;
    const std::string name = rule.name;
    if (!line.empty() && indent.size() + line.size() + 2 + name.size() >= c_columns) {
      text += indent + line + ",\n";
      line.clear();
    }
    line += (line.empty() ? "" : ", ") + name;
  }
  return text + indent + line;
}

std::string fieldHelp() {
  constexpr std::size_t c_indent = 10;
  std::string text;
  for (const KindRules& rules : allRules()) {
    const std::string kind = std::string("  ") + rules.kind;
    text += kind + fieldNames(rules, std::string(c_indent, ' ')).substr(kind.size()) + '\n';
  }
  return text;
}

}  // namespace tool
