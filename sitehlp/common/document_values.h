#ifndef SITEHLP_COMMON_DOCUMENT_VALUES_H
#define SITEHLP_COMMON_DOCUMENT_VALUES_H

#include <cstddef>
#include <cstdint>

#include "sitehlp/site.h"

// Names and values that occur in documents but not in the exported vocabulary.
namespace sitehlp {

constexpr const wchar_t* c_fallbackType = L"fallback";  // of a site; case is ignored
constexpr std::int32_t c_orderOfFallback = 65535;       // of a fallback without an order

constexpr unsigned int c_defaultPort = 80;               // of an address without a port
constexpr const wchar_t* c_localServer = L"127.0.0.1";   // "Server" of a local repository
constexpr const wchar_t* c_encrypted = L"Encrypted";     // attribute of a password
constexpr const wchar_t* c_policySetting = L"Setting";   // element in "Policies"
constexpr const wchar_t* c_policySettingName = L"name";  // its attribute

// The exclusion text of a record is shorter than this. The limit is one less than the capacity of
// the field. Other readers of the record in the agent rely on it.
constexpr std::size_t c_exclusionLimit = c_exclusionListCapacity - 1;

}  // namespace sitehlp

#endif
