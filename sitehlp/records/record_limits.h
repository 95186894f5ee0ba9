#ifndef SITEHLP_RECORDS_RECORD_LIMITS_H
#define SITEHLP_RECORDS_RECORD_LIMITS_H

#include <cstddef>

#include "sitehlp/site.h"

namespace sitehlp {

// Elements of unknown kind in one list. Each becomes a record of some 27 KB, however short it is,
// so this bounds what a small document can ask for.
constexpr std::size_t c_maxUnknownElements = 1024;

// Counts the records of one list against that limit, and against the memory that the agent's
// configuration allows them. The same limits hold for a list that is read and one that is written.
class RecordLimits {
 public:
  RecordLimits();

  // Counts one more record. Null while the list is within the limits; else the name of the limit.
  const char* add(bool isKnown);

 private:
  std::size_t m_maxRecords;
  std::size_t m_records = 0;
  std::size_t m_unknown = 0;
};

// Whether the element that is written for a record is one that the reader does not know.
bool isWrittenAsUnknown(const tag_Site& record);

}  // namespace sitehlp

#endif
