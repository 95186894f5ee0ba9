#ifndef HOST_FS_TEMP_FILE_H
#define HOST_FS_TEMP_FILE_H

#include <string>
#include <vector>

#include "host/fs/descriptor.h"

namespace host {

// A new file with an unpredictable name in a directory. The caller writes it, then renames it over
// another file or gives it a second name. The file is locked until its writer ends, so other
// processes can recognise a file that a killed process left.
class TempFile {
 public:
  // `directory` must be an open directory that outlives the object.
  explicit TempFile(int directory);
  // Removes the file unless it was renamed.
  ~TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  // Each function returns 0 or an errno. create must be called first, and once.
  int create();
  int writeAll(const void* data, std::size_t size);
  int renameTo(const std::string& name);
  // Gives the file a second name, `name`. Returns EEXIST if that name exists.
  int linkAs(const std::string& name);

  int fd() const { return m_file.get(); }

 private:
  int tryToCreate();

  int m_directory;
  std::string m_name;
  Descriptor m_file;
};

// Removes the temporary files in the directory whose writers have ended. The next call tries again
// to remove a file that cannot be removed now.
void removeLeftOverTempFiles(int directory) noexcept;
// Gets the names of these files. Returns 0 or an errno.
int listLeftOverTempFiles(int directory, std::vector<std::string>& names);

}  // namespace host

#endif
