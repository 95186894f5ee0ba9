#ifndef TOOLS_SITELIST_EXPLAIN_SEARCH_ORDER_H
#define TOOLS_SITELIST_EXPLAIN_SEARCH_ORDER_H

#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace tool {

// The place of a site in the search order.
struct SearchPlace {
  const sitehlp::tag_Site* site;
  int number;          // from 1; 0 if the agent does not try it
  std::string reason;  // printable
};

// Returns the sites of a list without the proxies: first those that the agent tries, in search
// order, then the others.
std::vector<SearchPlace> searchOrder(const sitehlp::tag_Site* list);

}  // namespace tool

#endif
