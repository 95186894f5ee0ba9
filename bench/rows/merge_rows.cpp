#include "bench/check.h"
#include "bench/floors.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

void addMergeRows() {
  addRow({"MergeSiteLists, 10000 + 10000 sites", "copying the records", 1.3, 9, [] {
            tag_Site* const first = makeSites(10000, 1);
            tag_Site* const second = makeSites(10000, 2);
            return Measurement{timed([first, second] {
                                 CSitesHelper helper(true);
                                 tag_Site* merged = nullptr;
                                 check(helper.MergeSiteLists(first, second, true, &merged) == 0,
                                       "cannot merge the lists");
                                 CSitesHelper::FreeSiteListMemory(merged);
                               }),
                               timed([first, second] {
                                 freeRecords(copyRecords({second, first}));
                               })};
          }});
}

}  // namespace bench
