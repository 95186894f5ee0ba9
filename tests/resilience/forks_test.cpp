#include "tests/resilience/forks.h"

#include <gmock/gmock.h>

#include <cstdio>

#include "tests/support/sanitizer.h"

namespace {

using testing::IsEmpty;

// Builds with a sanitizer do without this: the allocators of AddressSanitizer and ThreadSanitizer
// are not taken around a fork, so that a child may hang in there.
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
