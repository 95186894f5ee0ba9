#ifndef SITEHLP_COMMON_LOCKS_H
#define SITEHLP_COMMON_LOCKS_H

namespace sitehlp {

// The wait of every lock of the library: without a limit.
constexpr unsigned int c_waitForEver = 0x7FFFFFFF;

}  // namespace sitehlp

#endif
