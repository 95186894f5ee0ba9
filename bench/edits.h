#ifndef BENCH_EDITS_H
#define BENCH_EDITS_H

#include <functional>
#include <string>

#include "bench/row.h"

namespace bench {

// One edit of a document that can be repeated.
struct Edit {
  std::string target;  // the file that the edit writes
  std::string bytes;   // the document before the edit
  // Writes the documents that the edit reads, each with a content that this process has not read
  // before.
  std::function<void()> restore;
  std::function<void()> perform;

  Cost cost() const { return timedAfter(restore, perform); }
};

// modifySiteList of a copy of `list` with a copy of `source`. It replaces repositories, servers and
// certificates.
Edit modifyOf(const std::string& list, const std::string& source);

// createServerSiteListFromSiteList of a copy of `list`.
Edit deriveOf(const std::string& list);

}  // namespace bench

#endif
