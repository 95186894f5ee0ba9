#ifndef HOST_FS_TEMP_FILE_H
#define HOST_FS_TEMP_FILE_H

#include <string>

#include "host/fs/descriptor.h"

namespace host {

// A new file under an unpredictable name in a directory, there to be written and then renamed over
// another one. It is locked as long as its writer lives; that is how a left-over one is told.
class TempFile {
 public:
  // `directory` is an open directory that outlives the object.
  explicit TempFile(int directory);
  // Removes the file unless it was renamed.
  ~TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  // Each returns 0 or an errno. create comes first and once.
  int create();
  int writeAll(const void* data, std::size_t size);
  int renameTo(const std::string& name);
  // Gives the file this name unless the name is taken (EEXIST).
  int linkAs(const std::string& name);

  int fd() const { return m_file.get(); }

 private:
  int tryToCreate();

  int m_directory;
  std::string m_name;
  Descriptor m_file;
};

// Removes the temporary files in the directory that no living writer holds. What cannot be removed
// stays for the next time.
void removeLeftOverTempFiles(int directory) noexcept;

}  // namespace host

#endif
