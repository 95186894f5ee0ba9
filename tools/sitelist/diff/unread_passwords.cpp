#include "tools/sitelist/diff/unread_passwords.h"

#include <memory>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/fields.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;
using AdvXMLParser::Element;

// The library reads the last one of several.
Element lastChild(const Element& parent, const wchar_t* name) {
  Element last;
  for (const Element& child : parent.Elements()) {
    if (child.HasName(name)) last = child;
  }
  return last;
}

void addUnread(const sitehlp::tag_Site& site, const Element& element, EncryptedPasswords& found) {
  const bool isProxy = site.eSiteKind == sitehlp::SITE_KIND_PROXY;
  const Element holder = isProxy ? lastChild(element, schema::WX_XML_PROXY_CONFIG) : element;
  sitehlp::eachFieldOf(site, [&](const auto& row, const auto&) {
    if (row.form != sitehlp::FieldForm::Password) return;
    const std::wstring text = lastChild(holder, *row.xmlName).GetValue();
    if (!text.empty() && !opensWithAgentKey(text)) found[{&site, row.name}] = text;
  });
}

}  // namespace

EncryptedPasswords unreadPasswordsOf(const SiteList& list) {
  EncryptedPasswords found;
  std::wstring text;
  std::unique_ptr<AdvXMLParser::Document> document;
  const sitehlp::tag_Site* site = list.sites.get();
  bool isSameList = !readDocument(list.path, text, document);
  if (isSameList) {
    const Element root = document->GetRoot();
    for (const Element& element : root.GetElement(schema::WX_XML_SITELIST).Elements()) {
      if (!site) {
        isSameList = false;
        break;
      }
      addUnread(*site, element, found);
      site = site->pNext;
    }
  }
  if (isSameList && !site) return found;
  throw failureAt(list.path, exitConflict, "the file changed while it was read", "try again");
}

}  // namespace tool
