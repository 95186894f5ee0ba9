#ifndef SITEHLP_RECORDS_SITE_ELEMENTS_H
#define SITEHLP_RECORDS_SITE_ELEMENTS_H

#include <cstddef>

namespace sitehlp {

// The elements that have a per-kind record, and None for all others.
enum class SiteElement { Http, Vesta, Keystone, Ftp, Unc, Local, Proxy, None };

constexpr std::size_t c_siteElementCount = static_cast<std::size_t>(SiteElement::None);

// Their names, in the order of the enumerators.
extern const wchar_t* const c_siteElementNames[c_siteElementCount];

// Whether the reader knows an element of this name directly in a list. Proxies are known only
// inside a list of their own.
bool isKnownInList(const wchar_t* elementName);

}  // namespace sitehlp

#endif
