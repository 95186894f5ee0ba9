#ifndef SITEHLP_COMMON_PASSWORD_H
#define SITEHLP_COMMON_PASSWORD_H

#include <string>

namespace sitehlp {

// Turns a clear password into its protected form (`encrypt`) or back. Returns nonzero on success;
// on failure it returns 0 and leaves `out` unchanged.
int EncryptDecryptPassword(const std::wstring& in, std::wstring& out, bool encrypt);

}  // namespace sitehlp

#endif
