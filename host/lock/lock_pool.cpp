#include "host/lock/lock_pool.h"

#include <pthread.h>

#include <algorithm>
#include <new>

#include "host/agent.h"

namespace host {

LockPool::Entry::~Entry() { files.close(); }

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

int LockPool::take(const std::string& name, LockFiles*& files, LockFailure& failure) {
  const std::string directory = agent().dataDirectory + "/locks";
  const std::string mainPath = directory + "/" + name + ".lock";

  // Held while opening too: a fork at that moment would give the child a file that nobody closes.
  const std::lock_guard<std::mutex> guard(m_mutex);
  for (const auto& entry : m_entries) {
    if (entry->idle && entry->files.main.path == mainPath) {
      failure.path = mainPath;
      entry->idle = false;
      files = &entry->files;
      return 0;
    }
  }
  auto entry = std::make_unique<Entry>();
  if (const int error = openLockFiles(directory, name, entry->files, failure)) return error;
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
    entry->files.close();
    entry->idle = false;
  }
  instance().m_mutex.unlock();
}

}  // namespace host
