#ifndef TOOLS_SITELIST_FLEET_LIST_SUMMARY_H
#define TOOLS_SITELIST_FLEET_LIST_SUMMARY_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/sitelist/fleet/given_lists.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// What a summary counts of one list.
struct ListSummary {
  int status = 0;  // of the read
  std::string globalVersion;
  std::string localVersion;
  std::set<std::string> servers;                               // addresses of management servers
  std::map<const Rule*, std::size_t> faults;                   // how often each rule is broken
  std::set<std::pair<std::string, std::string>> certificates;  // month of expiry, fingerprint
  std::string digest;  // of everything except versions and passwords

  bool isRead() const { return status == 0; }
};

// Returns the faults of one list. One that cannot be read has one fault. Any thread.
std::vector<Fault> faultsOf(const GivenList& list, bool checkServer);

// Reads one list and checks it. A list that cannot be read has only a status and its faults. Any
// thread.
ListSummary summarise(const GivenList& list, bool checkServer);

}  // namespace tool

#endif
