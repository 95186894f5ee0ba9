#ifndef BENCH_EDITS_H
#define BENCH_EDITS_H

#include <functional>
#include <string>

#include "bench/row.h"

namespace bench {

// One edit of a document, ready to be done again and again on the same bytes.
struct Edit {
  std::string target;  // the file that it writes
  std::string bytes;   // what the document is before
  std::function<void()> restore;
  std::function<void()> perform;

  Cost cost() const { return timedAfter(restore, perform); }
};

// modifySiteList of a list like the file `list` by the file `source`, repositories, servers and
// certificates all replaced.
Edit modifyOf(const std::string& list, const std::string& source);

// createServerSiteListFromSiteList of a list like the file `list`.
Edit deriveOf(const std::string& list);

}  // namespace bench

#endif
