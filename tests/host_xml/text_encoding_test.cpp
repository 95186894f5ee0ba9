#include "host/xml/text_encoding.h"

#include <gtest/gtest.h>

#include "host/xml/limits.h"
#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;

const unsigned char* bytesOf(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

struct Converted {
  bool valid;
  std::wstring text;
  UTF_ENCODINGS encoding;
};

// The value of the outputs before the call, and after a call that fails.
const std::wstring c_unset = L"invalid";

Converted convert(const std::string& bytes, UTF_ENCODINGS hint = UTF_8) {
  Converted result = {false, c_unset, hint};
  result.valid = ConvertBufferToUnicode(bytesOf(bytes), bytes.size(), result.text, result.encoding);
  return result;
}

// Each character of an ASCII text as a unit of the encoding.
std::string units(const std::string& text, UTF_ENCODINGS encoding) {
  const std::string encoded = host::encodeText(test::wide(text), encoding);
  return encoding == UTF_8 ? encoded
                           : encoded.substr(encoding == UTF_16LE || encoding == UTF_16BE ? 2 : 4);
}

std::string mark(UTF_ENCODINGS encoding) {
  return encoding == UTF_8 ? "\xEF\xBB\xBF" : host::encodeText(L"", encoding);
}

class EveryEncoding : public testing::TestWithParam<UTF_ENCODINGS> {};

INSTANTIATE_TEST_SUITE_P(Encodings, EveryEncoding,
                         testing::Values(UTF_16LE, UTF_16BE, UTF_32LE, UTF_32BE, UTF_8),
                         [](const testing::TestParamInfo<UTF_ENCODINGS>& param) {
                           return std::to_string(param.param);
                         });

TEST_P(EveryEncoding, IsFoundWithAMark) {
  const Converted result = convert(mark(GetParam()) + units("text", GetParam()));
  EXPECT_TRUE(result.valid);
  EXPECT_EQ(result.text, L"text");
  EXPECT_EQ(result.encoding, GetParam());
}

TEST_P(EveryEncoding, IsFoundWithoutAMarkFromTheFirstCharacter) {
  for (const std::string text : {"<a/>", " <a/>", "\n<a/>", "\r\n<a/>", "\t<a/>", "<"}) {
    const Converted result = convert(units(text, GetParam()));
    EXPECT_TRUE(result.valid) << text;
    EXPECT_EQ(result.text, test::wide(text));
    EXPECT_EQ(result.encoding, GetParam()) << text;
  }
}

TEST_P(EveryEncoding, IsNotTakenFromTheHintWhenTheBytesTell) {
  for (const UTF_ENCODINGS hint : {UTF_16LE, UTF_16BE, UTF_32LE, UTF_32BE, UTF_8}) {
    const Converted result = convert(units("<a/>", GetParam()), hint);
    EXPECT_TRUE(result.valid);
    EXPECT_EQ(result.encoding, GetParam());
  }
}

TEST_P(EveryEncoding, IsTakenFromTheHintWhenTheBytesDoNotTell) {
  const Converted result = convert(units("text", GetParam()), GetParam());
  EXPECT_TRUE(result.valid);
  EXPECT_EQ(result.text, L"text");
  EXPECT_EQ(result.encoding, GetParam());
}

TEST_P(EveryEncoding, CarriesEveryCharacter) {
  const std::wstring text =
      L"<\x01\x7F\x80\x7FF\x800\xD7FF\xE000\xFEFF\xFFFE\xFFFF\x10000\x10FFFF>";
  const Converted result = convert(host::encodeText(text, GetParam()));
  EXPECT_TRUE(result.valid);
  EXPECT_EQ(result.text, text);
  EXPECT_EQ(result.encoding, GetParam());
}

TEST_P(EveryEncoding, CarriesZeroCharacters) {
  const std::wstring text(L"<a\0b", 4);
  EXPECT_EQ(convert(host::encodeText(text, GetParam())).text, text);
}

TEST_P(EveryEncoding, GivesEmptyTextForAMarkAlone) {
  const Converted result = convert(mark(GetParam()));
  EXPECT_TRUE(result.valid);
  EXPECT_EQ(result.text, L"");
  EXPECT_EQ(result.encoding, GetParam());
}

TEST_P(EveryEncoding, IsWrittenWithReplacementsForWhatIsNoCharacter) {
  const std::wstring text = {L'<', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDFFF),
                             static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0xFFFFFFFF)};
  EXPECT_EQ(convert(host::encodeText(text, GetParam())).text, L"<\xFFFD\xFFFD\xFFFD\xFFFD");
}

TEST(TextEncoding, KeepsTheHintForAnEmptyText) {
  std::wstring text = c_unset;
  UTF_ENCODINGS encoding = UTF_16BE;
  EXPECT_TRUE(ConvertBufferToUnicode(nullptr, 0, text, encoding));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(encoding, UTF_16BE);
}

