#include "bench/check.h"
#include "bench/edits.h"
#include "bench/floors.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"

namespace bench {
namespace {

using Rewrite = void (*)(const std::string& bytes, const std::string& path);

Cost rewriting(const Edit& edit, Rewrite rewrite) {
  return timedAfter([edit] { edit.restore(); },
                    [edit, rewrite] { rewrite(edit.bytes, edit.target); });
}

void addModifyRow(std::size_t sourceCount, const char* against, double bound, Rewrite rewrite) {
  addRow({"modifySiteList, 1000 sites by " + std::to_string(sourceCount), against, bound, 60, [=] {
            const Edit edit = modifyOf(sitesFile(1000), sitesFile(sourceCount, 1));
            return Measurement{edit.cost(), rewriting(edit, rewrite)};
          }});
}

// The edit parses both documents, so the baseline must do the same.
void addRowOfBothDocuments() {
  addRow({"modifySiteList, 1000 sites by 1000",
          "expat, empty handlers + pugixml: parse both documents, print and write one", 1.6, 60,
          [] {
            const std::string source = sitesFile(1000, 1);
            const Edit edit = modifyOf(sitesFile(1000), source);
            const Cost both = timedAfter([edit] { edit.restore(); },
                                         [edit, bytes = readFile(source)] {
                                           parseWithExpat(bytes);
                                           parseWithPugixml(bytes);
                                           rewriteChecked(edit.bytes, edit.target);
                                         });
            return Measurement{edit.cost(), both};
          }});
}

void addDeriveRow(const char* against, double bound, Rewrite rewrite) {
  addRow({"createServerSiteListFromSiteList, 1000 sites", against, bound, 60, [=] {
            const Edit edit = deriveOf(sitesFile(1000));
            return Measurement{edit.cost(), rewriting(edit, rewrite)};
          }});
}

}  // namespace

void addEditRows() {
  constexpr const char* c_checked = "expat, empty handlers + pugixml: parse, print, atomic write";
  constexpr const char* c_libxml2 = "libxml2: parse, print, atomic write";
  constexpr const char* c_unchecked = "pugixml: parse unchecked, print, atomic write";
  addModifyRow(12, c_checked, 1.5, rewriteChecked);
  addModifyRow(1000, c_checked, 0, rewriteChecked);
  addRowOfBothDocuments();
  addDeriveRow(c_checked, 1.5, rewriteChecked);
  addModifyRow(12, c_libxml2, 0, rewriteWithLibxml2);
  addDeriveRow(c_libxml2, 0, rewriteWithLibxml2);
  addModifyRow(12, c_unchecked, 0, rewriteWithPugixml);
  addDeriveRow(c_unchecked, 0, rewriteWithPugixml);
}

}  // namespace bench
