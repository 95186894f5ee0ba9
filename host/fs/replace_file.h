#ifndef HOST_FS_REPLACE_FILE_H
#define HOST_FS_REPLACE_FILE_H

#include <sys/stat.h>

#include <cstddef>

#include "host/fs/path_walk.h"
#include "host/fs/temp_file.h"

// The two steps of a replacement, for callers that replace several files. Each function returns 0
// or an errno. Any thread.
namespace host {

constexpr mode_t c_modeOfSecret = S_IRUSR | S_IWUSR;

// Which mode a file gets that replaces another one.
enum class OldMode { Kept, Dropped };

// Replaces or creates the file at a place that was found. `temp` is a new object for the directory
// of the place. The bytes are on the disk before the file has its name. Until finishDirectory has
// been called, a power cut may still restore the old file.
int placeFile(const PathWalk& place, TempFile& temp, const void* data, std::size_t size,
              mode_t mode, OldMode oldMode);

// Syncs an open directory. Then removes the temporary files that killed processes left in it.
int finishDirectory(int directory);

}  // namespace host

#endif
