#ifndef TESTS_SUPPORT_SERVER_PASSWORD_H
#define TESTS_SUPPORT_SERVER_PASSWORD_H

#include <string>

namespace test {

// Encrypts a password as a management server does before it sends a list. Returns `clear` (UTF-8),
// encrypted with the server key of the current agent, as base64 text. Returns an empty text if this
// fails.
std::string sealServerPassword(const std::string& clear);

}  // namespace test

#endif
