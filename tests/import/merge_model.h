#ifndef TESTS_IMPORT_MERGE_MODEL_H
#define TESTS_IMPORT_MERGE_MODEL_H

#include <vector>

#include "sitehlp/site.h"

// A model of the merge: its results, computed from plain vectors of records.
namespace test {

using Records = std::vector<const sitehlp::tag_Site*>;

struct MergeInput {
  const Records* first = nullptr;   // null: without a first list
  const Records* second = nullptr;  // null: without a second list
  bool useSecond = false;
  int readResult = 0;  // result of reading the current list
  Records current;     // records of the current list
};

struct MergeOutput {
  int code = 0;
  Records records;
};

MergeOutput modelMerge(const MergeInput& input);

}  // namespace test

#endif
