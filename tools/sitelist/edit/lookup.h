#ifndef TOOLS_SITELIST_EDIT_LOOKUP_H
#define TOOLS_SITELIST_EDIT_LOOKUP_H

#include <string>
#include <vector>

#include "tools/sitelist/edit/list_editor.h"

namespace tool {

// The name and kind of a site on the command line.
struct SiteName {
  std::string name;
  std::string kind;  // empty for any kind
};

std::vector<ListEditor::Entry*> sitesNamed(ListEditor& list, const SiteName& name);

// Returns the only site of that name. Fails when there is none or more than one.
ListEditor::Entry& siteNamed(ListEditor& list, const SiteName& name);

// Returns the kind and name for messages, for example: http "Depot". Without a kind: site "Depot".
std::string titleOf(const SiteName& name);
std::string titleOf(const sitehlp::tag_Site& site);

[[noreturn]] void failNotThere(const ListEditor& list, const SiteName& name);

}  // namespace tool

#endif
