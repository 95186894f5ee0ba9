#include "host/crypto/key_file.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <utility>

#include "host/crypto/key_span.h"
#include "host/crypto/libcrypto.h"
#include "host/crypto/sealed_value.h"
#include "host/fs/change_time.h"
#include "host/fs/descriptor.h"
#include "host/fs/files.h"
#include "host/fs/owner.h"
#include "host/fs/path_walk.h"
#include "host/fs/temp_file.h"
#include "host/process/failure_text.h"
#include "platform/common/log.h"

namespace host {
namespace {

constexpr const char* c_keyDirectory = "/keystore/";
constexpr mode_t c_keyMode = S_IRUSR | S_IWUSR;
constexpr mode_t c_directoryMode = S_IRWXU;
// File systems store the time of a change in steps of up to two seconds.
constexpr std::int64_t c_settledNs = 3'000'000'000;

AString message(const std::string& path, const wchar_t* text) {
  return AString(L"Key file ").append(AString(path.c_str())).append(L": ").append(text);
}

bool fail(const std::string& path, const wchar_t* text) {
  logErrorOnce(message(path, text));
  return false;
}

bool fail(const std::string& path, const wchar_t* text, int error) {
  logErrorOnce(message(path, text).append(L": ").append(AString(errorText(error).c_str())));
  return false;
}

std::int64_t toNs(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

KeyFileState stateOf(const struct stat& status) {
  KeyFileState state;
  state.device = status.st_dev;
  state.inode = status.st_ino;
  state.size = status.st_size;
  state.changedNs = toNs(changeTime(status));
  return state;
}

// Returns whether the open file has only this name, in a directory that only the effective user can
// change. In any other directory, another user may have given this name to a different file of the
// effective user.
bool isOursAlone(const struct stat& status, const std::string& path) {
  if (status.st_uid != ::geteuid() || status.st_nlink != 1) return false;
  PathWalk place;
  struct stat directory;
  if (place.find(path) != 0 || !place.found()) return false;
  if (fileSystem().statOpen(place.directory(), directory) != 0) return false;
  return place.found()->st_ino == status.st_ino && place.found()->st_dev == status.st_dev &&
         directory.st_uid == ::geteuid() && (directory.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

void makePrivate(int fd, const struct stat& status, const std::string& path) {
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) == 0) return;
  if (!isOursAlone(status, path)) {
    logInfo(c_cryptoComponent, message(path,
                                       L"other users can open it, and its mode was not changed; "
                                       L"next: set its mode to 0600"));
  } else if (fileSystem().chmod(fd, c_keyMode) == 0) {
    logInfo(c_cryptoComponent, message(path, L"was open to other users; its mode is 0600 now"));
  } else {
    logInfo(c_cryptoComponent,
            message(path,
                    L"other users can open it, and its mode cannot be changed; next: set its "
                    L"mode to 0600"));
  }
}

// Creates a complete file with the name `name` on the disk. Returns EEXIST and changes nothing if
// the name exists.
int publish(int directory, const std::string& name, const SecretBytes& key) {
  TempFile file(directory);
  int error = file.create();
  if (error == 0) error = giveToOwnerOf(directory, file.fd());
  if (error == 0) error = file.writeAll(key.data(), key.size());
  if (error == 0) error = -fileSystem().sync(file.fd());
  if (error == 0) error = file.linkAs(name);
  return error;
}

}  // namespace

std::string keyFilePath(const std::string& dataDirectory, const char* name) {
  return dataDirectory + c_keyDirectory + name;
}

int keyFileState(const std::string& path, KeyFileState& state) {
  struct stat status;
  if (const int failed = fileSystem().stat(AT_FDCWD, path, false, status)) return -failed;
  state = stateOf(status);
  return 0;
}

bool readKeyFile(const std::string& path, SecretBytes& key, KeyFileState& state) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  const Descriptor file(
      fileSystem().open(AT_FDCWD, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0));
  if (file.error() == ELOOP) {
    return fail(path, L"refused, it is a symbolic link; next: replace the link by the key file");
  }
  if (file.error()) return fail(path, L"cannot be opened", file.error());
  struct stat status;
  int failed = fileSystem().statOpen(file.get(), status);
  if (failed) return fail(path, L"cannot be examined", -failed);
  if (!S_ISREG(status.st_mode)) {
    return fail(path, L"refused, it is not a regular file; next: restore the agent's key file");
  }
  makePrivate(file.get(), status, path);

  SecretBytes bytes(c_keySize + 1);
  std::size_t size = 0;
  for (ssize_t count = 1; count > 0 && size < bytes.size();
       size += static_cast<std::size_t>(count)) {
    count = fileSystem().read(file.get(), bytes.data() + size, bytes.size() - size);
    if (count < 0) return fail(path, L"cannot be read", static_cast<int>(-count));
  }
  if (size != c_keySize) {
    const std::wstring found = size < c_keySize ? std::to_wstring(size) : L"more than 32";
    return fail(path, (L"the file has " + found +
                       L" bytes, but a key has 32; next: restore the agent's key file")
                          .c_str());
  }
  bytes.resize(c_keySize);

  failed = fileSystem().statOpen(file.get(), status);
  if (failed) return fail(path, L"cannot be examined", -failed);
  state = stateOf(status);
  state.settled = state.changedNs < toNs(now) - c_settledNs;
  key = std::move(bytes);
  return true;
}

bool drawKey(SecretBytes& key) {
  const LibcryptoUse use;
  return RAND_priv_bytes(key.data(), static_cast<int>(key.size())) == 1;
}

bool createKeyFile(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string directory = path.substr(0, slash);
  const int notMade = makeDirectory(directory, c_directoryMode);
  if (notMade) return fail(path, L"its directory cannot be created", notMade);
  PathWalk opened;
  if (const int error = opened.enter(directory)) {
    return fail(path, L"its directory cannot be opened", error);
  }

  SecretBytes key(c_keySize);
  if (!drawKey(key)) {
    return fail(path, L"no random numbers are available to create it");
  }
  int error = publish(opened.directory(), path.substr(slash + 1), key);
  const bool isNew = error == 0;
  if (isNew || error == EEXIST) error = -fileSystem().sync(opened.directory());
  if (error) return fail(path, L"cannot be created", error);
  if (isNew) {
    logInfo(c_cryptoComponent,
            AString(L"WARNING: ")
                .append(message(path,
                                L"it was missing, so a new key was created. Passwords that were "
                                L"encrypted with another key cannot be decrypted")));
  }
  return true;
}

void cleanBesideKeyFile(const std::string& path) {
  PathWalk directory;
  if (directory.enter(parentOf(path)) == 0) removeLeftOverTempFiles(directory.directory());
}

}  // namespace host
