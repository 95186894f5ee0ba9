#include "tests/resilience/disk_model.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>

#include "tests/resilience/workshop.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::string withoutSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string parentOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

}  // namespace

DiskModel::DiskModel(const std::vector<std::string>& roots) {
  int number = 0;
  for (const std::string& root : roots) {
    m_durable.directories.insert(root);
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      const std::string path = entry.path().string();
      if (entry.is_directory()) {
        m_durable.directories.insert(path);
      } else if (!isLockFile(path)) {
        m_durable.entries[path] = --number;  // recorded opens count from 1
        m_durable.contents[number] = readFile(path);
      }
    }
  }
  m_live = m_durable;
}

void DiskModel::Disk::take(const Effect& effect) {
  switch (effect.kind) {
    case Kind::Data: {
      std::string& content = contents[effect.file];
      const std::size_t end = effect.offset + effect.bytes.size();
      if (content.size() < end) content.resize(end, '\0');
      content.replace(effect.offset, effect.bytes.size(), effect.bytes);
      return;
    }
    case Kind::Enter:
      entries[effect.path] = effect.file;
      return;
    case Kind::Rename: {
      const auto old = entries.find(effect.path);
      if (old != entries.end() && old->second == effect.file) entries.erase(old);
      entries[effect.newPath] = effect.file;
      return;
    }
    case Kind::Remove:
      entries.erase(effect.path);
      return;
    case Kind::MakeDirectory:
      directories.insert(effect.path);
      return;
  }
}

bool DiskModel::isIn(const Effect& effect, const std::string& directory) {
  return effect.kind != Kind::Data && parentOf(effect.path) == directory;
}

void DiskModel::add(Effect effect) {
  m_live.take(effect);
  m_pending.push_back(std::move(effect));
}

void DiskModel::sync(const RecordedCall& call) {
  const bool isDirectory = m_openDirectories.count(call.file) != 0;
  const std::string directory = withoutSlash(call.path);
  const auto reached = [&](const Effect& effect) {
    return isDirectory ? isIn(effect, directory)
                       : effect.kind == Kind::Data && effect.file == fileOf(call);
  };
  for (const Effect& effect : m_pending) {
    if (reached(effect)) m_durable.take(effect);
  }
  m_pending.erase(std::remove_if(m_pending.begin(), m_pending.end(), reached), m_pending.end());
}

int DiskModel::fileOf(const RecordedCall& call) const {
  const auto opened = m_opened.find(call.file);
  return opened == m_opened.end() ? call.file : opened->second;
}

bool DiskModel::apply(const RecordedCall& call) {
  if (call.result < 0 || isLockFile(call.path)) return false;
  Effect effect{};
  effect.file = fileOf(call);
  effect.path = withoutSlash(call.path);
  switch (call.call) {
    case FileCall::Open:
      if ((call.flags & O_DIRECTORY) != 0) m_openDirectories.insert(call.file);
      if (const auto there = m_live.entries.find(effect.path); there != m_live.entries.end()) {
        m_opened[call.file] = there->second;
        return false;
      }
      if ((call.flags & O_CREAT) == 0) return false;
      effect.kind = Kind::Enter;
      break;
    case FileCall::Write:
      effect.kind = Kind::Data;
      effect.offset = m_written[call.file];
      effect.bytes = call.data;
      m_written[call.file] += call.data.size();
      break;
    case FileCall::Rename:
      effect.kind = Kind::Rename;
      effect.file = m_live.entries.at(effect.path);
      effect.newPath = call.newPath;
      break;
    case FileCall::Link:
      effect.kind = Kind::Enter;
      effect.file = m_live.entries.at(effect.path);
      effect.path = call.newPath;
      break;
    case FileCall::Unlink:
      effect.kind = Kind::Remove;
      break;
    case FileCall::MakeDirectory:
      effect.kind = Kind::MakeDirectory;
      break;
    case FileCall::Sync:
      sync(call);
      return true;
    default:
      return false;
  }
  add(std::move(effect));
  return true;
}

DiskModel::Files DiskModel::afterPowerCut(
    const std::function<bool(std::size_t number)>& spared) const {
  Disk disk = m_durable;
  for (std::size_t i = 0; i < m_pending.size(); ++i) {
    if (spared(i)) disk.take(m_pending[i]);
  }
  Files files;
  for (const auto& [path, file] : disk.entries) {
    bool reachable = true;
    for (std::string above = parentOf(path); reachable && above.size() > 1;
         above = parentOf(above)) {
      // Directories above the roots are not part of the model.
      if (m_live.directories.count(above) != 0) reachable = disk.directories.count(above) != 0;
    }
    if (reachable) files[path] = disk.contents[file];
  }
  return files;
}

}  // namespace test
