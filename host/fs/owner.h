#ifndef HOST_FS_OWNER_H
#define HOST_FS_OWNER_H

namespace host {

// What root makes belongs to the owner and the group of the directory that it is made in, so that
// the user whose directory it is goes on with it. For other users nothing is done. `fd` is a new
// file or directory in the open `directory`. 0 or an errno.
int giveToOwnerOf(int directory, int fd);

}  // namespace host

#endif
