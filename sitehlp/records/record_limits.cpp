#include "sitehlp/records/record_limits.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "platform/config/configuration.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

RecordLimits::RecordLimits()
    : m_maxRecords(IConfiguration::GetConfiguration()->GetMaxRecordBytes() / sizeof(tag_Site)) {}

const char* RecordLimits::add(bool isKnown) {
  if (!isKnown && ++m_unknown > c_maxUnknownElements) return "number of elements of unknown kind";
  return ++m_records > m_maxRecords ? "memory for records" : nullptr;
}

bool isKnownInList(const wchar_t* elementName) {
  const wchar_t* const known[] = {WX_XML_SITELIST_HTTP_SITE,     WX_XML_SITELIST_VESTA_SITE,
                                  WX_XML_SITELIST_KEYSTONE_SITE, WX_XML_SITELIST_FTP_SITE,
                                  WX_XML_SITELIST_UNC_SITE,      WX_XML_SITELIST_LOCAL_SITE,
                                  WX_XML_PROXY_CONFIG_LIST};
  return std::any_of(std::begin(known), std::end(known),
                     [&](const wchar_t* name) { return std::wcscmp(elementName, name) == 0; });
}

bool isWrittenAsUnknown(const tag_Site& record) {
  return record.eSiteKind == SITE_KIND_HTTP && record.http.szElement[0] != L'\0' &&
         !isKnownInList(record.http.szElement);
}

}  // namespace sitehlp
