#include "tests/resilience/hostile_documents.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "platform/xml/advxmlparser.h"
#include "tests/support/sanitizer.h"

namespace {

using AdvXMLParser::ReadWriteException;
using testing::IsEmpty;

// A sanitizer rounds allocations up and keeps freed memory. Its memory is therefore not compared
// with the limit.
constexpr bool c_measuresMemory = TESTS_SANITIZED == 0;
constexpr double c_mostMemory = 32;

TEST(AHostileDocument, IsReadOrRefusedWithinBoundsOfMemoryAndStack) {
  // The documents are so large that the memory of an idle process is negligible.
  const test::HostileFigures figures = test::readHostileDocuments(std::size_t{2} << 20);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GE(figures.results.size(), 39u);
  const std::set<int> known = {0, -1, -5, ReadWriteException::LIMIT_EXCEEDED, -10};
  double most = 0;
  for (const test::HostileResult& result : figures.results) {
    most = std::max(most, result.peakFactor);
    SCOPED_TRACE(result.family);
    EXPECT_EQ(known.count(result.readCode), 1u) << result.family << ": " << result.readCode;
    if (c_measuresMemory) {
      EXPECT_LE(result.peakFactor, c_mostMemory) << result.family;
    }
    EXPECT_EQ(result.derived, result.readCode == 0) << result.family;
  }
  EXPECT_GT(most, 5) << "a tree takes several times its text; the measure does not work";
}

}  // namespace
