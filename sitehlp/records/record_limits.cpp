#include "sitehlp/records/record_limits.h"

#include "platform/config/configuration.h"
#include "sitehlp/records/site_elements.h"

namespace sitehlp {

RecordLimits::RecordLimits()
    : m_maxRecords(IConfiguration::GetConfiguration()->GetMaxRecordBytes() / sizeof(tag_Site)) {}

const char* RecordLimits::add(bool isKnown) {
  if (!isKnown && ++m_unknown > c_maxUnknownElements) return "number of elements of unknown kind";
  return ++m_records > m_maxRecords ? "memory for records" : nullptr;
}

bool isWrittenAsUnknown(const tag_Site& record) {
  return record.eSiteKind == SITE_KIND_HTTP && record.http.szElement[0] != L'\0' &&
         !isKnownInList(record.http.szElement);
}

}  // namespace sitehlp
