#ifndef TOOLS_SITELIST_FLEET_DIFFERENCE_H
#define TOOLS_SITELIST_FLEET_DIFFERENCE_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/sitelist/fleet/given_lists.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

// Lists with the same content apart from versions and passwords.
struct AlikeLists {
  std::size_t first = 0;  // the index of the first one
  std::size_t count = 0;
  std::size_t differences = 0;  // from the lists of the largest group
};

// Finds out which lists are alike. Keeps a few bytes for each list.
class AlikeGroups {
 public:
  void add(std::size_t index, const std::string& digest);

  // Returns the largest group of lists that are alike, or null if there is no list. If several
  // groups are equally large, returns the first.
  const AlikeLists* mostFrequent() const;
  std::vector<AlikeLists>& groups() { return m_groups; }
  // Returns the indices of the lists with the most differences, at most `most` of them.
  std::vector<std::size_t> mostDifferent(std::size_t most) const;
  std::size_t differencesOf(std::size_t index) const;

 private:
  static constexpr std::uint32_t c_none = 0xFFFFFFFF;

  std::unordered_map<std::string, std::uint32_t> m_groupOfDigest;
  std::vector<AlikeLists> m_groups;
  std::vector<std::uint32_t> m_groupOfList;  // c_none for a list that could not be read
};

// Returns the number of changes from one list to the other, as `diff` counts them, without changes
// of versions. A list that can no longer be read has none.
std::size_t differencesBetween(const SiteList& base, const GivenList& other);

}  // namespace tool

#endif
