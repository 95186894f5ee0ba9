#include "tools/sitelist/explain/search_order.h"

#include "platform/common/text.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/selection.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

bool isFallback(const tag_Site& site) { return wcsicmp(site.szType, c_fallbackType) == 0; }

// Returns why the agent does not try a site, or an empty text.
std::string obstacleOf(const tag_Site& site) {
  if (std::string(kindOf(site)) == c_unknownKind) return "its element is of unknown kind";
  if (!site.bEnabled) return "it is disabled";
  if (site.bMirror) return "it is a mirror, and mirrors have no place in the search order";
  return "";
}

std::string reasonOf(const tag_Site& site, const tag_Site* previous) {
  std::string text;
  if (isFallback(site) && site.iOrder == c_orderOfFallback) {
    text = "a fallback without an order has the order 65535";
  } else {
    text = (isFallback(site) ? "fallback with the order " : "order ") + std::to_string(site.iOrder);
    if (!previous) text += ", the lowest";
  }
  if (previous && previous->iOrder == site.iOrder) {
    text += "; the site before has the same order and comes earlier in the list";
  }
  return text;
}

}  // namespace

std::vector<SearchPlace> searchOrder(const tag_Site* list) {
  std::vector<const tag_Site*> sites;
  for (; list; list = list->pNext) {
    if (list->eSiteKind != sitehlp::SITE_KIND_PROXY) sites.push_back(list);
  }
  sortBySearchOrder(sites);
  std::vector<SearchPlace> places;
  std::vector<SearchPlace> others;
  for (const tag_Site* site : sites) {
    const std::string obstacle = obstacleOf(*site);
    if (!obstacle.empty()) {
      others.push_back({site, 0, obstacle});
      continue;
    }
    const tag_Site* const previous = places.empty() ? nullptr : places.back().site;
    places.push_back({site, static_cast<int>(places.size()) + 1, reasonOf(*site, previous)});
  }
  places.insert(places.end(), others.begin(), others.end());
  return places;
}

}  // namespace tool
