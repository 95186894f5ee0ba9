#include "tests/resilience/faults.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;

TEST(EveryFileSystemCall, MayFailOnceOrForGoodWithoutHarm) {
  const test::FaultFigures figures = test::failEveryCall(test::Errors::OneEach);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.runs, 1000u);
  EXPECT_GT(figures.refused, 300u);
  EXPECT_GT(figures.cleanedUp, 20u);
}

TEST(EveryTransfer, MayMoveFewBytesAndTheDiskMayFillUpBehindAnyOfThem) {
  const test::FaultFigures figures = test::moveFewBytes();
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.refused, 20u);
}

}  // namespace
