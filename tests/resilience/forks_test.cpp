#include "tests/resilience/forks.h"

#include <gmock/gmock.h>

#include <cstdio>

#include "tests/support/sanitizer.h"

namespace {

using testing::IsEmpty;

// Builds with a sanitizer omit this test. The allocators of the sanitizers have no fork handlers,
// so a child may hang in the allocator.
#if !TESTS_SANITIZED
TEST(AChildOfFork, DoesEveryOperationWhateverTheOtherThreadsOfItsParentWereDoing) {
  const test::ForkFigures figures = test::forkBesideThreads(200);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_EQ(figures.forks, 200u);
}
#endif

TEST(AChildOfFork, KeepsNothingOfItsForebears) {
  if (TESTS_SANITIZED) std::printf("Forks beside threads are not tried with a sanitizer\n");
  const test::GenerationFigures figures = test::forkGenerations(100);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.heapOfFirst, 0u);
  EXPECT_LE(figures.heapOfLast, figures.heapOfFirst + 4096);
}

}  // namespace
