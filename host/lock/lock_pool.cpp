#include "host/lock/lock_pool.h"

#include <algorithm>

#include "host/agent.h"
#include "host/process/lasting.h"

namespace host {
namespace {

Lasting<LockPool> g_pool;

}  // namespace

const ForkChildHandler LockPool::m_forkHandler{closeFilesOfParent};

LockPool::Entry::~Entry() { files.close(); }

LockPool& LockPool::instance() { return g_pool.get(); }

int LockPool::take(const std::string& name, LockFiles*& files, LockFailure& failure) {
  const std::string directory = agent().dataDirectory + "/locks";
  const std::string mainPath = directory + "/" + name + ".lock";

  // The mutex is also held while files are opened, because a fork at that moment would give the
  // child a file that is never closed.
  const ForkLock lock(c_lockFilesMutex);
  for (const auto& entry : m_entries) {
    if (entry->idle && entry->files.main.path == mainPath) {
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
  const ForkLock lock(c_lockFilesMutex);
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
  const ForkLock lock(c_lockFilesMutex);
  erase(files);
}

void LockPool::dropIdle() {
  const ForkLock lock(c_lockFilesMutex);
  eraseIdle();
  for (const auto& entry : m_entries) entry->outdated = true;
}

void LockPool::eraseIdle() {
  m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                 [](const auto& entry) { return entry->idle; }),
                  m_entries.end());
}

void LockPool::erase(const LockFiles* files) {
  m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                 [&](const auto& entry) { return &entry->files == files; }),
                  m_entries.end());
}

void LockPool::closeFilesOfParent() {
  LockPool* const pool = g_pool.find();
  if (!pool) return;
  pool->eraseIdle();
  // The holders keep their entries. They recognise the fork by the closed file.
  for (const auto& entry : pool->m_entries) entry->files.close();
}

}  // namespace host
