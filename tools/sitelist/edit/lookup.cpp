#include "tools/sitelist/edit/lookup.h"

#include <algorithm>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

using Entry = ListEditor::Entry;

[[noreturn]] void failAmbiguous(const ListEditor& list, const SiteName& name,
                                const std::vector<Entry*>& sites) {
  std::string text = "several sites are named \"" + shown(name.name) + "\"";
  bool haveOneKind = true;
  for (const Entry* site : sites) {
    text += "\n  " + titleOf(*site->record) + ", order " + std::to_string(site->record->iOrder);
    haveOneKind =
        haveOneKind && findKind(kindOf(*site->record)) == findKind(kindOf(*sites.front()->record));
  }
  throw failureAt(list.path(), exitConflict, text,
                  haveOneKind ? "give them different names in the document; they have the same kind"
                              : "choose one with --kind KIND");
}

}  // namespace

std::string titleOf(const SiteName& name) {
  return (name.kind.empty() ? "site" : name.kind) + " \"" + shown(name.name) + "\"";
}

std::string titleOf(const sitehlp::tag_Site& site) {
  return titleOf({narrow(nameOf(site)), kindOf(site)});
}

std::vector<Entry*> sitesNamed(ListEditor& list, const SiteName& name) {
  std::vector<Entry*> sites;
  const std::wstring wanted = wide(name.name);
  for (Entry& entry : list.entries()) {
    const std::string kind = kindOf(*entry.record);
    if (findKind(kind) && (name.kind.empty() || kind == name.kind) &&
        nameOf(*entry.record) == wanted) {
      sites.push_back(&entry);
    }
  }
  return sites;
}

Entry& siteNamed(ListEditor& list, const SiteName& name) {
  const std::vector<Entry*> sites = sitesNamed(list, name);
  if (sites.empty()) failNotThere(list, name);
  if (sites.size() > 1) failAmbiguous(list, name, sites);
  return *sites.front();
}

void failNotThere(const ListEditor& list, const SiteName& name) {
  throw failureAt(list.path(), exitNotFound,
                  missingSite(name.name, name.kind) + similarSites(list.list(), name.name),
                  "list all sites with `sitelist show`");
}

}  // namespace tool
