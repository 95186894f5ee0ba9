#ifndef TOOLS_SITELIST_FLEET_GIVEN_LISTS_H
#define TOOLS_SITELIST_FLEET_GIVEN_LISTS_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/cli/failure.h"

namespace tool {

// One of several lists to read.
struct GivenList {
  std::string path;                // for the library
  bool isFound = false;            // found in a directory
  bool isStream = false;           // standard input or a pipe
  int error = 0;                   // errno of a stream or directory that cannot be read
  std::optional<Failure> failure;  // the failure to report for `error`
};

// The lists that the command line names: files, and directories with lists.
class GivenLists {
 public:
  // Finds all files "SiteList.xml" in the named directories and below them, in the order of their
  // paths. Hidden directories and links to directories are skipped there. A directory that cannot
  // be read becomes an entry with a failure. Reads standard input and pipes. Warns of a directory
  // without a list.
  explicit GivenLists(const std::vector<std::string>& arguments);

  const std::vector<GivenList>& all() const { return m_lists; }

 private:
  void addDirectory(const std::string& directory);
  void addStream(const std::string& name);

  std::vector<GivenList> m_lists;
  std::vector<std::unique_ptr<ScratchDirectory>> m_streams;
};

// Returns whether the path leads to a directory.
bool isDirectory(const std::string& path);

// Returns the name of a list in a table: without "/SiteList.xml" if it was found in a directory.
std::string shortName(const GivenList& list);

}  // namespace tool

#endif
