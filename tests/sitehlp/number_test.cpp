#include "sitehlp/common/number.h"

#include <gtest/gtest.h>

namespace {

using sitehlp::toUnsigned;

TEST(UnsignedNumber, IsReadFromTheFrontOfTheText) {
  unsigned int number = 7;
  EXPECT_TRUE(toUnsigned(L"8080", number));
  EXPECT_EQ(number, 8080U);
  EXPECT_TRUE(toUnsigned(L" \t12x9", number));
  EXPECT_EQ(number, 12U);
  EXPECT_TRUE(toUnsigned(L"4294967295", number));
  EXPECT_EQ(number, 4294967295U);
}

TEST(UnsignedNumber, StaysAsItWasWhenThereIsNoneOrItDoesNotFit) {
  for (const wchar_t* const text :
       {L"", L" ", L"x1", L"-", L"+-1", L"4294967296", L"99999999999999999999"}) {
    unsigned int number = 7;
    EXPECT_FALSE(toUnsigned(text, number)) << testing::PrintToString(std::wstring(text));
    EXPECT_EQ(number, 7U);
  }
}

}  // namespace
