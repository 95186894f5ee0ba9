#include "host/lock/lock_pool.h"

#include <fcntl.h>
#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "host/agent.h"
#include "host/fs/file_system.h"
#include "host/fs/files.h"

namespace host {
namespace {

constexpr mode_t c_modeOfLockFile = 0600;
constexpr mode_t c_modeOfDirectory = 0755;

int openFile(LockFiles::File& file) {
  // Read-only is enough for a lock, and works with a file that may not be written.
  const int fd = fileSystem().open(AT_FDCWD, file.path, O_RDONLY | O_CREAT | O_NONBLOCK | O_NOCTTY,
                                   c_modeOfLockFile);
  if (fd < 0) return -fd;
  file.fd = fd;
  struct stat info;
  if (const int failed = fileSystem().statOpen(fd, info)) return -failed;
  if (!S_ISREG(info.st_mode)) return EINVAL;
  file.device = info.st_dev;
  file.inode = info.st_ino;
  return 0;
}

void closeFile(LockFiles::File& file) {
  if (file.fd >= 0) fileSystem().close(file.fd);
  file.fd = -1;
}

int checkFile(const LockFiles::File& file) {
  struct stat info;
  const int error = -fileSystem().stat(AT_FDCWD, file.path, true, info);
  if (error == ENOENT || error == ENOTDIR) return ESTALE;
  if (error) return error;
  return info.st_ino == file.inode && info.st_dev == file.device ? 0 : ESTALE;
}

}  // namespace

int LockFiles::check() const {
  const int error = checkFile(main);
  return error ? error : checkFile(gate);
}

LockPool::Entry::~Entry() {
  closeFile(files.main);
  closeFile(files.gate);
}

LockPool::LockPool() {
  if (::pthread_atfork(beforeFork, afterForkInParent, afterForkInChild) != 0) {
    throw std::bad_alloc();
  }
}

LockPool& LockPool::instance() {
  // Never destroyed: locks may be used while the process ends.
  static LockPool& pool = *new LockPool;
  return pool;
}

int LockPool::take(const std::string& name, LockFiles*& files, std::string& path) {
  const std::string directory = agent().dataDirectory + "/locks";
  const std::string mainPath = directory + "/" + name + ".lock";

  // Held while opening too: a fork at that moment would give the child a file that nobody closes.
  const std::lock_guard<std::mutex> guard(m_mutex);
  for (const auto& entry : m_entries) {
    if (entry->idle && entry->files.main.path == mainPath) {
      path = mainPath;
      entry->idle = false;
      files = &entry->files;
      return 0;
    }
  }
  auto entry = std::make_unique<Entry>();
  entry->files.main.path = mainPath;
  entry->files.gate.path = directory + "/" + name + ".gate";
  for (LockFiles::File* file : {&entry->files.main, &entry->files.gate}) {
    int error = openFile(*file);
    if (error == ENOENT) {
      path = directory;
      error = makeDirectories(directory, c_modeOfDirectory);
      if (error) return error;
      error = openFile(*file);
    }
    path = file->path;
    if (error) return error;
  }
  path = mainPath;
  m_entries.push_back(std::move(entry));
  files = &m_entries.back()->files;
  return 0;
}

void LockPool::giveBack(LockFiles* files) noexcept {
  const std::lock_guard<std::mutex> guard(m_mutex);
  for (const auto& entry : m_entries) {
    if (&entry->files != files) continue;
    if (!entry->outdated) {
      entry->idle = true;
      return;
    }
  }
  erase(files);
}

void LockPool::discard(LockFiles* files) noexcept {
  const std::lock_guard<std::mutex> guard(m_mutex);
  erase(files);
}

void LockPool::dropIdle() {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                 [](const auto& entry) { return entry->idle; }),
                  m_entries.end());
  for (const auto& entry : m_entries) entry->outdated = true;
}

void LockPool::erase(const LockFiles* files) {
  m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                 [&](const auto& entry) { return &entry->files == files; }),
                  m_entries.end());
}

void LockPool::beforeFork() { instance().m_mutex.lock(); }

void LockPool::afterForkInParent() { instance().m_mutex.unlock(); }

void LockPool::afterForkInChild() {
  // The holders keep their entries, now without a file, and find out by that.
  for (const auto& entry : instance().m_entries) {
    closeFile(entry->files.main);
    closeFile(entry->files.gate);
    entry->idle = false;
  }
  instance().m_mutex.unlock();
}

}  // namespace host
