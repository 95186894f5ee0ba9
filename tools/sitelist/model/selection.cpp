#include "tools/sitelist/model/selection.h"

#include <algorithm>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

const std::vector<std::string> c_tableColumns = {"order",   "kind", "type", "name",
                                                 "address", "path", "state"};

// Returns the text before the first "=".
std::string keyIn(const std::string& filter) {
  const std::size_t mark = filter.find('=');
  return mark == std::string::npos ? "" : filter.substr(0, mark);
}

bool matches(const tag_Site& site, const std::string& filter) {
  const std::string key = keyIn(filter);
  const std::wstring rest = wide(filter.substr(filter.find('=') + 1));
  if (key == "kind") return matchesPattern(wide(kindOf(site)), rest);
  if (key == "type") return matchesPattern(site.szType, rest);
  if (key == "name") return matchesPattern(nameOf(site), rest);
  const std::wstring pattern = wide(filter);
  return matchesPattern(wide(kindOf(site)), pattern) || matchesPattern(site.szType, pattern) ||
         matchesPattern(nameOf(site), pattern);
}

// A sort key: a number is compared by its value, any other field by its text.
struct Key {
  std::int64_t number = 0;
  std::wstring text;

  bool operator<(const Key& other) const {
    return number != other.number ? number < other.number : text < other.text;
  }
};

Key keyOf(const tag_Site& site, const std::string& column) {
  const Record record = recordOf(site, false);
  const Scalar* const value = find(record, column);
  if (!value) return {0, cellOf(site, column, false)};
  if (const bool* const flag = std::get_if<bool>(value)) return {*flag ? 1 : 0, L""};
  if (const auto* const number = std::get_if<std::int64_t>(value)) return {*number, L""};
  return {0, wide(textOf(*value))};
}

}  // namespace

bool isSelected(const tag_Site& site, const Selection& selection) {
  return std::all_of(selection.filters.begin(), selection.filters.end(),
                     [&](const std::string& filter) { return matches(site, filter); });
}

void requireFilterKeys(const Selection& selection) {
  for (const std::string& filter : selection.filters) {
    const std::string key = keyIn(filter);
    if (key.empty() || key == "kind" || key == "type" || key == "name") continue;
    throw Failure(
        exitUsage,
        "unknown filter key \"" + shown(key) + "\"" + suggestion(key, {"kind", "type", "name"}),
        "use one of kind, type, name; to match a name that contains \"=\", use "
        "name=PATTERN");
  }
}

std::vector<const tag_Site*> select(const tag_Site* list, const Selection& selection) {
  std::vector<const tag_Site*> sites;
  for (; list; list = list->pNext) {
    if (isSelected(*list, selection)) sites.push_back(list);
  }
  if (selection.sort.empty()) return sites;
  const bool isDescending = selection.sort[0] == '-';
  const std::string column = selection.sort.substr(isDescending ? 1 : 0);
  requireColumn(column);
  std::vector<std::pair<Key, const tag_Site*>> keyed;
  keyed.reserve(sites.size());
  for (const tag_Site* site : sites) keyed.emplace_back(keyOf(*site, column), site);
  std::stable_sort(keyed.begin(), keyed.end(), [&](const auto& a, const auto& b) {
    return isDescending ? b.first < a.first : a.first < b.first;
  });
  std::transform(keyed.begin(), keyed.end(), sites.begin(),
                 [](const auto& entry) { return entry.second; });
  return sites;
}

void sortBySearchOrder(std::vector<const tag_Site*>& sites) {
  const auto placeless = std::stable_partition(
      sites.begin(), sites.end(), [](const tag_Site* site) { return !orderOf(*site).empty(); });
  std::stable_sort(sites.begin(), placeless,
                   [](const tag_Site* a, const tag_Site* b) { return a->iOrder < b->iOrder; });
}

std::vector<std::string> columnNames() {
  std::vector<std::string> names = c_tableColumns;
  for (const std::string& name : siteFieldNames()) {
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

bool isTableColumn(const std::string& name) {
  return std::find(c_tableColumns.begin(), c_tableColumns.end(), name) != c_tableColumns.end();
}

void requireColumn(const std::string& name) {
  const std::vector<std::string> names = columnNames();
  if (std::find(names.begin(), names.end(), name) != names.end()) return;
  std::string known;
  for (const std::string& each : names) known += (known.empty() ? "" : ", ") + each;
  throw Failure(exitUsage, "unknown column \"" + shown(name) + "\"" + suggestion(name, names),
                "use one of " + known);
}

std::wstring cellOf(const tag_Site& site, const std::string& column, bool showSecrets) {
  if (column == "order") return orderOf(site);
  if (column == "address") return addressOf(site);
  if (column == "path") return pathOf(site);
  if (column == "state") return site.bEnabled ? L"on" : L"off";
  if (column == "kind") return wide(kindOf(site));
  for (const Field& field : fieldsOf(site)) {
    if (field.name == column) return wide(textOf(scalarOf(field, showSecrets)));
  }
  return L"";
}

}  // namespace tool
