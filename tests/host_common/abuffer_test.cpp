#include "platform/common/abuffer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

ABuffer bufferOf(const std::string& text) {
  return ABuffer(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

std::string textOf(const ABuffer& buffer) {
  return std::string(reinterpret_cast<const char*>(buffer.data()), buffer.size());
}

TEST(ABuffer, IsEmptyWhenMadeOfNothing) {
  EXPECT_TRUE(ABuffer().empty());
  EXPECT_TRUE(ABuffer(nullptr, 0).empty());
}

TEST(ABuffer, HoldsACopyOfTheBytes) {
  std::string bytes("a\0\xFF", 3);
  const ABuffer buffer = bufferOf(bytes);
  bytes[0] = 'x';
  EXPECT_EQ(textOf(buffer), std::string("a\0\xFF", 3));
  EXPECT_FALSE(buffer.empty());
}

TEST(ABuffer, CopiesAreIndependent) {
  ABuffer first = bufferOf("first");
  ABuffer copy = first;
  first = bufferOf("second, longer");
  EXPECT_EQ(textOf(copy), "first");
  EXPECT_EQ(textOf(first), "second, longer");
  copy = first;
  EXPECT_EQ(textOf(copy), "second, longer");
}

TEST(ABuffer, MovesLeaveTheSourceEmpty) {
  ABuffer source = bufferOf("key");
  ABuffer target = bufferOf("old");
  target = std::move(source);
  EXPECT_EQ(textOf(target), "key");
  EXPECT_TRUE(source.empty());  // NOLINT(bugprone-use-after-move): that is what is tested
  const ABuffer made = std::move(target);
  EXPECT_EQ(textOf(made), "key");
}

TEST(ABuffer, SurvivesAssignmentToItself) {
  ABuffer buffer = bufferOf("key");
  ABuffer& alias = buffer;
  buffer = alias;
  EXPECT_EQ(textOf(buffer), "key");
  buffer = std::move(alias);
  EXPECT_EQ(textOf(buffer), "key");
}

}  // namespace
