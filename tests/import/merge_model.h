#ifndef TESTS_IMPORT_MERGE_MODEL_H
#define TESTS_IMPORT_MERGE_MODEL_H

#include <vector>

#include "sitehlp/site.h"

// What a merge is to give, worked out on plain vectors of records.
namespace test {

using Records = std::vector<const sitehlp::tag_Site*>;

struct MergeInput {
  const Records* first = nullptr;   // null: no first list
  const Records* second = nullptr;  // null: no second list
  bool useSecond = false;
  int readResult = 0;  // what reading the current list returns
  Records current;     // and what it reads
};

struct MergeOutput {
  int code = 0;
  Records records;
};

MergeOutput modelMerge(const MergeInput& input);

}  // namespace test

#endif
