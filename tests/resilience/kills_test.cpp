#include "tests/resilience/kills.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;

TEST(AKilledWriter, LeavesWholeFilesAndNothingInTheWayOfTheNextOneWhicheverCallItCameTo) {
  const test::KillFigures figures = test::killBeforeEveryCall();
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.kills, 400u);
  EXPECT_GT(figures.leftOvers, 50u);
  EXPECT_GT(figures.unfinished, 50u);
}

TEST(AKilledWriter, LeavesWholeFilesAtAnyMoment) {
  const test::KillFigures figures = test::killAtAnyMoment(200, 1);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_EQ(figures.kills, 200u);
}

}  // namespace
