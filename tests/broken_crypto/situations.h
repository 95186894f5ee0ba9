#ifndef TESTS_BROKEN_CRYPTO_SITUATIONS_H
#define TESTS_BROKEN_CRYPTO_SITUATIONS_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/resilience/workshop.h"

namespace test {

// A situation in which passwords cannot be encrypted or decrypted.
struct Situation {
  const char* name;
  // Creates the situation.
  void (*prepare)(const Workshop& workshop);
  // The configuration of libcrypto; empty for that of the system.
  const char* configuration = "";
  // The pattern of the error line about a list that is read or written. Null if there is no such
  // line.
  const char* reasonToRead = nullptr;
  const char* reasonToWrite = nullptr;
  // The situation also affects passwords for the server key.
  bool withoutCipher = false;
  bool makesKey = false;
  // If possible, the operation runs as another user.
  bool asOtherUser = false;
};
const std::vector<Situation>& situations();

// An unprivileged user.
constexpr uid_t c_otherUser = 65534;

std::string passwordKey(const Workshop& workshop);

}  // namespace test

#endif
