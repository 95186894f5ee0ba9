#ifndef SITEHLP_RECORDS_RECORD_H
#define SITEHLP_RECORDS_RECORD_H

#include <optional>

#include "sitehlp/list.h"

namespace sitehlp {

// Returns the kind of a record, or none for an unknown kind.
std::optional<SiteKind> kindOf(const tag_Site& record);

// Wipes the passwords of a record of any kind and releases the record. The records after it are
// unchanged.
void releaseRecord(tag_Site* record) noexcept;

// Returns whether a record is a management server.
bool isServerSite(const tag_Site& record);

// Returns whether a record is a management server with a version. A list with such a server has key
// files next to it.
bool isVersionedServer(const tag_Site& record);

// Returns whether the type of a record is "fallback". Case is ignored.
bool isFallback(const tag_Site& record);

}  // namespace sitehlp

#endif
