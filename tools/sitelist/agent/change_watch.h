#ifndef TOOLS_SITELIST_AGENT_CHANGE_WATCH_H
#define TOOLS_SITELIST_AGENT_CHANGE_WATCH_H

#include <deque>
#include <string>
#include <vector>

#include "tools/sitelist/report/context.h"

namespace tool {

// Returns a text for the state of a file. A replaced file has another inode, and an edited one has
// another time.
std::string stateOfFile(const std::string& path);

// The content of a file at one time, or the errno of reading it. A file that is too long for an
// input is not read, and its state is compared instead. The file may be a key, so the content is
// wiped.
class FileContent {
 public:
  explicit FileContent(const std::string& path);
  ~FileContent();
  FileContent(const FileContent&) = delete;
  FileContent& operator=(const FileContent&) = delete;

  // Returns whether the file has other content now.
  bool isChanged() const;

 private:
  std::string m_path;
  std::string m_bytes;
  int m_error;
};

// Finds out whether a command changes files. A change by another program counts as well if the
// caller does not hold the lock of the files.
class ChangeWatch {
 public:
  // Reads the files, of which none needs to exist. `context` must exist longer than the object.
  ChangeWatch(Context& context, const std::vector<std::string>& files);
  // Sets Context::changed if a file was created or removed, or has other bytes.
  ~ChangeWatch();
  ChangeWatch(const ChangeWatch&) = delete;
  ChangeWatch& operator=(const ChangeWatch&) = delete;

 private:
  Context& m_context;
  std::deque<FileContent> m_files;
};

// Returns the files of the current agent that commands write: its lists, its keys, the FIPS marker,
// the mesh copy and the settings.
std::vector<std::string> filesOfAgent(const Context& context);

}  // namespace tool

#endif
