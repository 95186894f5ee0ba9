#ifndef HOST_FS_SECRET_FILES_H
#define HOST_FS_SECRET_FILES_H

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// A file for replaceSecretFiles. The bytes must remain valid during the call.
struct SecretFile {
  std::string path;
  const void* data;
  std::size_t size;
};

// Does the same as replaceSecretFile for each file, in this order, but syncs each directory only
// once, after its last file. A file that a write would not change is only synced. Until the call
// returns, a power cut may leave any of the files new and the others old.
//
// Returns 0 if all files are on the disk. Otherwise returns an errno and sets `failed` to the path
// that it belongs to. The files before that one are replaced, and those after it are unchanged. If
// only the sync of a directory failed, all files are replaced.
int replaceSecretFiles(const std::vector<SecretFile>& files, std::string& failed);

}  // namespace host

#endif
