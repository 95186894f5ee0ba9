#include "sitehlp/element_writer.h"

#include "platform/common/text.h"
#include "sitehlp/password.h"
#include "sitehlp/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Attribute;
using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr const wchar_t* c_encrypted = L"Encrypted";

}  // namespace

void setAttribute(Element& element, const wchar_t* name, const std::wstring& value) {
  Attribute attribute = element.CreateAttribute(name);
  if (!attribute.IsNull()) attribute.SetValue(value);
}

Element addInto(Element& parent, const wchar_t* name, const std::wstring& text) {
  Element element = parent.AddElementInto(name);
  element.AddText(text);
  return element;
}

Element addAfter(Element& anchor, const wchar_t* name, const std::wstring& text) {
  Element element = anchor.AppendElement(name);
  element.AddText(text);
  return element;
}

Element addPasswordAfter(Element& anchor, const wchar_t* name, const wchar_t* clear) {
  std::wstring in = clear;
  const WipeAtExit<std::wstring> wipe(in);
  std::wstring out;
  EncryptDecryptPassword(in, out, true);
  Element element = addAfter(anchor, name, out);
  setAttribute(element, c_encrypted, L"1");
  return element;
}

Element addSiteElement(Element& anchor, int position, const wchar_t* name) {
  return position == 0 ? anchor.AddElementInto(name) : anchor.AppendElement(name);
}

void setIdentity(Element& element, const tag_Site& site, const wchar_t* name) {
  setAttribute(element, WX_XML_SITE_TYPE,
               site.szType[0] != L'\0' ? site.szType : STR_SITE_TYPE_REPOSITORY);
  setAttribute(element, WX_XML_SITE_NAME, name);
  if (wcsicmp(site.szType, STR_SITE_TYPE_MIRROR) != 0) {
    setAttribute(element, WX_XML_SITE_ORDER, CSitesHelper::ConvertToStr(site.iOrder));
  }
}

std::wstring formatAddress(const wchar_t* host, unsigned int port) {
  return std::wstring(host) + L":" + CSitesHelper::ConvertToStr(port);
}

}  // namespace sitehlp
