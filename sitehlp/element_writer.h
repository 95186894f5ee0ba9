#ifndef SITEHLP_ELEMENT_WRITER_H
#define SITEHLP_ELEMENT_WRITER_H

#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"

// Steps that the writers of all records share.
namespace sitehlp {

void setAttribute(AdvXMLParser::Element& element, const wchar_t* name, const std::wstring& value);

// A new element with text: into `parent`, or behind `anchor` as its sibling.
AdvXMLParser::Element addInto(AdvXMLParser::Element& parent, const wchar_t* name,
                              const std::wstring& text);
AdvXMLParser::Element addAfter(AdvXMLParser::Element& anchor, const wchar_t* name,
                               const std::wstring& text);

// A "Password"-like element behind `anchor` with the protected form of `clear`, marked as
// encrypted. A password that cannot be protected is written as empty.
AdvXMLParser::Element addPasswordAfter(AdvXMLParser::Element& anchor, const wchar_t* name,
                                       const wchar_t* clear);

// A new element for a record: into the anchor at position 0, behind it at any other.
AdvXMLParser::Element addSiteElement(AdvXMLParser::Element& anchor, int position,
                                     const wchar_t* name);

// The attributes "Type", "Name" and, but for a mirror, "Order".
void setIdentity(AdvXMLParser::Element& element, const tag_Site& site, const wchar_t* name);

// "host:port"
std::wstring formatAddress(const wchar_t* host, unsigned int port);

}  // namespace sitehlp

#endif
