#include "tools/sitelist/edit/operations.h"

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

using Entry = ListEditor::Entry;

const DocumentKind& documentKindOf(const Entry& site) { return *findKind(kindOf(*site.record)); }

}  // namespace

Outcome enableSite(ListEditor& list, const SiteName& name, bool isEnabled) {
  Entry& site = siteNamed(list, name);
  const std::string title = titleOf(*site.record);
  const DocumentField* const field = findField(documentKindOf(site), "enabled");
  if (!field) {
    throw Failure(exitUsage, title + ": a proxy cannot be enabled or disabled",
                  "remove it with `sitelist edit remove`");
  }
  list.set(site, numberValue(*field, isEnabled ? 1 : 0));
  const std::string state = isEnabled ? "enabled" : "disabled";
  return {state + " " + title, title + " is already " + state};
}

Outcome setFields(ListEditor& list, const SiteName& name,
                  const std::vector<std::string>& assignments, const GivenPassword& password) {
  Entry& site = siteNamed(list, name);
  const std::vector<NewValue> values = newValues(documentKindOf(site), assignments, password);
  refusePortAlone(site.record, values);
  for (const NewValue& value : values) list.set(site, value);
  std::string names;
  for (const NewValue& change : site.changes) {
    names += (names.empty() ? "" : ", ") + std::string(change.field->name);
  }
  const std::string title = titleOf(*site.record);
  return {"set " + names + " of " + title, title + " already has these values"};
}

Outcome removeSite(ListEditor& list, const SiteName& name) {
  Entry& site = siteNamed(list, name);
  const std::string title = titleOf(*site.record);
  list.remove(site);
  return {"removed " + title, ""};
}

Outcome renameSite(ListEditor& list, const SiteName& name, const std::string& newName) {
  const SiteName target = {newName, name.kind};
  const std::vector<Entry*> holders = sitesNamed(list, target);
  const bool isTaken = !holders.empty();
  if (isTaken && newName == name.name) return {"", titleOf(target) + " already has this name"};
  if (isTaken && sitesNamed(list, name).empty()) {
    return {"", titleOf(target) + " exists already, and " + missingSite(name.name, name.kind)};
  }
  Entry& site = siteNamed(list, name);
  const std::string title = titleOf(*site.record);
  if (newName.empty()) {
    throw Failure(exitUsage, title + ": the new name is empty", "give another one");
  }
  const NewValue value = textValue(*findField(documentKindOf(site), "name"), newName);
  if (isTaken) {
    throw failureAt(list.path(), exitConflict,
                    "the name \"" + shown(newName) + "\" is already used by " +
                        titleOf(*holders.front()->record),
                    "choose another name, or remove that site");
  }
  list.set(site, value);
  return {"renamed " + title + " to \"" + shown(newName) + "\"", ""};
}

}  // namespace tool
