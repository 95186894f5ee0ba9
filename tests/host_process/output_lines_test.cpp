#include "host/process/output_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using host::OutputLines;
using testing::ElementsAre;
using testing::IsEmpty;

class Lines : public testing::Test {
 protected:
  void add(const std::string& text) { m_lines.add(text.data(), text.size()); }

  std::vector<std::string> m_taken;
  OutputLines m_lines{[this](const std::string& line) { m_taken.push_back(line); }};
};

TEST_F(Lines, AreHandedOnAsSoonAsTheyEnd) {
  add("on");
  EXPECT_THAT(m_taken, IsEmpty());
  add("e\ntw");
  EXPECT_THAT(m_taken, ElementsAre("one"));
  add("o\nthree\n");
  EXPECT_THAT(m_taken, ElementsAre("one", "two", "three"));
  m_lines.end();
  EXPECT_EQ(m_taken.size(), 3U);
}

TEST_F(Lines, NeedNoEnd) {
  add("one\ntwo");
  m_lines.end();
  EXPECT_THAT(m_taken, ElementsAre("one", "two"));
}

TEST_F(Lines, ThatAreEmptyAreLeftOut) {
  add("\n\none\n\n");
  m_lines.end();
  EXPECT_THAT(m_taken, ElementsAre("one"));
}

TEST_F(Lines, HoldAnyByte) {
  add(std::string("a\0\xFF\r\n", 5));
  EXPECT_THAT(m_taken, ElementsAre(std::string("a\0\xFF\r", 4)));
}

TEST_F(Lines, AreAllThereUpToTheLimit) {
  for (std::size_t i = 0; i < OutputLines::c_maxLines; ++i) add("x\n");
  m_lines.end();
  EXPECT_EQ(m_taken, std::vector<std::string>(OutputLines::c_maxLines, "x"));
}

TEST_F(Lines, OverTheLimitAreCounted) {
  for (std::size_t i = 0; i < OutputLines::c_maxLines + 2; ++i) add("x\n");
  m_lines.end();
  ASSERT_EQ(m_taken.size(), OutputLines::c_maxLines + 1);
  EXPECT_EQ(m_taken.back(), "(4 more bytes)");
}

TEST_F(Lines, AreAllThereUpToTheLimitOfBytes) {
  const std::string half(OutputLines::c_maxBytes / 2, 'x');
  add(half + "\n" + half);
  m_lines.end();
  EXPECT_THAT(m_taken, ElementsAre(half, half));
}

TEST_F(Lines, AreCutAtTheLimitOfBytes) {
  const std::string half(OutputLines::c_maxBytes / 2, 'x');
  add(half + "\n" + half + "yz\nno more");
  m_lines.end();
  EXPECT_THAT(m_taken, ElementsAre(half, half, "(10 more bytes)"));
}

}  // namespace
