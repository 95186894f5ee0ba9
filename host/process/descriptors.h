#ifndef HOST_PROCESS_DESCRIPTORS_H
#define HOST_PROCESS_DESCRIPTORS_H

namespace host {

// Returns a number above all descriptors of this process, with a margin for descriptors that other
// threads open in the meantime. Returns 0 if closeDescriptors needs no limit.
int descriptorLimit();

// Closes all descriptors from `first` on. `limit` is the result of descriptorLimit() before the
// fork. Safe in the child of a process with threads.
void closeDescriptors(int first, int limit);

}  // namespace host

#endif
