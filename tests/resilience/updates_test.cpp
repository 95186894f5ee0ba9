#include "tests/resilience/updates.h"

#include <gmock/gmock.h>

#include "tests/support/sanitizer.h"

#ifdef SITELIST_TOOL

namespace {

using test::UpdatedList;
using test::UpdateKills;
using testing::IsEmpty;

// With a sanitizer a process takes many times as long.
constexpr unsigned long c_changes = TESTS_SANITIZED ? 50 : 500;

class UpdatesAtOnce : public testing::TestWithParam<UpdatedList> {};

TEST_P(UpdatesAtOnce, AreAllInTheList) {
  const test::UpdateFigures figures =
      test::updateAtOnce(SITELIST_TOOL, GetParam(), UpdateKills::None, c_changes);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_EQ(figures.changes, c_changes);
}

TEST_P(UpdatesAtOnce, AreAllInTheListWhenOthersAreKilled) {
  const test::UpdateFigures figures =
      test::updateAtOnce(SITELIST_TOOL, GetParam(), UpdateKills::OneInTen, c_changes);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.kills, 0u);
  EXPECT_GE(figures.changes, c_changes / 10 * 9);
}

INSTANTIATE_TEST_SUITE_P(OfAList, UpdatesAtOnce,
                         testing::Values(UpdatedList::OfAgent, UpdatedList::Named),
                         [](const auto& list) {
                           return list.param == UpdatedList::OfAgent ? "OfTheAgent" : "WithAName";
                         });

}  // namespace

#endif
