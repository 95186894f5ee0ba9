#include "tools/sitelist/validate/grammar.h"

#include <algorithm>
#include <tuple>

#include "sitehlp/fields.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;
using Values = std::vector<ValueForm>;

Values operator+(Values all, const Values& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// Two children are flags whose number a record keeps.
template <typename Row>
Form numberForm(const Row& row) {
  if (row.xmlName == &WX_XML_SITE_ORDER) return Form::Order;
  const bool isFlag = row.xmlName == &WX_XML_HTTPSITE_USE_AUTH ||
                      row.xmlName == &WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT;
  return isFlag ? Form::Flag : Form::Any;
}

template <typename Row>
Form valueForm(const Row& row) {
  switch (row.form) {
    case FieldForm::Text:
    case FieldForm::MacroText:
      return Form::Text;
    case FieldForm::Address:
      return Form::Address;
    case FieldForm::NetbiosName:
      return Form::ComputerName;
    case FieldForm::Flag:
      return Form::Flag;
    case FieldForm::Number:
      return numberForm(row);
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return Form::Port;
    case FieldForm::Hosts:
      return Form::Elements;
    case FieldForm::Password:
      return Form::Password;
  }
  return Form::Unread;
}

// The fields of a table that stand in such a place. The port of an address goes with its host.
template <typename Table, typename IsThere>
Values valuesOf(const Table& table, IsThere isThere) {
  Values values;
  const auto add = [&](const auto& row) {
    if (!isThere(row.place) || row.place == FieldPlace::Port) return;
    values.push_back({*row.xmlName, valueForm(row)});
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

// In the order of docs/site-list-format.md.
std::vector<ElementForm> makeForms() {
  const Values replication = {{WX_XML_HTTPSITE_REPLICATION_UNC, Form::Unread},
                              {WX_XML_SITE_REPLICATION_USER_NAME, Form::Unread},
                              {WX_XML_SITE_REPLICATION_DOMAIN_NAME, Form::Unread},
                              {WX_XML_SITE_REPLICATION_PASSWORD, Form::Unread}};
  const Values reserved =
      Values{{WX_XML_SITE_ID, Form::Unread}, {WX_XML_SERVER_PORT, Form::Unread}};
  const auto site = [&](const wchar_t* name, const char* kind, const auto& table,
                        const Values& attributes = {}, const Values& children = {}) {
    return ElementForm{name, kind, attributesOf(table) + reserved + replication + attributes,
                       childrenOf(table) + replication + children};
  };
  const Values passive = {{WX_XML_FTPSITE_PASSIVE, Form::Unread}};
  return {
      {WX_XML_CABUNDLE, nullptr, {}, {{WX_XML_CACERTIFICATE, Form::Elements}}},
      {WX_XML_POLICIES, nullptr, {}, {{L"Setting", Form::Elements}}},
      {L"Setting", nullptr, {{L"name", Form::Any}}, {}},
      {WX_XML_SITELIST,
       nullptr,
       {{WX_XML_SITELIST_DEFAULT, Form::Unread}, {WX_XML_SITE_NAME, Form::Unread}},
       {}},
      site(WX_XML_SITELIST_HTTP_SITE, "http", sitehlp::c_httpFields),
      site(WX_XML_SITELIST_VESTA_SITE, "server", sitehlp::c_serverFields),
      site(WX_XML_SITELIST_KEYSTONE_SITE, "agent", sitehlp::c_httpFields,
           {{WX_XML_SITE_SERVER_FQDN, Form::Address}}),
      site(WX_XML_SITELIST_FTP_SITE, "ftp", sitehlp::c_ftpFields, passive, passive),
      site(WX_XML_SITELIST_UNC_SITE, "unc", sitehlp::c_uncFields),
      site(WX_XML_SITELIST_LOCAL_SITE, "local", sitehlp::c_localFields,
           {{WX_XML_SITE_SERVER, Form::Unread}}),
      // What stands in the list itself is read like the attributes of any site.
      {WX_XML_PROXY_CONFIG_LIST,
       "proxy",
       attributesOf(sitehlp::fields::c_head) + reserved +
           Values{{WX_XML_SITE_NAME, Form::Text}, {WX_XML_PROXY_USE_IE_CONFIG, Form::Flag}},
       {{WX_XML_PROXY_CONFIG, Form::Elements}}},
      {WX_XML_PROXY_CONFIG, nullptr,
       attributesOf(sitehlp::c_proxyFields) + Values{{WX_XML_SITE_LOCAL, Form::Unread}},
       childrenOf(sitehlp::c_proxyFields) + Values{{WX_XML_PROXY_ADDRLIST, Form::Unread}}},
      {WX_XML_PROXY_EXCLUSIONLIST, nullptr, {}, {{WX_XML_PROXY_EXCLUSIONHOST, Form::Elements}}},
  };
}

}  // namespace

const ElementForm& rootForm() {
  static const ElementForm form = {WX_XML_SITELISTS,
                                   nullptr,
                                   {{WX_XML_SITELISTS_GLOBAL_VERSION, Form::Any},
                                    {WX_XML_SITELISTS_LOCAL_VERSION, Form::Any},
                                    {WX_XML_SITELISTS_TYPE, Form::Any},
                                    {WX_XML_SITELISTS_FIPSMODE, Form::Any}},
                                   {{WX_XML_CABUNDLE, Form::Elements},
                                    {WX_XML_POLICIES, Form::Elements},
                                    {WX_XML_SITELIST, Form::Elements}}};
  return form;
}

const ElementForm* formOf(const AdvXMLParser::Element& element) {
  static const std::vector<ElementForm> forms = makeForms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](const ElementForm& form) {
    return element.HasName(form.name);
  });
  return found == forms.end() ? nullptr : &*found;
}

const ValueForm* findForm(const std::vector<ValueForm>& forms, const std::wstring& name) {
  const auto found = std::find_if(forms.begin(), forms.end(),
                                  [&](const ValueForm& form) { return name == form.name; });
  return found == forms.end() ? nullptr : &*found;
}

}  // namespace tool
