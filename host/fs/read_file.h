#ifndef HOST_FS_READ_FILE_H
#define HOST_FS_READ_FILE_H

#include <cstddef>
#include <string>

namespace host {

// Does the same as readRegularFile for a file that was just opened.
int readOpenFile(int fd, std::size_t limit, std::string& bytes);

}  // namespace host

#endif
