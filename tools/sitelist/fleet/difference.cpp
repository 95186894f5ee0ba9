#include "tools/sitelist/fleet/difference.h"

#include <algorithm>

#include "tools/sitelist/diff/diff.h"

namespace tool {
namespace {

bool isOfVersion(const Record& row) {
  const std::string name = textOf(*find(row, "name"));
  return textOf(*find(row, "section")) == "version" &&
         (name == "globalVersion" || name == "localVersion");
}

}  // namespace

void AlikeGroups::add(std::size_t index, const std::string& digest) {
  const auto next = static_cast<std::uint32_t>(m_groups.size());
  const auto [place, isNew] = m_groupOfDigest.emplace(digest, next);
  if (isNew) m_groups.push_back({index, 0, 0});
  ++m_groups[place->second].count;
  m_groupOfList.resize(index + 1, c_none);
  m_groupOfList[index] = place->second;
}

const AlikeLists* AlikeGroups::mostFrequent() const {
  const auto found =
      std::max_element(m_groups.begin(), m_groups.end(),
                       [](const AlikeLists& a, const AlikeLists& b) { return a.count < b.count; });
  return found == m_groups.end() ? nullptr : &*found;
}

std::size_t AlikeGroups::differencesOf(std::size_t index) const {
  const std::uint32_t group = m_groupOfList[index];
  return group == c_none ? 0 : m_groups[group].differences;
}

std::vector<std::size_t> AlikeGroups::mostDifferent(std::size_t most) const {
  std::vector<std::size_t> found;
  for (std::size_t index = 0; index < m_groupOfList.size(); ++index) {
    const std::size_t differences = differencesOf(index);
    if (differences == 0) continue;
    const auto place = std::upper_bound(
        found.begin(), found.end(), differences,
        [&](std::size_t value, std::size_t other) { return value > differencesOf(other); });
    found.insert(place, index);
    if (found.size() > most) found.pop_back();
  }
  return found;
}

std::size_t differencesBetween(const SiteList& base, const GivenList& other) {
  const SiteList list = readSiteList(other.path);
  if (list.result != 0) return 0;
  const Diff diff(base, list, false);
  const std::vector<Record>& rows = diff.rows();
  return static_cast<std::size_t>(
      std::count_if(rows.begin(), rows.end(), [](const Record& row) { return !isOfVersion(row); }));
}

}  // namespace tool
