#ifndef SITEHLP_RECORDS_SITE_ELEMENTS_H
#define SITEHLP_RECORDS_SITE_ELEMENTS_H

#include <cstddef>

namespace sitehlp {

// The elements that are decoded into a record of their kind. None means any other element.
enum class SiteElement { Http, Vesta, Keystone, Ftp, Unc, Local, Proxy, None };

constexpr std::size_t c_siteElementCount = static_cast<std::size_t>(SiteElement::None);

// The names of the elements, in the order of the enumerators.
extern const wchar_t* const c_siteElementNames[c_siteElementCount];

// Returns whether the reader knows an element of this name directly in a list. A proxy is known
// only in a "ProxyConfigList".
bool isKnownInList(const wchar_t* elementName);

}  // namespace sitehlp

#endif
