#ifndef HOST_CRYPTO_KEY_FILE_H
#define HOST_CRYPTO_KEY_FILE_H

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "host/process/secret.h"

// A key file has c_keySize bytes. It is a regular file, <dataDirectory>/keystore/<name>.
namespace host {

constexpr const char* c_passwordKeyName = "password.key";
constexpr const char* c_serverKeyName = "server.key";

std::string keyFilePath(const std::string& dataDirectory, const char* name);

// Distinguishes the states of a key file.
struct KeyFileState {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t changedNs = 0;
  // Whether the last change is old enough that any later change would have a different time.
  bool settled = false;

  bool sameFile(const KeyFileState& other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           changedNs == other.changedNs;
  }
};

// Gets the present state of the file with one system call. Returns 0 or an errno.
int keyFileState(const std::string& path, KeyFileState& state);

// Reads a key, and the state of its file. Returns false, with an error logged, when the file does
// not exist, is not regular or has the wrong size.
//
// Removes all permissions except the owner's if:
//
// - the file has no other name;
// - the file and its directory belong to the effective user;
// - nobody else may write in that directory.
bool readKeyFile(const std::string& path, SecretBytes& key, KeyFileState& state);

// Creates a key file with a new random key, and its directory. Only their owner may use them. Links
// and owners are handled as in host/fs/files.h. The file is created atomically. An existing key
// remains, even if another process creates it at the same time. If the new key is used, a warning
// is logged. Returns false, with an error logged, when there is no key afterwards.
bool createKeyFile(const std::string& path);

// Fills a key with random bytes. Returns false when there are none.
bool drawKey(SecretBytes& key);

// Removes the temporary files of processes that ended while they created this key.
void cleanBesideKeyFile(const std::string& path);

}  // namespace host

#endif
