#include "tests/broken_crypto/situations.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "host/crypto/sealed_value.h"

namespace fs = std::filesystem;

namespace test {
namespace {

// A configuration whose only provider has encoders and no ciphers.
constexpr const char* c_baseAlone =
    "openssl_conf = init\n[init]\nproviders = all\n[all]\nbase = base_section\n"
    "[base_section]\nactivate = 1\n";
constexpr const char* c_fipsAlone =
    "openssl_conf = init\n[init]\nalg_section = all\n[all]\ndefault_properties = fips=yes\n";

constexpr const char* c_doesNotOpen = "password cannot be decrypted|passwords cannot be decrypted";

void leave(const Workshop&) {}

void shortenKey(const Workshop& w) {
  writeFile(passwordKey(w), std::string(host::c_keySize - 1, 'x'), 0600);
}
void removeKey(const Workshop& w) { fs::remove(passwordKey(w)); }
void exchangeKey(const Workshop& w) {
  writeFile(passwordKey(w), std::string(host::c_keySize, 'x'), 0600);
}

// Gives all files except the key to the user of the operation.
void closeKey(const Workshop& w) {
  if (::geteuid() != 0) {
    std::printf(
        "Not run as root: the key is unreadable for its owner instead of for another user\n");
    ::chmod(passwordKey(w).c_str(), 0);
    return;
  }
  for (const std::string& root : w.roots()) {
    if (::chown(root.c_str(), c_otherUser, c_otherUser) != 0) std::perror(root.c_str());
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (entry.path() == passwordKey(w)) continue;
      if (::lchown(entry.path().c_str(), c_otherUser, c_otherUser) != 0) {
        std::perror(entry.path().c_str());
      }
    }
  }
}

}  // namespace

std::string passwordKey(const Workshop& w) { return w.keystore() + "/password.key"; }

const std::vector<Situation>& situations() {
  static const std::vector<Situation> all = [] {
    std::vector<Situation> list(6);
    list[0] = {"noCipher", leave, c_baseAlone, "AES-256-GCM", "AES-256-GCM", true};
    list[1] = {"onlyFips", leave, c_fipsAlone, "AES-256-GCM", "AES-256-GCM", true};
    list[2] = {"shortKey", shortenKey, "", "the file has 31 bytes, but a key has 32",
               "the file has 31 bytes, but a key has 32"};
    list[3] = {"closedKey",         closeKey, "",    "Permission denied",
               "Permission denied", false,    false, true};
    // A new key encrypts new passwords and cannot decrypt the old ones.
    list[4] = {"missingKey", removeKey, "", c_doesNotOpen, nullptr, false, true};
    list[5] = {"keyOfAnotherAgent", exchangeKey, "", c_doesNotOpen, nullptr};
    return list;
  }();
  return all;
}

}  // namespace test
