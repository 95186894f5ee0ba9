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

const Wanted* findValue(const std::vector<Wanted>& values, const FieldRule& rule) {
  for (const Wanted& value : values) {
    if (value.rule == &rule) return &value;
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

std::wstring typeIn(const std::vector<Wanted>& given, const KindRules& rules) {
  const FieldRule* const rule = findField(rules, "type");
  if (!rule) return L"";
  const Wanted* const value = findValue(given, *rule);
  return value ? value->text : rule->initial;
}

// Every value of the new site's element, in the library's order.
std::vector<Wanted> completed(ListEditor& list, const KindRules& rules,
                              const std::vector<Wanted>& given) {
  const std::wstring type = typeIn(given, rules);
  const FieldRule* const order = findField(rules, "order");
  std::vector<Wanted> values;
  for (const FieldRule& rule : rules.fields) {
    if (const Wanted* const value = findValue(given, rule)) {
      values.push_back(*value);
    } else if (&rule != order) {
      if (rule.presence == Presence::Always) values.push_back(initialValue(rule));
    } else if (isType(type, c_fallbackType)) {
      values.push_back(wantedNumber(rule, c_orderOfFallback));
    } else if (!isType(type, schema::STR_SITE_TYPE_MIRROR)) {  // which is written without one
      values.push_back(wantedNumber(rule, nextOrder(list)));
    }
  }
  return values;
}

// In which fields a site that is there differs from the one that is to be added. Where that one
// would get the next free order, any order is right.
std::string differences(const Entry& site, const KindRules& rules,
                        const std::vector<Wanted>& given) {
  const FieldRule* const order = findField(rules, "order");
  std::string names;
  for (const FieldRule& rule : rules.fields) {
    const Wanted* const value = findValue(given, rule);
    if (!rule.name || (!value && &rule == order)) continue;
    if (!has(*site.record, value ? *value : initialValue(rule))) {
      names += (names.empty() ? "" : ", ") + std::string(rule.name);
    }
  }
  return names;
}

}  // namespace

Outcome addSite(ListEditor& list, const SiteName& name, const std::vector<std::string>& assignments,
                const GivenPassword& password) {
  const KindRules& rules = *findRules(name.kind);
  std::vector<Wanted> given = wantedFields(rules, assignments, password);
  given.push_back(wantedText(*findField(rules, "name"), name.name));
  refusePortAlone(nullptr, given);
  const std::string title = titleOf(name);
  if (name.name.empty()) {
    throw Failure(exitUsage, "a site must have a name", "give it a name");
  }
  for (const Entry* site : sitesNamed(list, name)) {
    const std::string names = differences(*site, rules, given);
    if (names.empty()) return {"", title + " exists already"};
    throw failureAt(list.path(), exitConflict,
                    title + " exists already, with other values\n  it differs in " + names,
                    "change it with `sitelist edit set`, or use another name");
  }
  list.add(rules.element, completed(list, rules, given));
  return {"added " + title, ""};
}

}  // namespace tool
