#ifndef PLATFORM_COMMON_AFILE_H
#define PLATFORM_COMMON_AFILE_H

#include <string>

#include "platform/common/abuffer.h"
#include "platform/common/astring.h"

// Files by name. Names are wide and handed to the system as UTF-8. Nothing here throws anything but
// std::bad_alloc; a failure is the boolean result, and its reason goes to the detail log. All
// operations may block on the file system and may be called from any thread.

// `directory` and `name` with exactly one "/" between them; `name` alone when `directory` is empty.
PLATFORM_API std::wstring joinPath(const std::wstring& directory, const std::wstring& name);

// Splits a path at its last "/". `directory` receives what stands before it ("/" for a file in the
// root, empty when there is no "/"), `name` what stands behind it. Either pointer may be null.
PLATFORM_API void splitPath(const std::wstring& path, std::wstring* directory, std::wstring* name);

// A directory and a file name joined with the platform's separator.
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
  // Reads an existing regular file whole into `out`. On failure `out` is left as it was.
  static bool readExisting(const AString& path, ABuffer& out);

  // Creates or replaces the file with exactly these bytes, which may be a secret. Another process,
  // and a process that starts after this one died at any moment, sees the old file or the new one,
  // never a mixture. On failure the old file is untouched. Afterwards the file is readable and
  // writable by its owner alone, whatever its mode was; the owner of an existing file stays. A
  // symbolic link is followed, at the end of the path and before, only when it belongs to the
  // effective user or to root; any other makes the call fail, with an error line that names it.
  static bool write(const AString& path, const ABuffer& data);
};

// Files and directories as such.
class PLATFORM_API AFiler {
 public:
  // What getFileAccessibility asks about.
  enum AFileAccess {
    accessExist = 0,  // whether the file is there
    accessRead = 1,   // whether it may be read
    accessWrite = 2   // whether it may be written
  };

  // True when the file is gone afterwards: also when it was not there. A symbolic link at the end
  // of the path is removed itself; those before it are followed as AFile::write does.
  static bool deleteFile(const AString& path);

  // Copies a regular file with the guarantees of AFile::write, except that an existing file keeps
  // its mode. False when `from` cannot be read.
  static bool copyFile(const AString& from, const AString& to);

  // Creates a directory and its missing parents. True also when the directory exists already; an
  // empty path is the current directory, as in joinPath. Symbolic links are followed as
  // AFile::write does.
  static bool createDirectory(const AString& path);

  // Asks whether the calling process may use the file in the given way. `exists` tells whether the
  // file is there, `accessible` whether the access is granted (false when it is not there). Returns
  // false when the question cannot be answered; the outputs are then both false.
  static bool getFileAccessibility(const AString& path, AFileAccess access, bool& exists,
                                   bool& accessible);

  // True, with the number of its bytes in `size`, when the path leads to an existing regular file,
  // over links if need be. False otherwise; `size` is then left as it was.
  static bool getFileSize(const AString& path, unsigned long long& size);

  // Whether writing `a` would replace the file that `b` leads to: both, links at their ends
  // followed, end at one name, in any spelling of it, in one directory. Two names of one file (hard
  // links) are not the same file, since a file is replaced by name. False when the directory of
  // either is not there. True when it cannot be told for another reason, so that a caller that
  // refuses to write over its source never does so by mistake; the reason goes to the detail log.
  static bool isSameFile(const AString& a, const AString& b);
};

#endif
