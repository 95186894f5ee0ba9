#include "sitehlp/read/site_attributes.h"

namespace sitehlp {
namespace {

// Filled when the library is loaded, as in the other tables of names: the guard of a static of a
// function would stay held in the child of a fork at its first use.
struct NameTexts {
  NameTexts() {
    for (std::size_t i = 0; i < attributes::c_names.count; ++i) {
      texts[i] = *attributes::c_names.names[i];
    }
  }
  const wchar_t* texts[attributes::c_names.count];
};
const NameTexts c_attributes;

}  // namespace

SiteAttributes::SiteAttributes(const AdvXMLParser::Element& element) {
  element.FindAttributes(c_attributes.texts, attributes::c_names.count, m_found);
}

}  // namespace sitehlp
