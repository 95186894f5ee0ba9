#include "platform/common/afile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/file_system.h"
#include "host/fs/files.h"
#include "host/fs/path_walk.h"
#include "host/fs/secret_files.h"
#include "host/process/failure_text.h"
#include "host/process/secret.h"
#include "platform/common/log.h"

namespace {

constexpr std::size_t c_maxFileBytes = std::size_t{1} << 30;
constexpr mode_t c_modeOfNewCopy = 0600;
constexpr mode_t c_modeOfNewDirectory = 0755;

bool isAbsence(int error) { return error == ENOENT || error == ENOTDIR; }

bool succeeded(const char* what, const std::string& path, int error) {
  if (error && logEnabled(LogLevel::Detail)) {
    logDetail(host::c_logComponent, host::failureText(what, path, error));
  }
  return error == 0;
}

// A failed read is logged at detail level, because the file may just be missing. A failed change is
// logged at info level.
bool changed(const char* what, const std::string& path, int error) {
  if (error && logEnabled(LogLevel::Info)) {
    logInfo(host::c_logComponent, host::failureText(what, path, error));
  }
  return error == 0;
}

// The bytes may be a key.
bool read(const AString& path, host::SecretText& content) {
  const ACharString name(path);
  return succeeded("Cannot read", name.str(),
                   host::readRegularFile(name.str(), c_maxFileBytes, *content));
}

int askAccess(const std::string& path, AFiler::AFileAccess access, bool& exists, bool& accessible) {
  if (access == AFiler::accessWrite) {
    host::PathWalk place;
    place.find(path);
    if (!place.refusal().empty()) {  // a link that a write does not follow
      exists = true;
      return place.reported("Cannot write", path, 0);
    }
  }
  struct stat info;
  int error = -host::fileSystem().stat(AT_FDCWD, path, true, info);
  if (isAbsence(error)) return 0;
  if (error) return error;
  exists = true;
  if (access != AFiler::accessExist) {
    error = -host::fileSystem().access(path, access == AFiler::accessRead ? R_OK : W_OK);
    exists = !isAbsence(error);  // it may have been removed in the meantime
    if (!exists) return 0;
  }
  accessible = error == 0;
  return error == EACCES || error == EPERM || error == EROFS ? 0 : error;
}

}  // namespace

bool AFile::readExisting(const AString& path, ABuffer& out) {
  host::SecretText content;
  if (!read(path, content)) return false;
  out = ABuffer(reinterpret_cast<const unsigned char*>(content->data()), content->size());
  return true;
}

bool AFile::write(const AString& path, const ABuffer& data) {
  const ACharString name(path);
  return changed("Cannot write", name.str(),
                 host::replaceSecretFile(name.str(), data.data(), data.size()));
}

bool AFile::writeTogether(const std::vector<NewContent>& files) {
  std::vector<host::SecretFile> secrets;
  secrets.reserve(files.size());
  for (const NewContent& file : files) {
    secrets.push_back({ACharString(file.path).str(), file.data->data(), file.data->size()});
  }
  std::string failed;
  const int error = host::replaceSecretFiles(secrets, failed);
  return changed("Cannot write", failed, error);
}

bool AFiler::deleteFile(const AString& path) {
  const ACharString name(path);
  return changed("Cannot delete", name.str(), host::removeFile(name.str()));
}

bool AFiler::copyFile(const AString& from, const AString& to) {
  host::SecretText content;
  if (!read(from, content)) return false;
  const ACharString name(to);
  return changed("Cannot write", name.str(),
                 host::replaceFile(name.str(), content->data(), content->size(), c_modeOfNewCopy));
}

bool AFiler::createDirectory(const AString& path) {
  if (path.empty()) return true;
  const ACharString name(path);
  return changed("Cannot create directory", name.str(),
                 host::makeDirectories(name.str(), c_modeOfNewDirectory));
}

bool AFiler::getFileAccessibility(const AString& path, AFileAccess access, bool& exists,
                                  bool& accessible) {
  exists = false;
  accessible = false;
  const ACharString name(path);
  if (succeeded("Cannot determine the access to", name.str(),
                askAccess(name.str(), access, exists, accessible))) {
    return true;
  }
  exists = false;
  accessible = false;
  return false;
}

bool AFiler::getFileSize(const AString& path, unsigned long long& size) {
  const ACharString name(path);
  struct stat info;
  const int error = -host::fileSystem().stat(AT_FDCWD, name.str(), true, info);
  if (isAbsence(error) || !succeeded("Cannot determine the size of", name.str(), error))
    return false;
  if (!S_ISREG(info.st_mode)) return false;
  size = static_cast<unsigned long long>(info.st_size);
  return true;
}

bool AFiler::isSameFile(const AString& a, const AString& b) {
  const ACharString name(a);
  bool same = true;
  const int error = host::wouldReplace(name.str(), ACharString(b).str(), same);
  if (isAbsence(error)) return false;
  return !succeeded("Cannot determine what would be replaced by a write to", name.str(), error) ||
         same;
}
