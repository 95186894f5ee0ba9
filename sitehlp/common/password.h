#ifndef SITEHLP_COMMON_PASSWORD_H
#define SITEHLP_COMMON_PASSWORD_H

#include <string>

namespace sitehlp {

// Encrypts a clear password if `encrypt` is set; otherwise decrypts an encrypted one. Returns
// nonzero on success. On failure returns 0 and leaves `out` unchanged.
int EncryptDecryptPassword(const std::wstring& in, std::wstring& out, bool encrypt);

}  // namespace sitehlp

#endif
