#ifndef TOOLS_SITELIST_EDIT_OPERATIONS_H
#define TOOLS_SITELIST_EDIT_OPERATIONS_H

#include <string>
#include <vector>

#include "tools/sitelist/edit/lookup.h"

namespace tool {

// Messages about an edit: `done` if it changed the list, `already` if the list already had all
// values.
struct Outcome {
  std::string done;
  std::string already;
};

// Each function makes one edit. If a function fails, the list must not be written.
Outcome enableSite(ListEditor& list, const SiteName& name, bool isEnabled);
Outcome setFields(ListEditor& list, const SiteName& name,
                  const std::vector<std::string>& assignments, const GivenPassword& password);
// The kind must be a known one.
Outcome addSite(ListEditor& list, const SiteName& name, const std::vector<std::string>& assignments,
                const GivenPassword& password);
Outcome removeSite(ListEditor& list, const SiteName& name);
Outcome renameSite(ListEditor& list, const SiteName& name, const std::string& newName);

// `place` is "first", "last", a position from 1, "before" or "after". `other` is the name of the
// site for the last two.
Outcome moveSite(ListEditor& list, const SiteName& name, const std::string& place,
                 const std::string& other);

// Returns whether the site has a place in the search order. A proxy, a mirror, and a fallback
// without an order have none.
bool hasPlace(const sitehlp::tag_Site& site);

}  // namespace tool

#endif
