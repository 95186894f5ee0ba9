#include "host/fs/temp_file.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "host/process/random_bytes.h"

namespace host {
namespace {

constexpr std::string_view c_prefix = ".sitehlp-";
constexpr std::string_view c_suffix = ".tmp";
constexpr std::size_t c_randomBytes = 8;
constexpr int c_attempts = 100;
constexpr char c_hexDigits[] = "0123456789abcdef";

int makeName(std::string& name) {
  unsigned char random[c_randomBytes];
  if (const int error = drawRandomBytes(random, sizeof random)) return error;
  name = c_prefix;
  for (const unsigned char byte : random) {
    name += c_hexDigits[byte >> 4];
    name += c_hexDigits[byte & 15];
  }
  name += c_suffix;
  return 0;
}

bool isTempName(const std::string& name) {
  const std::size_t digits = 2 * c_randomBytes;
  return name.size() == c_prefix.size() + digits + c_suffix.size() &&
         name.compare(0, c_prefix.size(), c_prefix) == 0 &&
         name.compare(c_prefix.size() + digits, c_suffix.size(), c_suffix) == 0 &&
         name.find_first_not_of(c_hexDigits, c_prefix.size()) == c_prefix.size() + digits;
}

// Calls the function for each temporary file whose writer has ended. The file is locked meanwhile.
// Returns 0 or an errno.
template <typename Function>
int forEachLeftOver(int directory, Function function) {
  std::vector<std::string> names;
  const int listed = fileSystem().list(directory, names);
  if (listed < 0) return -listed;
  for (const std::string& name : names) {
    if (!isTempName(name)) continue;
    const Descriptor file(
        fileSystem().open(directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0));
    // A running writer holds the lock. A writer that has just renamed its file does not hold it,
    // but then the name no longer exists.
    if (file.error() == 0 && fileSystem().lock(file.get(), LOCK_EX | LOCK_NB) == 0) function(name);
  }
  return 0;
}

}  // namespace

TempFile::TempFile(int directory) : m_directory(directory), m_file(-EBADF) {}

TempFile::~TempFile() {
  if (!m_name.empty()) fileSystem().unlink(m_directory, m_name);
}

int TempFile::create() {
  int error = EAGAIN;
  for (int attempt = 0; error == EAGAIN && attempt < c_attempts; ++attempt) {
    error = tryToCreate();
  }
  return error;
}

// Returns EAGAIN if the name exists, or if another process removed the new file before it was
// locked.
int TempFile::tryToCreate() {
  std::string name;
  if (const int error = makeName(name)) return error;
  Descriptor file(
      fileSystem().open(m_directory, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600));
  if (file.error()) return file.error() == EEXIST ? EAGAIN : file.error();

  struct stat info;
  int error = -fileSystem().lock(file.get(), LOCK_EX | LOCK_NB);
  if (error == 0) error = -fileSystem().statOpen(file.get(), info);
  if (error == 0 && info.st_nlink == 0) error = EAGAIN;
  if (error) {
    fileSystem().unlink(m_directory, name);
    return error;
  }
  m_name = std::move(name);  // a copy could fail and leave the file behind
  m_file = std::move(file);
  return 0;
}

int TempFile::writeAll(const void* data, std::size_t size) {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t n = fileSystem().write(fd(), next, size);
    if (n < 0) return static_cast<int>(-n);
    if (n == 0) return EIO;
    next += n;
    size -= static_cast<std::size_t>(n);
  }
  return 0;
}

int TempFile::renameTo(const std::string& name) {
  const int error = -fileSystem().rename(m_directory, m_name, name);
  if (error == 0) m_name.clear();
  return error;
}

int TempFile::linkAs(const std::string& name) {
  return -fileSystem().link(m_directory, m_name, name);
}

void removeLeftOverTempFiles(int directory) noexcept try {
  forEachLeftOver(directory,
                  [directory](const std::string& name) { fileSystem().unlink(directory, name); });
} catch (const std::bad_alloc&) {
  // A failure to clean up must not change the result of the operation before it.
}

int listLeftOverTempFiles(int directory, std::vector<std::string>& names) {
  return forEachLeftOver(directory, [&names](const std::string& name) { names.push_back(name); });
}

}  // namespace host
