#ifndef TOOLS_SITELIST_EDIT_BACKUP_H
#define TOOLS_SITELIST_EDIT_BACKUP_H

#include <string>

namespace tool {

// Returns the path of the backup of a list. It is next to the list and has the content before an
// edit.
std::string backupPath(const std::string& list);

// Writes the backup, with the mode and owner of the list. Fails when it cannot be written; the old
// backup is then unchanged.
void writeBackup(const std::string& list, const std::string& bytes);

// Returns the content of the backup. Fails when there is none.
std::string readBackup(const std::string& list);

// Replaces the list with the content of the backup. Fails when it cannot be written; the list is
// then unchanged.
void putBack(const std::string& list, const std::string& bytes);

// Reads the bytes of a list. Returns false when it cannot be read.
bool readBytes(const std::string& list, std::string& bytes);

}  // namespace tool

#endif
