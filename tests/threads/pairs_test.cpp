#include "tests/threads/pairs.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <set>

#include "tests/support/child_process.h"
#include "tests/threads/operations.h"

namespace {

using namespace test;

constexpr unsigned long c_times = 200;

class AnInstanceForEachThread : public testing::TestWithParam<std::size_t> {};

TEST_P(AnInstanceForEachThread, IsEnoughForEveryTwoOperations) {
  const PairFigures figures = runPairs(GetParam(), c_times);
  EXPECT_THAT(figures.faults.lines(), testing::IsEmpty());
  EXPECT_EQ(figures.faults.count(), 0U);
  EXPECT_GE(figures.pairs, numberOfPairs() / c_parts);
  EXPECT_GE(figures.runs, figures.pairs * c_times);
}

INSTANTIATE_TEST_SUITE_P(Parts, AnInstanceForEachThread, testing::Range(std::size_t{0}, c_parts));

TEST(ThePairs, AreAllButThoseOfTheSmartReadWithWhatMayReleaseItsList) {
  const std::size_t operations = sharedOperations().size();
  EXPECT_EQ(numberOfPairs(), operations * (operations + 1) / 2 - 3);
  std::set<std::string> names;
  for (const SharedOperation& operation : sharedOperations()) names.insert(operation.name);
  EXPECT_EQ(names.size(), operations);
}

// The long form: --child threadPairs TIMES
CHILD_PROCESS(threadPairs) {
  unsigned long faults = 0;
  for (std::size_t part = 0; part < c_parts; ++part) {
    const PairFigures figures = runPairs(part, args.empty() ? 10000 : std::stoul(args[0]));
    for (const std::string& line : figures.faults.lines()) {
      std::printf("   FAULT %s\n", line.c_str());
    }
    std::printf("   %lu pairs, %lu runs, %lu faults\n", figures.pairs, figures.runs,
                figures.faults.count());
    faults += figures.faults.count();
  }
  return faults == 0 ? 0 : 1;
}

}  // namespace
