#include <algorithm>
#include <limits>

#include "platform/common/text.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/edit/operations.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;
using Entry = ListEditor::Entry;

const NewValue* findValue(const std::vector<NewValue>& values, const DocumentField& field) {
  for (const NewValue& value : values) {
    if (value.field == &field) return &value;
  }
  return nullptr;
}

bool isType(const std::wstring& type, const wchar_t* other) {
  return wcsicmp(type.c_str(), other) == 0;
}

std::int64_t nextOrder(ListEditor& list) {
  std::int64_t last = 0;
  for (const Entry& entry : list.entries()) {
    if (hasPlace(*entry.record)) last = std::max<std::int64_t>(last, entry.record->iOrder);
  }
  if (last == std::numeric_limits<std::int32_t>::max()) {
    throw Failure(exitUsage, "order: there is no free number after the last site",
                  "give order=NUMBER");
  }
  return last + 1;
}

std::wstring typeIn(const std::vector<NewValue>& given, const DocumentKind& kind) {
  const DocumentField* const field = findField(kind, "type");
  if (!field) return L"";
  const NewValue* const value = findValue(given, *field);
  return value ? value->text : field->initial;
}

// Returns all values of the new site's element, in the order of the library.
std::vector<NewValue> completed(ListEditor& list, const DocumentKind& kind,
                                const std::vector<NewValue>& given) {
  const std::wstring type = typeIn(given, kind);
  const DocumentField* const order = findField(kind, "order");
  std::vector<NewValue> values;
  for (const DocumentField& field : kind.fields) {
    if (const NewValue* const value = findValue(given, field)) {
      values.push_back(*value);
    } else if (&field != order) {
      if (field.presence == Presence::Always) values.push_back(initialValue(field));
    } else if (isType(type, c_fallbackType)) {
      values.push_back(numberValue(field, c_orderOfFallback));
    } else if (!isType(type, schema::STR_SITE_TYPE_MIRROR)) {  // a mirror has no order
      values.push_back(numberValue(field, nextOrder(list)));
    }
  }
  return values;
}

// Returns the fields in which an existing site differs from the site to add. If no order is given,
// the order is not compared.
std::string differences(const Entry& site, const DocumentKind& kind,
                        const std::vector<NewValue>& given) {
  const DocumentField* const order = findField(kind, "order");
  std::string names;
  for (const DocumentField& field : kind.fields) {
    const NewValue* const value = findValue(given, field);
    if (!field.name || (!value && &field == order)) continue;
    if (!hasValue(*site.record, value ? *value : initialValue(field))) {
      names += (names.empty() ? "" : ", ") + std::string(field.name);
    }
  }
  return names;
}

}  // namespace

Outcome addSite(ListEditor& list, const SiteName& name, const std::vector<std::string>& assignments,
                const GivenPassword& password) {
  const DocumentKind& kind = *findKind(name.kind);
  std::vector<NewValue> given = newValues(kind, assignments, password);
  given.push_back(textValue(*findField(kind, "name"), name.name));
  refusePortAlone(nullptr, given);
  const std::string title = titleOf(name);
  if (name.name.empty()) {
    throw Failure(exitUsage, "a site must have a name", "give it a name");
  }
  for (const Entry* site : sitesNamed(list, name)) {
    const std::string names = differences(*site, kind, given);
    std::string text = title + " exists already";
    if (names.empty()) return {"", text};
    text += ", with other values\n  it differs in " + names;
    throw failureAt(list.path(), exitConflict, text,
                    "change it with `sitelist edit set`, or use another name");
  }
  list.add(kind.element, completed(list, kind, given));
  return {"added " + title, ""};
}

}  // namespace tool
