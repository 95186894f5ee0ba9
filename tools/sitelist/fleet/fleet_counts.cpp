#include "tools/sitelist/fleet/fleet_counts.h"

#include <algorithm>

namespace tool {
namespace {

Scalar number(std::size_t count) { return static_cast<std::int64_t>(count); }

std::size_t listsOf(const Record& row) {
  return static_cast<std::size_t>(std::get<std::int64_t>(*find(row, "lists")));
}

void sortByLists(RowGroup& group) {
  std::stable_sort(group.rows.begin(), group.rows.end(),
                   [](const Record& a, const Record& b) { return listsOf(a) > listsOf(b); });
}

}  // namespace

void FleetCounts::add(const ListSummary& list) {
  ++m_lists;
  for (const auto& [rule, count] : list.faults) {
    Broken& broken = m_faults[rule];
    ++broken.lists;
    broken.faults += count;
  }
  if (!list.isRead()) {
    ++m_failed;
    return;
  }
  Version& version = m_versions[list.globalVersion];
  ++version.lists;
  version.localVersions.insert(list.localVersion);
  for (const std::string& server : list.servers) ++m_servers[server];
  std::set<std::string> months;
  for (const auto& [month, fingerprint] : list.certificates) {
    m_months[month].certificates.insert(fingerprint);
    if (months.insert(month).second) ++m_months[month].lists;
  }
}

std::vector<RowGroup> FleetCounts::groups() const {
  RowGroup versions = {"byVersion", "version", {}};
  for (const auto& [name, version] : m_versions) {
    versions.rows.push_back({{"section", "version"},
                             {"globalVersion", name},
                             {"lists", number(version.lists)},
                             {"localVersions", number(version.localVersions.size())}});
  }
  RowGroup servers = {"byServer", "server", {}};
  for (const auto& [address, lists] : m_servers) {
    servers.rows.push_back({{"section", "server"}, {"server", address}, {"lists", number(lists)}});
  }
  RowGroup faults = {"byFault", "fault", {}};
  for (const Rule& rule : allRules()) {
    const auto found = m_faults.find(&rule);
    if (found == m_faults.end()) continue;
    faults.rows.push_back({{"section", "fault"},
                           {"rule", rule.name},
                           {"severity", nameOf(rule.severity)},
                           {"lists", number(found->second.lists)},
                           {"faults", number(found->second.faults)}});
  }
  RowGroup months = {"byMonth", "month", {}};
  for (const auto& [name, month] : m_months) {
    months.rows.push_back({{"section", "certificate"},
                           {"month", name},
                           {"lists", number(month.lists)},
                           {"certificates", number(month.certificates.size())}});
  }
  for (RowGroup* group : {&versions, &servers, &faults}) sortByLists(*group);
  return {versions, servers, faults, months};
}

}  // namespace tool
