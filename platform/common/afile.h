#ifndef PLATFORM_COMMON_AFILE_H
#define PLATFORM_COMMON_AFILE_H

#include <string>
#include <vector>

#include "platform/common/abuffer.h"
#include "platform/common/astring.h"

// Files by name. Names are wide and are converted to UTF-8 for the system. Only std::bad_alloc is
// thrown. A failure is returned as false. Its reason is logged: at info level for a failed write,
// removal or creation of a directory, otherwise at detail level. All operations may block on the
// file system. Any thread.

// Returns `directory` and `name` with exactly one "/" between them, or `name` alone when
// `directory` is empty.
PLATFORM_API std::wstring joinPath(const std::wstring& directory, const std::wstring& name);

// Splits a path at its last "/". `directory` receives the part before it: "/" for a file in the
// root, empty when there is no "/". `name` receives the part after it. Either pointer may be null.
PLATFORM_API void splitPath(const std::wstring& path, std::wstring* directory, std::wstring* name);

// A path: a directory and a file name, joined.
class PLATFORM_API APath {
 public:
  // As joinPath. May throw std::bad_alloc.
  APath(const AString& directory, const AString& name);

  const AString& str() const { return m_path; }            // valid as long as the object
  const wchar_t* c_str() const { return m_path.c_str(); }  // the same, zero-terminated

 private:
  AString m_path;
};

// The content of files.
class PLATFORM_API AFile {
 public:
  // Reads a whole regular file into `out`. On failure `out` is unchanged.
  static bool readExisting(const AString& path, ABuffer& out);

  // Creates or atomically replaces the file with these bytes, which may be a secret. Other
  // processes find the whole old file or the whole new one, even if this process is killed. On
  // failure the old file is unchanged, unless only the final sync of the directory failed. Only the
  // owner may read and write the new file, whatever the mode of the old one was. The owner of an
  // existing file is kept.
  //
  // A symbolic link anywhere in the path is followed only if it belongs to the effective user or to
  // root. Any other link makes the call fail, with an error line that names it.
  static bool write(const AString& path, const ABuffer& data);

  // A file for writeTogether.
  struct NewContent {
    AString path;         // where the file is created or replaced
    const ABuffer* data;  // its bytes; not null, and unchanged during the call
  };

  // Writes files that belong together, in this order. Each gets the guarantees of write. If the
  // result is true, all of them survive a power cut. Before that, a power cut may leave any of them
  // new and the others old. A file that already has the bytes, the mode and one hard link is only
  // synced.
  //
  // The first failure ends the call. The files before it are replaced, and those after it are
  // unchanged. If only the sync of a directory fails, all files are replaced.
  static bool writeTogether(const std::vector<NewContent>& files);
};

// Operations on whole files and directories.
class PLATFORM_API AFiler {
 public:
  // The kind of access that getFileAccessibility checks.
  enum AFileAccess {
    accessExist = 0,  // whether the file is there
    accessRead = 1,   // whether it may be read
    accessWrite = 2   // whether it may be written
  };

  // Removes a file. Returns true also when the file did not exist. A symbolic link at the end of
  // the path is removed, not its target. Other links in the path are followed as in AFile::write.
  static bool deleteFile(const AString& path);

  // Copies a regular file, with the guarantees of AFile::write, except that an existing target
  // keeps its mode. Returns false also when `from` cannot be read.
  static bool copyFile(const AString& from, const AString& to);

  // Creates a directory and its missing parents. Returns true also when the directory exists
  // already. An empty path is the current directory. Symbolic links are followed as in
  // AFile::write.
  static bool createDirectory(const AString& path);

  // Determines whether the effective user may use the file in the given way. `exists` receives
  // whether the file exists. `accessible` receives whether the access is granted; it is false for a
  // missing file. Returns false when this cannot be determined; both outputs are then false.
  static bool getFileAccessibility(const AString& path, AFileAccess access, bool& exists,
                                   bool& accessible);

  // Gets the number of bytes of a regular file. Symbolic links are followed. Returns false and
  // leaves `size` unchanged when there is no such file.
  static bool getFileSize(const AString& path, unsigned long long& size);

  // Returns whether a write to `a` would replace the file of `b`. This is so if both lead to the
  // same name in the same directory after symbolic links at their ends are followed. The spelling
  // of the paths does not matter. Two hard links are different files, because a file is replaced by
  // name.
  //
  // Returns false when the directory of either path does not exist. Returns true when the answer
  // cannot be determined for another reason, so that a caller never overwrites its source by
  // mistake. That reason is logged at detail level.
  static bool isSameFile(const AString& a, const AString& b);
};

#endif
