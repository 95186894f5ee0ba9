#include "tools/sitelist/edit/element_edit.h"

#include <algorithm>
#include <cwchar>

#include "sitehlp/common/document_values.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace tool {
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

constexpr const wchar_t* c_elementText = L"";

std::vector<AnXmlNode> childrenNamed(const AnXmlNode& node, const wchar_t* name) {
  std::vector<AnXmlNode> children;
  AnXmlChildIndex index(node, name);
  AnXmlNode child;
  while (index.moveNext(child)) children.push_back(child);
  return children;
}

AnXmlNode lastChild(AnXmlNode node, const wchar_t* name) {
  const std::vector<AnXmlNode> children = childrenNamed(node, name);
  if (!children.empty()) return children.back();
  AnXmlNode added;
  node.addChild(added, name, nullptr, nullptr);
  return added;
}

// Returns the element with the fields of a site. For a proxy it is the last "ProxyConfig" of its
// list. The list's own "UseIEConfig" is used only without a "ProxyConfig".
AnXmlNode fieldHolder(const AnXmlNode& site) {
  if (site.getName().str() != WX_XML_PROXY_CONFIG_LIST) return site;
  AnXmlNode config;
  const bool isEmpty = !site.tryGetChild(config, nullptr, nullptr, nullptr, nullptr, nullptr);
  config = lastChild(site, WX_XML_PROXY_CONFIG);
  AString useIeConfig;
  if (isEmpty && site.tryGetValue(WX_XML_PROXY_USE_IE_CONFIG, useIeConfig)) {
    config.setValue(WX_XML_PROXY_USE_IE_CONFIG, useIeConfig);
  }
  return config;
}

// Writes the host before the last ":", or the port after it. The other part is unchanged.
void writeAddress(AnXmlNode& element, const NewValue& newValue) {
  const wchar_t* name = newValue.field->xmlName;
  AString value;
  // The "ServerDNS" of an agent repository is read instead of "Server".
  if (std::wcscmp(name, WX_XML_SITE_SERVER) == 0 &&
      element.getName().str() == WX_XML_SITELIST_KEYSTONE_SITE &&
      element.tryGetValue(WX_XML_SITE_SERVER_FQDN, value)) {
    name = WX_XML_SITE_SERVER_FQDN;
  }
  element.tryGetValue(name, value);
  const std::wstring& old = value.str();
  const std::size_t colon = old.rfind(L':');
  if (newValue.field->place == FieldPlace::Port) {
    element.setValue(name, old.substr(0, colon) + L":" + newValue.text);
  } else {
    const std::wstring port = colon == std::wstring::npos
                                  ? L':' + std::to_wstring(sitehlp::c_defaultPort)
                                  : old.substr(colon);
    element.setValue(name, newValue.text + port);
  }
}

// Compares host by host, so that elements with the right text are unchanged.
void writeHosts(AnXmlNode& config, const std::wstring& hosts) {
  std::vector<AnXmlNode> old;
  for (const AnXmlNode& list : childrenNamed(config, WX_XML_PROXY_EXCLUSIONLIST)) {
    for (const AnXmlNode& host : childrenNamed(list, WX_XML_PROXY_EXCLUSIONHOST)) {
      old.push_back(host);
    }
  }
  AnXmlNode list = lastChild(config, WX_XML_PROXY_EXCLUSIONLIST);
  std::size_t used = 0;
  for (std::size_t begin = 0; begin < hosts.size(); ++used) {
    const std::size_t end =
        std::min(hosts.find(sitehlp::c_proxyParamDelimiter, begin), hosts.size());
    const std::wstring host = hosts.substr(begin, end - begin);
    begin = end + 1;
    if (used == old.size()) {
      old.emplace_back();
      list.addChild(old.back(), WX_XML_PROXY_EXCLUSIONHOST, nullptr, nullptr);
    }
    AString text;
    old[used].tryGetValue(c_elementText, text);
    if (text.str() != host) old[used].setValue(c_elementText, host);
  }
  for (; used < old.size(); ++used) old[used].remove();
}

}  // namespace

void writeField(const AnXmlNode& site, const NewValue& newValue) {
  const DocumentField& field = *newValue.field;
  AnXmlNode holder = fieldHolder(site);
  switch (field.place) {
    case FieldPlace::Attribute:
      return holder.setValue(field.xmlName, newValue.text);
    case FieldPlace::Host:
    case FieldPlace::Port:
      return writeAddress(holder, newValue);
    case FieldPlace::Child: {
      AnXmlNode child = lastChild(holder, field.xmlName);
      if (field.form == FieldForm::Password) child.setValue(sitehlp::c_encrypted, L"1");
      return child.setValue(c_elementText, newValue.text);
    }
    case FieldPlace::ExclusionHosts:
      return writeHosts(holder, newValue.text);
    case FieldPlace::None:
      return;  // has no field
  }
}

std::wstring protectedTextOf(const AnXmlNode& site, const DocumentField& password) {
  AString text;
  std::vector<AnXmlNode> holders = childrenNamed(site, WX_XML_PROXY_CONFIG);
  if (holders.empty()) holders.push_back(site);
  const std::vector<AnXmlNode> children = childrenNamed(holders.back(), password.xmlName);
  if (!children.empty()) children.back().tryGetValue(c_elementText, text);
  return text.str();
}

}  // namespace tool
