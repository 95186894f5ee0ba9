#include "tests/resilience/forks.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;

// AddressSanitizer cannot run this: its own allocator is not taken around a fork, so a child may
// hang in there.
#ifndef __SANITIZE_ADDRESS__
TEST(AChildOfFork, doesEveryOperationWhateverTheOtherThreadsOfItsParentWereDoing) {
  const test::ForkFigures figures = test::forkBesideThreads(200);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_EQ(figures.forks, 200u);
}
#endif

TEST(AChildOfFork, keepsNothingOfItsForebears) {
  const test::GenerationFigures figures = test::forkGenerations(100);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.heapOfFirst, 0u);
  EXPECT_LE(figures.heapOfLast, figures.heapOfFirst + 4096);
}

}  // namespace
