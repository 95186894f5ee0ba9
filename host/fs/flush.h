#ifndef HOST_FS_FLUSH_H
#define HOST_FS_FLUSH_H

namespace host {

// Makes an open file or directory durable: afterwards a power cut does not undo its changes.
// Returns 0, or -1 and sets errno. A signal may interrupt it (EINTR). Any thread.
int flush(int fd);

}  // namespace host

#endif
