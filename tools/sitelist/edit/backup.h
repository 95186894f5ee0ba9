#ifndef TOOLS_SITELIST_EDIT_BACKUP_H
#define TOOLS_SITELIST_EDIT_BACKUP_H

#include <string>

namespace tool {

// The file next to a list that has the content before an edit.
std::string backupPath(const std::string& list);

// Makes the backup, with the list's mode and owner. Fails when it cannot be written, and then the
// backup that was there is as it was.
void writeBackup(const std::string& list, const std::string& bytes);

// The backup's bytes. Fails when there is none.
std::string readBackup(const std::string& list);

// Puts the bytes of the backup in the list's place. Fails when they cannot be written, and then the
// list is as it was.
void putBack(const std::string& list, const std::string& bytes);

// The bytes of a list; false when it cannot be read.
bool readBytes(const std::string& list, std::string& bytes);

}  // namespace tool

#endif
