#ifndef SITEHLP_COMMON_LOCKS_H
#define SITEHLP_COMMON_LOCKS_H

namespace sitehlp {

// The wait that every lock of the library is given.
constexpr unsigned int c_waitForEver = 0x7FFFFFFF;

}  // namespace sitehlp

#endif
