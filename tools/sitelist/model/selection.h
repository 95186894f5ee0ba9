#ifndef TOOLS_SITELIST_MODEL_SELECTION_H
#define TOOLS_SITELIST_MODEL_SELECTION_H

#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace tool {

// The selection of sites from a list, and their order.
struct Selection {
  std::vector<std::string> filters;  // each "[kind=|type=|name=]PATTERN"; all must match
  std::string sort;                  // a column; "-" before it means descending order
};

// Returns whether the site matches all filters by its kind, type or name. Ignores case.
bool isSelected(const sitehlp::tag_Site& site, const Selection& selection);

// Fails when a filter begins with "KEY=" and the key is unknown.
void requireFilterKeys(const Selection& selection);

// Returns the selected sites, sorted by the given column. Without a column they are in the order of
// the list.
std::vector<const sitehlp::tag_Site*> select(const sitehlp::tag_Site* list,
                                             const Selection& selection);

// Sorts sites by the search order. Mirrors without an order come last.
void sortBySearchOrder(std::vector<const sitehlp::tag_Site*>& sites);

// Returns the names of all columns: those of the table format, then the fields.
std::vector<std::string> columnNames();
// Returns whether the table format has the column by default.
bool isTableColumn(const std::string& name);
// Returns the text of a column, or an empty text if the site has no such column.
std::wstring cellOf(const sitehlp::tag_Site& site, const std::string& column, bool showSecrets);
// Fails when there is no such column, and lists the names.
void requireColumn(const std::string& name);

}  // namespace tool

#endif
