#ifndef TOOLS_SITELIST_MODEL_SELECTION_H
#define TOOLS_SITELIST_MODEL_SELECTION_H

#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace tool {

// Which sites of a list are meant, and in which order.
struct Selection {
  std::vector<std::string> filters;  // each "[kind=|type=|name=]PATTERN"; all have to match
  std::string sort;                  // a column, with "-" in front for the descending order
};

// Whether the site's kind, type or name matches all the filters; case is ignored.
bool isSelected(const sitehlp::tag_Site& site, const Selection& selection);

// Fails when a filter has a "KEY=" of another key in front.
void requireFilterKeys(const Selection& selection);

// The selected sites by the column asked for; without one in the order of the list.
std::vector<const sitehlp::tag_Site*> select(const sitehlp::tag_Site* list,
                                             const Selection& selection);

// Sites by their place in the search order; those without one come last.
void sortBySearchOrder(std::vector<const sitehlp::tag_Site*>& sites);

// The names that columns can have: those of the table for people, then the fields.
std::vector<std::string> columnNames();
// The text of a column. Fails when there is none of that name.
std::wstring cellOf(const sitehlp::tag_Site& site, const std::string& column, bool showSecrets);
// Fails with the names that there are.
void requireColumn(const std::string& name);

}  // namespace tool

#endif
