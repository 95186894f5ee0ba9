#include "sitehlp/records/site_elements.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

const wchar_t* const c_siteElementNames[] = {
    WX_XML_SITELIST_HTTP_SITE, WX_XML_SITELIST_VESTA_SITE, WX_XML_SITELIST_KEYSTONE_SITE,
    WX_XML_SITELIST_FTP_SITE,  WX_XML_SITELIST_UNC_SITE,   WX_XML_SITELIST_LOCAL_SITE,
    WX_XML_PROXY_CONFIG,
};

bool isKnownInList(const wchar_t* elementName) {
  const auto isName = [&](const wchar_t* name) { return std::wcscmp(elementName, name) == 0; };
  if (isName(WX_XML_PROXY_CONFIG)) return false;
  return isName(WX_XML_PROXY_CONFIG_LIST) ||
         std::any_of(std::begin(c_siteElementNames), std::end(c_siteElementNames), isName);
}

}  // namespace sitehlp
