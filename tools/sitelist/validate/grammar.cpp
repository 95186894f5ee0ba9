#include "tools/sitelist/validate/grammar.h"

#include <algorithm>
#include <tuple>

#include "sitehlp/common/document_values.h"
#include "sitehlp/fields.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/model/kinds.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;
using Values = std::vector<ValueGrammar>;

Values operator+(Values all, const Values& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// Two child elements are flags, but a record stores their numbers.
template <typename Row>
ValueType numberType(const Row& row) {
  if (row.xmlName == &WX_XML_SITE_ORDER) return ValueType::Order;
  const bool isFlag = row.xmlName == &WX_XML_HTTPSITE_USE_AUTH ||
                      row.xmlName == &WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT;
  return isFlag ? ValueType::Flag : ValueType::Any;
}

template <typename Row>
ValueType typeOf(const Row& row) {
  switch (row.form) {
    case FieldForm::Text:
    case FieldForm::MacroText:
      return ValueType::Text;
    case FieldForm::Address:
      return ValueType::Address;
    case FieldForm::NetbiosName:
      return ValueType::ComputerName;
    case FieldForm::Flag:
      return ValueType::Flag;
    case FieldForm::Number:
      return numberType(row);
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return ValueType::Port;
    case FieldForm::Hosts:
      return ValueType::Elements;
    case FieldForm::Password:
      return ValueType::Password;
  }
  return ValueType::Unread;
}

// Returns the fields of a table in these places. The port of an address is checked with its host.
template <typename Table, typename IsThere>
Values valuesOf(const Table& table, IsThere isThere) {
  Values values;
  const auto add = [&](const auto& row) {
    if (!isThere(row.place) || row.place == FieldPlace::Port) return;
    values.push_back({*row.xmlName, typeOf(row)});
    if (row.capacity != 0) values.back().capacity = row.capacity;
  };
  std::apply([&](const auto&... rows) { (add(rows), ...); }, table);
  return values;
}

template <typename Table>
Values attributesOf(const Table& table) {
  return valuesOf(table, sitehlp::isInAttribute);
}

template <typename Table>
Values childrenOf(const Table& table) {
  return valuesOf(table, sitehlp::isChild);
}

Values reservedAttributes() {
  return {{WX_XML_SITE_ID, ValueType::Unread}, {WX_XML_SERVER_PORT, ValueType::Unread}};
}

ElementGrammar grammarOfKind(const NamedKind& kind) {
  const Values replication = {{WX_XML_HTTPSITE_REPLICATION_UNC, ValueType::Unread},
                              {WX_XML_SITE_REPLICATION_USER_NAME, ValueType::Unread},
                              {WX_XML_SITE_REPLICATION_DOMAIN_NAME, ValueType::Unread},
                              {WX_XML_SITE_REPLICATION_PASSWORD, ValueType::Unread}};
  const auto site = [&](const auto& table, const Values& attributes = {},
                        const Values& children = {}) {
    return ElementGrammar{*kind.element, kind.name,
                          attributesOf(table) + reservedAttributes() + replication + attributes,
                          childrenOf(table) + replication + children};
  };
  const Values passive = {{WX_XML_FTPSITE_PASSIVE, ValueType::Unread}};
  switch (kind.siteKind) {
    case sitehlp::SITE_KIND_HTTP:
      if (kind.element == &WX_XML_SITELIST_VESTA_SITE) return site(sitehlp::c_serverFields);
      if (kind.element == &WX_XML_SITELIST_HTTP_SITE) return site(sitehlp::c_httpFields);
      return site(sitehlp::c_httpFields, {{WX_XML_SITE_SERVER_FQDN, ValueType::Address}});
    case sitehlp::SITE_KIND_FTP:
      return site(sitehlp::c_ftpFields, passive, passive);
    case sitehlp::SITE_KIND_UNC:
      return site(sitehlp::c_uncFields);
    case sitehlp::SITE_KIND_LOCAL:
      return site(sitehlp::c_localFields, {{WX_XML_SITE_SERVER, ValueType::Unread}});
    case sitehlp::SITE_KIND_PROXY:
      break;
  }
  // The attributes of the proxy list itself are read like those of any site.
  return {*kind.element,
          kind.name,
          attributesOf(sitehlp::fields::c_head) + reservedAttributes() +
              Values{{WX_XML_SITE_NAME, ValueType::Text},
                     {WX_XML_PROXY_USE_IE_CONFIG, ValueType::Flag}},
          {{WX_XML_PROXY_CONFIG, ValueType::Elements}}};
}

std::vector<ElementGrammar> makeGrammars() {
  std::vector<ElementGrammar> grammars = {
      {WX_XML_CABUNDLE, nullptr, {}, {{WX_XML_CACERTIFICATE, ValueType::Elements}}},
      {WX_XML_POLICIES, nullptr, {}, {{sitehlp::c_policySetting, ValueType::Elements}}},
      {sitehlp::c_policySetting, nullptr, {{sitehlp::c_policySettingName, ValueType::Any}}, {}},
      {WX_XML_SITELIST,
       nullptr,
       {{WX_XML_SITELIST_DEFAULT, ValueType::Unread}, {WX_XML_SITE_NAME, ValueType::Unread}},
       {}},
      {WX_XML_PROXY_CONFIG, nullptr,
       attributesOf(sitehlp::c_proxyFields) + Values{{WX_XML_SITE_LOCAL, ValueType::Unread}},
       childrenOf(sitehlp::c_proxyFields) + Values{{WX_XML_PROXY_ADDRLIST, ValueType::Unread}}},
      {WX_XML_PROXY_EXCLUSIONLIST,
       nullptr,
       {},
       {{WX_XML_PROXY_EXCLUSIONHOST, ValueType::Elements}}},
  };
  for (const NamedKind& kind : c_kinds) grammars.push_back(grammarOfKind(kind));
  return grammars;
}

}  // namespace

const ElementGrammar& rootGrammar() {
  static const ElementGrammar grammar = {WX_XML_SITELISTS,
                                         nullptr,
                                         {{WX_XML_SITELISTS_GLOBAL_VERSION, ValueType::Any},
                                          {WX_XML_SITELISTS_LOCAL_VERSION, ValueType::Any},
                                          {WX_XML_SITELISTS_TYPE, ValueType::Any},
                                          {WX_XML_SITELISTS_FIPSMODE, ValueType::Any}},
                                         {{WX_XML_CABUNDLE, ValueType::Elements},
                                          {WX_XML_POLICIES, ValueType::Elements},
                                          {WX_XML_SITELIST, ValueType::Elements}}};
  return grammar;
}

const ElementGrammar* grammarOf(const AdvXMLParser::Element& element) {
  static const std::vector<ElementGrammar> grammars = makeGrammars();
  const auto found =
      std::find_if(grammars.begin(), grammars.end(),
                   [&](const ElementGrammar& grammar) { return element.HasName(grammar.name); });
  return found == grammars.end() ? nullptr : &*found;
}

const ValueGrammar* findGrammar(const std::vector<ValueGrammar>& values, const std::wstring& name) {
  const auto found = std::find_if(values.begin(), values.end(),
                                  [&](const ValueGrammar& value) { return name == value.name; });
  return found == values.end() ? nullptr : &*found;
}

}  // namespace tool
