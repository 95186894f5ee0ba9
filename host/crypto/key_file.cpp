#include "host/crypto/key_file.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <system_error>

#include "host/crypto/sealed_value.h"
#include "platform/common/log.h"

namespace host {
namespace {

constexpr const wchar_t* c_component = L"Crypto";
constexpr mode_t c_keyMode = S_IRUSR | S_IWUSR;
constexpr mode_t c_directoryMode = S_IRWXU;
// File systems count the time of a change in steps of up to two seconds.
constexpr std::int64_t c_settledNs = 3'000'000'000;

class Descriptor {
 public:
  explicit Descriptor(int fd) : m_fd(fd) {}
  ~Descriptor() {
    if (m_fd >= 0) ::close(m_fd);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return m_fd; }

 private:
  int m_fd;
};

AString message(const std::string& path, const wchar_t* text) {
  AString result(L"Key file ");
  return result.append(AString(path.c_str())).append(L": ").append(text);
}

bool fail(const std::string& path, const wchar_t* text) {
  logError(c_component, message(path, text));
  return false;
}

bool fail(const std::string& path, const wchar_t* text, int error) {
  const std::string reason = std::generic_category().message(error);
  logError(c_component, message(path, text).append(L": ").append(AString(reason.c_str())));
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
#ifdef __APPLE__
  state.changedNs = toNs(status.st_ctimespec);
#else
  state.changedNs = toNs(status.st_ctim);
#endif
  return state;
}

std::string directoryOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

void makePrivate(int fd, const struct stat& status, const std::string& path) {
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) == 0) return;
  if (status.st_uid != ::geteuid()) {
    logInfo(c_component, message(path, L"open to other users, and not ours to close"));
  } else if (::fchmod(fd, c_keyMode) == 0) {
    logInfo(c_component, message(path, L"was open to other users; its mode is 0600 now"));
  } else {
    logInfo(c_component, message(path, L"open to other users, and its mode cannot be changed"));
  }
}

// Writes a new file and gives it its name only when it is complete and on the disk.
int publish(const SecretBytes& key, const std::string& temporary, const std::string& path) {
  const Descriptor file(
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, c_keyMode));
  if (file.get() < 0) return errno;
  int error = 0;
  if (::write(file.get(), key.data(), key.size()) != static_cast<ssize_t>(key.size()) ||
      ::fsync(file.get()) != 0 || ::link(temporary.c_str(), path.c_str()) != 0) {
    error = errno;
  }
  ::unlink(temporary.c_str());
  return error;
}

std::string temporaryName(const std::string& path) {
  unsigned char random[8];
  if (RAND_bytes(random, sizeof random) != 1) throw std::bad_alloc();
  std::string name = path + ".";
  for (const unsigned char byte : random) {
    name += "0123456789abcdef"[byte >> 4];
    name += "0123456789abcdef"[byte & 15];
  }
  return name;
}

}  // namespace

std::string keyFilePath(const std::string& dataDirectory, const char* name) {
  return dataDirectory + "/keystore/" + name;
}

int keyFileState(const std::string& path, KeyFileState& state) {
  struct stat status;
  if (::lstat(path.c_str(), &status) != 0) return errno;
  state = stateOf(status);
  return 0;
}

bool readKeyFile(const std::string& path, SecretBytes& key, KeyFileState& state) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (file.get() < 0) {
    return errno == ELOOP ? fail(path, L"refused, it is a symbolic link")
                          : fail(path, L"cannot be opened", errno);
  }
  struct stat status;
  if (::fstat(file.get(), &status) != 0) return fail(path, L"cannot be examined", errno);
  if (!S_ISREG(status.st_mode)) return fail(path, L"refused, it is no regular file");
  makePrivate(file.get(), status, path);
  SecretBytes bytes(c_keySize + 1);
  const ssize_t count = ::read(file.get(), bytes.data(), bytes.size());
  if (count < 0) return fail(path, L"cannot be read", errno);
  if (count != static_cast<ssize_t>(c_keySize)) return fail(path, L"has not the size of a key");
  bytes.resize(c_keySize);
  if (::fstat(file.get(), &status) != 0) return fail(path, L"cannot be examined", errno);
  state = stateOf(status);
  state.settled = state.changedNs < toNs(now) - c_settledNs;
  key = std::move(bytes);
  return true;
}

bool createKeyFile(const std::string& path) {
  const std::string directory = directoryOf(path);
  if (::mkdir(directory.c_str(), c_directoryMode) != 0 && errno != EEXIST) {
    return fail(path, L"its directory cannot be made", errno);
  }
  SecretBytes key(c_keySize);
  if (RAND_priv_bytes(key.data(), c_keySize) != 1) {
    return fail(path, L"there are no random numbers to make it from");
  }
  const int error = publish(key, temporaryName(path), path);
  if (error != 0 && error != EEXIST) return fail(path, L"cannot be created", error);
  const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.get() < 0 || ::fsync(opened.get()) != 0) {
    return fail(path, L"its directory cannot be brought to the disk", errno);
  }
  return true;
}

}  // namespace host
