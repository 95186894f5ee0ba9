#include "tools/sitelist/edit/field_rules.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

using Rules = std::vector<FieldRule>;

constexpr std::int64_t c_maxNumber = std::numeric_limits<std::int32_t>::max();

template <typename Row>
std::int64_t limitOf(const Row& row) {
  if (sitehlp::isText(row.form)) return static_cast<std::int64_t>(row.capacity) - 1;
  if (sitehlp::isPort(row.form)) return c_maxPort;
  return row.form == FieldForm::Number ? c_maxNumber : 0;
}

// A management server has its NetBIOS name and IP address always, agents and plain HTTP sites only
// when they are known.
Presence presenceOf(sitehlp::Written written, bool isServer) {
  const bool isAlways =
      written == sitehlp::Written::Always || (written == sitehlp::Written::ByElement && isServer);
  return isAlways ? Presence::Always : Presence::WhenGiven;
}

template <typename Table>
Rules rulesOf(const Table& table, bool isServer = false) {
  Rules rules;
  const auto add = [&](const auto& row) {
    if (row.place == FieldPlace::None) return;
    rules.push_back({row.name, row.form, row.place, *row.xmlName, row.initial, limitOf(row),
                     presenceOf(row.written, isServer)});
  };
  std::apply([&](const auto&... rows) { (add(rows), ...); }, table);
  return rules;
}

// An attribute that is no field, behind one that is.
Rules withAttribute(Rules rules, const std::string& before, const wchar_t* xmlName,
                    const wchar_t* value) {
  const auto found = std::find_if(rules.begin(), rules.end(),
                                  [&](const FieldRule& rule) { return before == rule.name; });
  rules.insert(found + 1, {nullptr, FieldForm::Text, FieldPlace::Attribute, xmlName, value});
  return rules;
}

Rules serverRules() {
  Rules rules = rulesOf(sitehlp::c_serverFields, true);
  for (FieldRule& rule : rules) {
    if (rule.xmlName == WX_XML_SITE_TYPE) rule.initial = STR_SITE_TYPE_MASTER;
  }
  return rules;
}

const std::vector<KindRules>& allKinds() {
  static const std::vector<KindRules> rules = {
      {"server", WX_XML_SITELIST_VESTA_SITE, serverRules()},
      {"agent", WX_XML_SITELIST_KEYSTONE_SITE, rulesOf(sitehlp::c_httpFields)},
      {"http", WX_XML_SITELIST_HTTP_SITE, rulesOf(sitehlp::c_httpFields)},
      {"ftp", WX_XML_SITELIST_FTP_SITE, rulesOf(sitehlp::c_ftpFields)},
      {"unc", WX_XML_SITELIST_UNC_SITE, rulesOf(sitehlp::c_uncFields)},
      {"local", WX_XML_SITELIST_LOCAL_SITE,
       withAttribute(rulesOf(sitehlp::c_localFields), "local", WX_XML_SITE_SERVER, L"127.0.0.1")},
      {"proxy", WX_XML_PROXY_CONFIG_LIST,
       withAttribute(rulesOf(sitehlp::c_proxyFields), "useIEConfig", WX_XML_SITE_LOCAL, L"1")},
  };
  return rules;
}

}  // namespace

const KindRules* findRules(const std::string& kind) {
  for (const KindRules& rules : allKinds()) {
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
  for (const KindRules& rules : allKinds()) names.emplace_back(rules.kind);
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
  for (const KindRules& rules : allKinds()) {
    const std::string kind = std::string("  ") + rules.kind;
    text += kind + fieldNames(rules, std::string(c_indent, ' ')).substr(kind.size()) + '\n';
  }
  return text;
}

}  // namespace tool
