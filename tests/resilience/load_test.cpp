#include "tests/resilience/load.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;

TEST(UnderLoad, AWriterAmongManyReadersGetsItsTurn) {
  const test::CrowdFigures figures = test::writeAmongReaders(64, 3);
  EXPECT_GT(figures.writes, 0u);
  EXPECT_GT(figures.reads, 64u);
}

TEST(UnderLoad, ReadersGetTheirTurnBesideManyWriters) {
  const test::WriterFigures figures = test::writeAtOnce(8, 4, 2);
  EXPECT_GT(figures.leastReads, 0u);
  EXPECT_GT(figures.leastWrites, 0u);
}

TEST(UnderLoad, EveryReadFindsOneCommittedListAndNeverAnOlderOne) {
  const test::MixedFigures figures = test::mixOperations(16, 40);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.versions, 50u);
}

TEST(UnderLoad, TheDeathOfTheHolderLetsTheNextOneIn) {
  EXPECT_EQ(test::killHolders(100).kills, 100u);
}

}  // namespace
