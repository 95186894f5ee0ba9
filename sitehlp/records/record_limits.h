#ifndef SITEHLP_RECORDS_RECORD_LIMITS_H
#define SITEHLP_RECORDS_RECORD_LIMITS_H

#include <cstddef>

#include "sitehlp/site.h"

namespace sitehlp {

// The limit on elements of unknown kind in one list. Even a short element becomes a record of about
// 27 KB, so this limits the memory that a small document can need.
constexpr std::size_t c_maxUnknownElements = 1024;

// Compares the number of records in a list with that limit, and their memory with the limit of the
// agent's configuration. The limits apply to reading and writing.
class RecordLimits {
 public:
  RecordLimits();

  // Counts one more record. Returns null while the list is within the limits, otherwise the name of
  // the exceeded limit.
  const char* add(bool isKnown);

 private:
  std::size_t m_maxRecords;
  std::size_t m_records = 0;
  std::size_t m_unknown = 0;
};

// Returns whether a record is written as an element that the reader does not know.
bool isWrittenAsUnknown(const tag_Site& record);

}  // namespace sitehlp

#endif
