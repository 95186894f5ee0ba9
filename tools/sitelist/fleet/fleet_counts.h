#ifndef TOOLS_SITELIST_FLEET_FLEET_COUNTS_H
#define TOOLS_SITELIST_FLEET_FLEET_COUNTS_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/sitelist/fleet/list_summary.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// The counts of a fleet: the number of lists for each version, management server, fault, and month
// of expiry of a certificate.
class FleetCounts {
 public:
  void add(const ListSummary& list);

  std::size_t lists() const { return m_lists; }
  std::size_t failed() const { return m_failed; }
  // Returns a group of rows for each kind of count. Frequent values come first. Months are in
  // chronological order.
  std::vector<RowGroup> groups() const;

 private:
  struct Version {
    std::size_t lists = 0;
    std::set<std::string> localVersions;
  };
  struct Broken {
    std::size_t lists = 0;
    std::size_t faults = 0;
  };
  struct Month {
    std::size_t lists = 0;
    std::set<std::string> certificates;
  };

  std::size_t m_lists = 0;
  std::size_t m_failed = 0;
  std::map<std::string, Version> m_versions;
  std::map<std::string, std::size_t> m_servers;
  std::map<const Rule*, Broken> m_faults;
  std::map<std::string, Month> m_months;
};

}  // namespace tool

#endif
