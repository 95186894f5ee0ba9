#ifndef TOOLS_SITELIST_EDIT_LOOKUP_H
#define TOOLS_SITELIST_EDIT_LOOKUP_H

#include <string>
#include <vector>

#include "tools/sitelist/edit/list_editor.h"

namespace tool {

// What a command line names a site by.
struct SiteName {
  std::string name;
  std::string kind;  // empty: any
};

std::vector<ListEditor::Entry*> sitesNamed(ListEditor& list, const SiteName& name);

// The one site of that name. Fails when there is none, and when there are several.
ListEditor::Entry& siteNamed(ListEditor& list, const SiteName& name);

// http "Depot"; without a kind: site "Depot"
std::string titleOf(const SiteName& name);
std::string titleOf(const sitehlp::tag_Site& site);

[[noreturn]] void failNotThere(const ListEditor& list, const SiteName& name);

}  // namespace tool

#endif
