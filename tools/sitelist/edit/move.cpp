#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/common/text.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/edit/operations.h"

namespace tool {
namespace {

using Entry = ListEditor::Entry;

// Returns the sites that have a place, in search order. Sites with the same order keep the order of
// the document.
std::vector<Entry*> searchOrder(ListEditor& list) {
  std::vector<Entry*> sites;
  for (Entry& entry : list.entries()) {
    if (hasPlace(*entry.record)) sites.push_back(&entry);
  }
  std::stable_sort(sites.begin(), sites.end(), [](const Entry* a, const Entry* b) {
    return a->record->iOrder < b->record->iOrder;
  });
  return sites;
}

Entry& movable(ListEditor& list, const SiteName& name) {
  Entry& site = siteNamed(list, name);
  if (hasPlace(*site.record)) return site;
  struct Placeless {
    const char* what;
    const char* advice;
  };
  const Placeless placeless =
      site.record->eSiteKind == sitehlp::SITE_KIND_PROXY
          ? Placeless{"a proxy", "name a site that is not a proxy"}
      : site.record->bMirror
          ? Placeless{"a mirror", "set another type with `sitelist edit set`, or name another site"}
          : Placeless{"a fallback without an order",
                      "set an order with `sitelist edit set`, or name another site"};
  throw Failure(exitUsage,
                titleOf(*site.record) + ": " + placeless.what + " has no place in the search order",
                placeless.advice);
}

// Returns the position of the site among the `others`.
std::size_t position(const std::vector<Entry*>& others, const std::string& place) {
  if (place == "first") return 0;
  if (place == "last") return others.size();
  const bool isNumber = !place.empty() && place.size() <= 9 &&
                        place.find_first_not_of("0123456789") == std::string::npos;
  const std::size_t number = isNumber ? std::strtoul(place.c_str(), nullptr, 10) : 0;
  if (number == 0 || number > others.size() + 1) {
    throw Failure(exitUsage, "\"" + shown(place) + "\" is not a place in the search order",
                  "use first, last, before SITE, after SITE or a number from 1 to " +
                      std::to_string(others.size() + 1));
  }
  return number - 1;
}

// Redistributes the existing orders, beginning with the smallest. Two sites keep the same order
// only if they are in the order of the document. Otherwise the second one gets the next number.
void renumber(ListEditor& list, const std::vector<Entry*>& before,
              const std::vector<Entry*>& after) {
  std::int64_t order = std::numeric_limits<std::int32_t>::min();
  const Entry* previous = nullptr;
  for (std::size_t i = 0; i < after.size(); ++i) {
    // Entries are in one array, in the order of the document.
    const bool mayShare = !previous || previous < after[i];
    order = std::max<std::int64_t>(before[i]->record->iOrder, mayShare ? order : order + 1);
    if (order > std::numeric_limits<std::int32_t>::max()) {
      throw Failure(exitUsage,
                    shown(list.path()) + ": the order numbers are too large to redistribute",
                    "give the last sites smaller ones with `sitelist edit set`");
    }
    const DocumentKind& kind = *findKind(kindOf(*after[i]->record));
    list.set(*after[i], numberValue(*findField(kind, "order"), order));
    previous = after[i];
  }
}

}  // namespace

bool hasPlace(const sitehlp::tag_Site& site) {
  const bool isEndless =
      site.iOrder == c_orderOfFallback && wcsicmp(site.szType, c_fallbackType) == 0;
  return findKind(kindOf(site)) && site.eSiteKind != sitehlp::SITE_KIND_PROXY && !site.bMirror &&
         !isEndless;
}

Outcome moveSite(ListEditor& list, const SiteName& name, const std::string& place,
                 const std::string& other) {
  Entry& site = movable(list, name);
  const std::vector<Entry*> before = searchOrder(list);
  std::vector<Entry*> after = before;
  after.erase(std::find(after.begin(), after.end(), &site));
  auto at = after.begin();
  if (place == "before" || place == "after") {
    at = std::find(after.begin(), after.end(), &movable(list, {other, ""}));
    if (at == after.end()) {
      throw Failure(exitUsage, titleOf(*site.record) + " cannot be moved before or after itself",
                    "name another site");
    }
    if (place == "after") ++at;
  } else {
    at += static_cast<std::ptrdiff_t>(position(after, place));
  }
  const std::string number = std::to_string(at - after.begin() + 1);
  after.insert(at, &site);
  if (after != before) renumber(list, before, after);
  const std::string where = "place " + number + " of " + std::to_string(after.size());
  const std::string title = titleOf(*site.record);
  return {"moved " + title + " to " + where, title + " is already at " + where};
}

}  // namespace tool
