#include "host/common/base64.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

// Shows: password-text
TEST(StrictBase64, IsTheStandardAlphabetWithPadding) {
  EXPECT_EQ(host::toBase64({}), "");
  EXPECT_EQ(host::toBase64(bytesOf("f")), "Zg==");
  EXPECT_EQ(host::toBase64(bytesOf("fo")), "Zm8=");
  EXPECT_EQ(host::toBase64(bytesOf("foo")), "Zm9v");
  EXPECT_EQ(host::toBase64(bytesOf("foob")), "Zm9vYg==");
  EXPECT_EQ(host::toBase64({0xFB, 0xEF, 0xBE, 0xFF, 0xFF, 0xFF}), "++++////");
}

TEST(StrictBase64, DecodesWhatItEncodes) {
  Bytes bytes;
  for (int length = 0; length < 300; ++length) {
    Bytes decoded = {1, 2, 3};
    ASSERT_TRUE(host::fromBase64(host::toBase64(bytes), decoded)) << length;
    EXPECT_EQ(decoded, bytes) << length;
    bytes.push_back(static_cast<unsigned char>(length * 7));
  }
}

TEST(StrictBase64, TakesNoOtherTextForTheSameBytes) {
  for (const std::string text : {"Zg", "Zg=", "Zg===", "Zh==", "Zm9=", " Zg==", "Zg== ", "Zg==\n",
                                 "Z g==", "Zg==Zg==", "Zm9vYg==\n\n\n\n", "\n\n\n\nZm9v", "Zm-v",
                                 "Zm_v", "=", "====", "A===", "Zm9v=", "Zm9*"}) {
    Bytes bytes = {1, 2, 3};
    EXPECT_FALSE(host::fromBase64(text, bytes)) << text;
    EXPECT_EQ(bytes, (Bytes{1, 2, 3})) << text;
  }
  Bytes bytes;
  EXPECT_FALSE(host::fromBase64(std::string("Zm\09", 4), bytes));
}

}  // namespace
