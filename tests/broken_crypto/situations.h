#ifndef TESTS_BROKEN_CRYPTO_SITUATIONS_H
#define TESTS_BROKEN_CRYPTO_SITUATIONS_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/resilience/workshop.h"

namespace test {

// A way in which passwords cannot be protected or recovered.
struct Situation {
  const char* name;
  // Brings it about.
  void (*prepare)(const Workshop& workshop);
  // What libcrypto is told; empty: the system's own configuration.
  const char* configuration = "";
  // The pattern of what an error line about a list that is read or written says; null when there is
  // no such line.
  const char* reasonToRead = nullptr;
  const char* reasonToWrite = nullptr;
  // Also holds for passwords under the server's key.
  bool withoutCipher = false;
  bool makesKey = false;
  // The operation runs as another user, where that can be.
  bool asOtherUser = false;
};
const std::vector<Situation>& situations();

// A user without rights.
constexpr uid_t c_otherUser = 65534;

std::string passwordKey(const Workshop& workshop);

}  // namespace test

#endif
