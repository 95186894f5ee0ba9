#ifndef HOST_CRYPTO_KEY_FILE_H
#define HOST_CRYPTO_KEY_FILE_H

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "host/process/secret.h"

// Key files: c_keySize bytes in a regular file of their own, <dataDirectory>/keystore/<name>.
namespace host {

constexpr const char* c_passwordKeyName = "password.key";
constexpr const char* c_serverKeyName = "server.key";

std::string keyFilePath(const std::string& dataDirectory, const char* name);

// Tells one state of a key file from another.
struct KeyFileState {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t changedNs = 0;
  // Whether the file was read so long after its last change that another change cannot bear the
  // same time.
  bool settled = false;

  bool sameFile(const KeyFileState& other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           changedNs == other.changedNs;
  }
};

// What the file looks like now, one call into the system. 0 or the errno of what failed.
int keyFileState(const std::string& path, KeyFileState& state);

// Reads a key and the state of the file that it was read from. A file that others than its owner
// may use loses these permissions when it has no other name, it and its directory belong to this
// process's user, and nobody else may write in that directory. False, with an error logged, when
// there is no such key: no file, no regular file, not the right size.
bool readKeyFile(const std::string& path, SecretBytes& key, KeyFileState& state);

// Makes a new random key with its directory, both for their owner alone. Links and owners are as
// host/fs/files.h says. The file appears whole or not at all, and a key that is there already, or
// that another process makes at the same moment, is left alone. A warning is logged when it is this
// one. False, with an error logged, when there is no key afterwards.
bool createKeyFile(const std::string& path);

// Removes the temporary files that a process left next to this key when it died while creating it.
void cleanBesideKeyFile(const std::string& path);

}  // namespace host

#endif