TEST(TextEncoding, WritesTheBytesOfEachForm) {
  const std::wstring text = L"a\x20AC\x1F600";
  const auto bytes = [&text](UTF_ENCODINGS encoding) { return host::encodeText(text, encoding); };
  EXPECT_EQ(bytes(UTF_8), "a\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(bytes(UTF_16LE), std::string("\xFF\xFE\x61\x00\xAC\x20\x3D\xD8\x00\xDE", 10));
  EXPECT_EQ(bytes(UTF_16BE), std::string("\xFE\xFF\x00\x61\x20\xAC\xD8\x3D\xDE\x00", 10));
  EXPECT_EQ(bytes(UTF_32LE),
            std::string("\xFF\xFE\x00\x00\x61\x00\x00\x00\xAC\x20\x00\x00\x00\xF6\x01\x00", 16));
  EXPECT_EQ(bytes(UTF_32BE),
            std::string("\x00\x00\xFE\xFF\x00\x00\x00\x61\x00\x00\x20\xAC\x00\x01\xF6\x00", 16));
}

class InvalidBytes : public testing::TestWithParam<std::string> {};

TEST_P(InvalidBytes, AreRefusedAndChangeNothing) {
  const Converted result = convert(GetParam(), UTF_8);
  EXPECT_FALSE(result.valid);
  EXPECT_EQ(result.text, c_unset);
  EXPECT_EQ(result.encoding, UTF_8);
}

std::string raw(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text.push_back(static_cast<char>(byte));
  return text;
}

INSTANTIATE_TEST_SUITE_P(Utf8, InvalidBytes,
                         testing::Values("<a>\x80", "<a>\xC3", "<a>\xC0\xBC", "<a>\xE0\x80\xBC",
                                         "<a>\xED\xA0\x80", "<a>\xED\xA0\xBD\xED\xB8\x80",
                                         "<a>\xF4\x90\x80\x80", "<a>\xF0\x80\x80\xBC",
                                         "<a>\xE2\x82", "<a>\xFF", "<a>\xE9</a>",
                                         "\xEF\xBB\xBF\xFF", "\xFF", "\xFF<"));

INSTANTIATE_TEST_SUITE_P(Utf16, InvalidBytes,
                         testing::Values(raw({0xFF, 0xFE, '<'}),                // half a unit
                                         raw({0xFE, 0xFF, 0, '<', 0}),          //
                                         raw({'<', 0, 'a'}), raw({0, '<', 0}),  //
                                         raw({'<', 0, 0x3D, 0xD8}),          // a first half alone
                                         raw({0, '<', 0xD8, 0x3D}),          //
                                         raw({'<', 0, 0x3D, 0xD8, 'a', 0}),  // followed by another
                                         raw({'<', 0, 0x3D, 0xD8, 0x3D, 0xD8}),  //
                                         raw({'<', 0, 0x00, 0xDE}),  // a second half alone
                                         raw({0, '<', 0xDE, 0x00}),  //
                                         raw({'<', 0, 0x00, 0xDE, 0x3D,
                                              0xD8})));  // the wrong way round

INSTANTIATE_TEST_SUITE_P(Utf32, InvalidBytes,
                         testing::Values(raw({'<', 0, 0, 0, 'a'}),
                                         raw({'<', 0, 0, 0, 'a', 0, 0}),         // part of a unit
                                         raw({0, 0, 0, '<', 0, 0}),              //
                                         raw({'<', 0, 0, 0, 0x00, 0xD8, 0, 0}),  // surrogates
                                         raw({0, 0, 0, '<', 0, 0, 0xDF, 0xFF}),  //
                                         raw({'<', 0, 0, 0, 0x00, 0x00, 0x11, 0}),  // too large
                                         raw({0, 0, 0, '<', 0xFF, 0xFF, 0xFF, 0xFF})));

TEST(TextEncoding, LimitsTheNumberOfBytes) {
  const std::string largest(host::c_maxDocumentBytes, '<');
  EXPECT_TRUE(convert(largest).valid);
  try {
    convert(largest + "<");
    ADD_FAILURE() << "accepted";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
  }
}

TEST(DeclaredEncoding, IsComparedWithoutRegardToTheCaseOfItsLettersAlone) {
  for (const char* name : {"UTF-8", "utf-8", "Utf-8", "uTF-8"}) {
    EXPECT_TRUE(host::agreesWith(name, {UTF_8, true})) << name;
    EXPECT_FALSE(host::agreesWith(name, {UTF_16LE, true})) << name;
  }
  // Names with a character next to a letter in ASCII, or one that differs from a letter only in the
  // bit for its case.
  for (const char* name : {"", "UTF-", "UTF-88", "UTF{8", "UTF`8",
                           "UTF\x0D"
                           "8",
                           "UTFM8", "UTF-X", "\xD5TF-8"}) {
    EXPECT_FALSE(host::agreesWith(name, {UTF_8, true})) << name;
  }
  for (const char* name : {"utf-16", "Utf-16Le", "iso-10646-ucs-2"}) {
    EXPECT_TRUE(host::agreesWith(name, {UTF_16LE, true})) << name;
    EXPECT_FALSE(host::agreesWith(name, {UTF_8, false})) << name;
  }
  EXPECT_TRUE(host::agreesWith("utf{16", {UTF_8, false})) << "any name that extends ASCII";
}

}  // namespace
