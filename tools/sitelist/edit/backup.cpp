#include "tools/sitelist/edit/backup.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

#include "host/fs/descriptor.h"
#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr mode_t c_modeBits = 07777;

int statOf(const std::string& path, struct stat& status) {
  return -host::fileSystem().stat(AT_FDCWD, path, true, status);
}

// Sets the mode and owner of `from` on `to`.
int takeOver(const std::string& from, const std::string& to) {
  struct stat wanted;
  struct stat present;
  if (const int error = statOf(from, wanted)) return error;
  const host::Descriptor file(
      host::fileSystem().open(AT_FDCWD, to, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0));
  if (file.error()) return file.error();
  if (const int failed = host::fileSystem().statOpen(file.get(), present)) return -failed;
  if (present.st_uid != wanted.st_uid || present.st_gid != wanted.st_gid) {
    const int failed = host::fileSystem().chown(file.get(), wanted.st_uid, wanted.st_gid);
    if (failed) return -failed;
  }
  // The mode is set after the owner, because changing the owner clears bits of the mode.
  return -host::fileSystem().chmod(file.get(), wanted.st_mode & c_modeBits);
}

// Replaces `to`, which gets mode and owner of `like` before it holds a byte that not everybody may
// read.
int replaceLike(const std::string& like, const std::string& to, const std::string& bytes) {
  int error = takeOver(like, to);
  const bool isNew = error == ENOENT;
  if (error == 0 || isNew) error = host::replaceFile(to, bytes.data(), bytes.size(), S_IRUSR);
  if (error == 0 && isNew) error = takeOver(like, to);
  return error;
}

[[noreturn]] void failToWrite(const std::string& path, const std::string& what, int error) {
  throw failureAt(path, exitFile, what + ": " + std::strerror(error),
                  "check that you may write there and that there is free space");
}

}  // namespace

std::string backupPath(const std::string& list) { return list + ".bak"; }

void writeBackup(const std::string& list, const std::string& bytes) {
  const std::string path = backupPath(list);
  if (const int error = replaceLike(list, path, bytes)) {
    failToWrite(path, "the backup cannot be written, so nothing was changed", error);
  }
}

std::string readBackup(const std::string& list) {
  const std::string path = backupPath(list);
  std::string bytes;
  const int error = host::readRegularFile(path, c_maxInputBytes, bytes);
  if (error == ENOENT) {
    throw failureAt(path, exitNotFound, "there is no backup",
                    "use --backup with edits that you may want to undo");
  }
  if (error) {
    throw failureAt(path, exitFile, "cannot be read: " + readFailureReason(error), c_checkFile);
  }
  return bytes;
}

void putBack(const std::string& list, const std::string& bytes) {
  struct stat status;
  const int missing = statOf(list, status);
  const int error = missing == ENOENT
                        ? replaceLike(backupPath(list), list, bytes)
                        : host::replaceFile(list, bytes.data(), bytes.size(), S_IRUSR);
  if (error) failToWrite(list, "cannot be written", error);
}

bool readBytes(const std::string& list, std::string& bytes) {
  return host::readRegularFile(list, c_maxInputBytes, bytes) == 0;
}

}  // namespace tool
