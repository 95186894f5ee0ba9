#include <gtest/gtest.h>

#include <string>

#include "platform/crypto/object_buffer.h"

namespace {

using korvel_com::ZQ::crypto::ABuffer;
using Buffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

const unsigned char c_bytes[] = {'a', 0, 0xFF, 'z'};

TEST(CryptoBuffer, HoldsACopyOfItsBytes) {
  unsigned char bytes[] = {1, 2, 3};
  const Buffer buffer(3, bytes);
  bytes[1] = 9;
  ASSERT_EQ(buffer.length(), 3u);
  EXPECT_EQ(buffer.data()[0], 1);
  EXPECT_EQ(buffer.data()[1], 2);
  EXPECT_EQ(buffer.data()[2], 3);
}

TEST(CryptoBuffer, GivesItsBytesAsNarrowTextWithZeroBytes) {
  const Buffer buffer(4, c_bytes);
  const ABuffer& base = buffer;
  EXPECT_EQ(base.cpp_str(), std::string("a\0\xFFz", 4));
}

TEST(CryptoBuffer, MayBeMadeOfNothing) {
  const Buffer buffer(0, nullptr);
  EXPECT_EQ(buffer.length(), 0u);
  EXPECT_EQ(buffer.cpp_str(), "");
}

TEST(CryptoBuffer, IsReplacedByAssign) {
  Buffer buffer(0, nullptr);
  buffer.assign(4, c_bytes);
  EXPECT_EQ(buffer.cpp_str(), std::string("a\0\xFFz", 4));
  buffer.assign(1, c_bytes + 3);
  EXPECT_EQ(buffer.cpp_str(), "z");
  buffer.assign(0, nullptr);
  EXPECT_EQ(buffer.length(), 0u);
}

TEST(CryptoBuffer, MayBeAssignedAPieceOfItself) {
  Buffer buffer(4, c_bytes);
  buffer.assign(2, buffer.data() + 2);
  EXPECT_EQ(buffer.cpp_str(), "\xFFz");
}

}  // namespace
