#ifndef TOOLS_SITELIST_HISTORY_HISTORY_H
#define TOOLS_SITELIST_HISTORY_HISTORY_H

#include <string>
#include <vector>

namespace tool {

// A list that a command replaced. Its name is like "history/7-20261122T140512Z-policies_set.xml".
struct HistoryEntry {
  unsigned long number = 0;
  std::string time;     // when it was replaced, in UTC: "2026-11-22T14:05:12Z"
  std::string command;  // the command that replaced it: "policies set"
  std::string path;
};

// Returns the history of a list, the oldest entry first. This includes the list that a killed
// command replaced.
std::vector<HistoryEntry> historyOf(const std::string& list);

// Returns the entry with this number, or the newest one for an empty number. Fails if there is
// none.
HistoryEntry historyEntry(const std::string& list, const std::string& number);

// Returns whether a process that has ended left a copy that is not yet an entry of the history.
bool hasPendingCopyOfEndedProcess(const std::string& list);

// Puts the list that a command replaces into the history. The lock of the list must be held.
class KeptList {
 public:
  // Copies the list. Fails if it cannot be copied. `length` is the number of entries to keep; with
  // 0 no copy is made.
  KeptList(const std::string& list, const std::string& command, unsigned int length);
  // Makes the copy an entry if the list was changed, and removes the oldest entries above the
  // length. Removes the copy if the list was not changed. Does nothing if another command has
  // done this.
  ~KeptList();
  // Leaves the copy to the next command, for an owner that no longer holds the lock.
  void leave() noexcept { m_copy.clear(); }
  // Returns whether there is a copy.
  bool isPending() const noexcept { return !m_copy.empty(); }
  KeptList(const KeptList&) = delete;
  KeptList& operator=(const KeptList&) = delete;

 private:
  std::string m_list;
  unsigned int m_length;
  std::string m_copy;   // the path; empty if there is no list
  std::string m_bytes;  // of the list before the command
};

}  // namespace tool

#endif
