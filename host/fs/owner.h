#ifndef HOST_FS_OWNER_H
#define HOST_FS_OWNER_H

namespace host {

// Gives a new file or directory that root created the owner and group of its directory, so that the
// agent's user can use it. Does nothing for other users. `fd` is the new file or directory, and
// `directory` is the open directory. Returns 0 or an errno.
int giveToOwnerOf(int directory, int fd);

}  // namespace host

#endif
