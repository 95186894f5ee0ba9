#include "sitehlp/read/site_attributes.h"

namespace sitehlp {
namespace {

// Initialised when the library is loaded, as the other tables of names. The guard of a
// function-local static could be held at a fork, and the child would wait for it without end.
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
