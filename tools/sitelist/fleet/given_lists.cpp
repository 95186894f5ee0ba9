#include "tools/sitelist/fleet/given_lists.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "host/fs/file_system.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr const char* c_listName = "SiteList.xml";

// Does not follow a link at the end of the path, so a loop of links ends.
bool isDirectoryItself(const std::string& path, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status;
  return host::fileSystem().stat(AT_FDCWD, path, false, status) == 0 && S_ISDIR(status.st_mode);
}

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

// Adds the entries that are lists to `lists` and those that are directories to `directories`.
// Returns 0 or an errno.
int readDirectory(const std::string& path, std::vector<GivenList>& lists,
                  std::vector<std::string>& directories) {
  const std::unique_ptr<DIR, CloseDirectory> open(::opendir(path.c_str()));
  if (!open) return errno;
  const std::string start = path.back() == '/' ? path : path + "/";
  for (;;) {
    errno = 0;
    const dirent* const entry = ::readdir(open.get());  // NOLINT(concurrency-mt-unsafe): own stream
    if (!entry) return errno;
    const std::string name = entry->d_name;
    // Also skips the temporary directories of other processes of the tool.
    if (name[0] == '.') continue;
    if (isDirectoryItself(start + name, *entry)) {
      directories.push_back(start + name);
    } else if (name == c_listName) {
      lists.push_back({start + name, true, false, 0, {}});
    }
  }
}

std::string withoutLastSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

GivenLists::GivenLists(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (isReadOnce(argument)) {
      addStream(argument);
    } else if (isDirectory(argument)) {
      addDirectory(withoutLastSlashes(argument));
    } else {
      m_lists.push_back({argument, false, false, 0, {}});
    }
  }
}

void GivenLists::addDirectory(const std::string& directory) {
  std::vector<GivenList> found;
  std::vector<std::string> left = {directory};
  while (!left.empty()) {
    const std::string next = std::move(left.back());
    left.pop_back();
    if (const int error = readDirectory(next, found, left)) {
      found.push_back(
          {next, false, false, error,
           failureAt(next, exitFile,
                     std::string("the directory cannot be read: ") + std::strerror(error),
                     "check that you may read the directory")});
    }
  }
  if (found.empty()) {
    printWarning(shown(directory) + ": no file SiteList.xml is in this directory or below it",
                 "name another directory, or the files themselves");
  }
  std::sort(found.begin(), found.end(),
            [](const GivenList& a, const GivenList& b) { return a.path < b.path; });
  std::move(found.begin(), found.end(), std::back_inserter(m_lists));
}

// The copy is made here, because names for messages may be set in one thread only.
void GivenLists::addStream(const std::string& name) {
  Input input;
  if (const int error = tryReadInput(name, input)) {
    m_lists.push_back({input.name, false, true, error, inputFailure(input.name, error)});
    return;
  }
  m_streams.push_back(std::make_unique<ScratchDirectory>());
  m_lists.push_back({storeInput(*m_streams.back(), input), false, true, 0, {}});
}

bool isDirectory(const std::string& path) {
  struct stat status;
  return host::fileSystem().stat(AT_FDCWD, path, true, status) == 0 && S_ISDIR(status.st_mode);
}

std::string shortName(const GivenList& list) {
  const std::size_t length = std::strlen(c_listName) + 1;
  return list.isFound ? list.path.substr(0, list.path.size() - length) : list.path;
}

}  // namespace tool
