#ifndef TOOLS_SITELIST_EDIT_OPERATIONS_H
#define TOOLS_SITELIST_EDIT_OPERATIONS_H

#include <string>
#include <vector>

#include "tools/sitelist/edit/lookup.h"

namespace tool {

// What to tell about an edit: one text for a list that it changed, one for a list that had all that
// was asked for before.
struct Outcome {
  std::string done;
  std::string already;
};

// Each makes one edit. An edit that cannot be made fails before anything is changed.
Outcome enableSite(ListEditor& list, const SiteName& name, bool isEnabled);
Outcome setFields(ListEditor& list, const SiteName& name,
                  const std::vector<std::string>& assignments, const GivenPassword& password);
// The kind is one that there is.
Outcome addSite(ListEditor& list, const SiteName& name, const std::vector<std::string>& assignments,
                const GivenPassword& password);
Outcome removeSite(ListEditor& list, const SiteName& name);
Outcome renameSite(ListEditor& list, const SiteName& name, const std::string& newName);

// `place`: "first", "last" or a position counted from 1; or "before" or "after" another site.
Outcome moveSite(ListEditor& list, const SiteName& name, const std::string& place,
                 const std::string& other);

// Whether the site has a place in the search order: no proxy, no mirror, and no fallback that has
// none.
bool hasPlace(const sitehlp::tag_Site& site);

}  // namespace tool

#endif
