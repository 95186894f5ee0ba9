#include "tools/sitelist/edit/new_faults.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {

// Counts the faults of each rule, because the text and the place of an old fault may change. The
// old list is checked only if the new one has a fault, because checking a long list takes time.
std::vector<Fault> newFaults(const std::string& path, const std::string& draft, bool hasKeyFiles) {
  const bool isServerChecked = sitehlp::CSitesHelper(true).IsOrbManaged() != 0;
  std::vector<Fault> after = validateList({path, draft, hasKeyFiles}, isServerChecked);
  const Rule* const unchecked = findRule("key-files-unchecked");
  after.erase(std::remove_if(after.begin(), after.end(),
                             [&](const Fault& fault) { return fault.rule == unchecked; }),
              after.end());
  std::vector<Fault> before;
  if (!after.empty()) before = validateList({path, path, hasKeyFiles}, isServerChecked);
  clearLogRecords();
  std::map<const Rule*, std::ptrdiff_t> added;
  for (const Fault& fault : after) ++added[fault.rule];
  for (const Fault& fault : before) --added[fault.rule];
  std::vector<Fault> found;
  for (const Fault& fault : after) {
    const auto same = std::find_if(before.begin(), before.end(), [&](const Fault& each) {
      return each.rule == fault.rule && each.text == fault.text && each.site == fault.site;
    });
    if (same != before.end()) {
      before.erase(same);
    } else if (added[fault.rule]-- > 0) {
      found.push_back(fault);
    }
  }
  return found;
}

Failure refusalOf(const std::string& path, const std::vector<Fault>& faults) {
  std::string text = std::string("the change would add ") +
                     (faults.size() == 1 ? "a fault" : "faults") +
                     " to the list, so nothing was written";
  for (const Fault& fault : faults) text += "\n  " + lineOf(path, fault);
  return failureAt(path, exitNegative, text,
                   "correct it (`sitelist explain-rule RULE` says how), or use --force");
}

}  // namespace tool
