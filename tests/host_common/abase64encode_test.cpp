#include "platform/common/abase64encode.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <string>
#include <vector>

namespace {

std::string decoded(const std::wstring& text) {
  const ABuffer buffer = ABase64Encode::decode(AString(text));
  return std::string(reinterpret_cast<const char*>(buffer.data()), buffer.size());
}

TEST(ABase64Encode, DecodesTheStandardsExamples) {
  EXPECT_EQ(decoded(L""), "");
  EXPECT_EQ(decoded(L"Zg=="), "f");
  EXPECT_EQ(decoded(L"Zm8="), "fo");
  EXPECT_EQ(decoded(L"Zm9v"), "foo");
  EXPECT_EQ(decoded(L"Zm9vYg=="), "foob");
  EXPECT_EQ(decoded(L"Zm9vYmE="), "fooba");
  EXPECT_EQ(decoded(L"Zm9vYmFy"), "foobar");
}

TEST(ABase64Encode, DecodesWhatAnotherEncoderMakesOfEveryByteAtEveryLength) {
  for (std::size_t length = 1; length <= 300; ++length) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < length; ++i) {
      bytes.push_back(static_cast<unsigned char>(i * 7 + length));
    }
    std::vector<unsigned char> text(length / 3 * 4 + 5);
    const int size = EVP_EncodeBlock(text.data(), bytes.data(), static_cast<int>(length));
    const std::wstring wide(text.begin(), text.begin() + size);
    EXPECT_EQ(decoded(wide), std::string(bytes.begin(), bytes.end())) << length;
  }
}

TEST(ABase64Encode, SkipsWhiteSpaceAnywhere) {
  EXPECT_EQ(decoded(L" Zm\n9v\r\nYm\tE \v\f= \n"), "fooba");
  EXPECT_EQ(decoded(L"Zg= ="), "f");
}

TEST(ABase64Encode, GivesNothingForWhiteSpaceAlone) { EXPECT_EQ(decoded(L" \r\n"), ""); }

class InvalidBase64 : public testing::TestWithParam<const wchar_t*> {};

TEST_P(InvalidBase64, GivesAnEmptyBuffer) {
  EXPECT_TRUE(ABase64Encode::decode(AString(GetParam())).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Base64, InvalidBase64,
    testing::Values(L"Z", L"Zg", L"Zg=", L"Zm8", L"Zm9vY", L"Zm9vYg", L"Zm9vYg=",  // cut short
                    L"=", L"==", L"===", L"====", L"Z===", L"Zg===", L"Zm8==", L"Zm9v=",
                    L"Zm9v====",                                       // too much padding
                    L"Zg==Zg==", L"Zm8=Zm9v", L"=Zm9v", L"Z=g=",       // padding inside
                    L"Zh==", L"Zn==", L"Zm9=",                         // bits left over
                    L"Zm9-", L"Zm9_", L"Zm9v!", L"Zm,v", L"Zm9v\x7F",  // other alphabets
                    L"\xFF3A"
                    L"m9v",
                    L"Zm9\x100", L"Zm9\x10076", L"%%"),  // beyond ASCII
    [](const testing::TestParamInfo<const wchar_t*>& param) {
      return std::to_string(param.index);
    });

TEST(ABase64Encode, RefusesAZeroCharacter) { EXPECT_EQ(decoded(std::wstring(L"Zm9v\0", 5)), ""); }

TEST(ABase64Encode, KnowsExactlyTheSixtyFourCharactersOfTheAlphabet) {
  int accepted = 0;
  for (wchar_t c = 1; c < 0x400; ++c) {
    if (!decoded(std::wstring(L"Zm9") + c).empty()) ++accepted;
  }
  // Padding is accepted only at the end and only if its bits are correct.
  EXPECT_EQ(accepted, 64);
}

}  // namespace
