#ifndef SITEHLP_RECORDS_RECORD_H
#define SITEHLP_RECORDS_RECORD_H

#include <cstdint>
#include <optional>

#include "sitehlp/list.h"

namespace sitehlp {

// A kind as the compiler checks it: a switch over it that leaves one out is a warning.
enum class Kind : std::int32_t {
  Http = SITE_KIND_HTTP,
  Ftp = SITE_KIND_FTP,
  Unc = SITE_KIND_UNC,
  Local = SITE_KIND_LOCAL,
  Proxy = SITE_KIND_PROXY,
};

// None when the record holds no kind of site.
std::optional<Kind> kindOf(const tag_Site& record);

// Wipes what passwords the record holds, of whatever kind it was, and releases it. Its
// successors are not touched.
void releaseRecord(tag_Site* record) noexcept;

// A server site: the management server, of the HTTP family.
bool isServerSite(const tag_Site& record);

// One that says its version, and so knows the 2048-bit key set.
bool isVersionedServer(const tag_Site& record);

// Whether the record's type is "fallback", in any case.
bool isFallback(const tag_Site& record);

}  // namespace sitehlp

#endif
