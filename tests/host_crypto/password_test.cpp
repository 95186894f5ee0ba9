#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/common/base64.h"
#include "host/crypto/sealed_value.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::EncryptionObject;

class Password : public testing::Test {
 protected:
  std::wstring encrypted(const std::wstring& clear) {
    std::wstring out = L"former content";
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    EXPECT_TRUE(object && object->encrypt_string(clear, out));
    return out;
  }
  std::wstring decrypted(const std::wstring& text) {
    std::wstring out = L"former content";
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    EXPECT_TRUE(object && object->decrypt_string(text, out));
    return out;
  }
  void expectRefused(const std::wstring& text, const std::string& what) {
    std::wstring out = L"former content";
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->decrypt_string(text, out), 0) << what;
    EXPECT_EQ(out, L"former content") << what;
  }

  test::TestAgent m_agent;
};

TEST_F(Password, ComesBackAsItWas) {
  for (const std::wstring clear :
       {L"", L"x", L"secret", L"with space", L"  around  ", L"<&>\"'%%lt%%", L"line\nbreak\r\n\t",
        L"p\u00E4ssw\u00F6rt", L"\u03C0\u03B1\u03C1\u03BF\u03CD\u03C3\u03B1",
        L"\u043F\u0430\u0440\u043E\u043B\u044C", L"\u05E1\u05D9\u05E1\u05DE\u05D4",
        L"\u0643\u0644\u0645\u0629", L"\u092A\u093E\u0938\u0935\u0930\u094D\u0921", L"\u5BC6\u7801",
        L"\u30D1\u30B9\u30EF\u30FC\u30C9", L"\uC554\uD638", L"\U0001F511\U0001F512",
        L"e\u0301 \u200D \uFEFF \uFFFD \uFFFF", L"\x01\x7F\u0080"}) {
    EXPECT_EQ(decrypted(encrypted(clear)), clear);
  }
}

TEST_F(Password, ComesBackWithZeroCharacters) {
  const std::wstring clear(L"a\0b\0", 4);
  EXPECT_EQ(decrypted(encrypted(clear)), clear);
}

TEST_F(Password, ComesBackWithEveryUnicodeCharacter) {
  std::wstring clear;
  for (wchar_t character = 0; character <= 0x10FFFF; ++character) {
    if (character < 0xD800 || character > 0xDFFF) clear.push_back(character);
  }
  EXPECT_EQ(decrypted(encrypted(clear)), clear);
}

TEST_F(Password, MayBeAHundredThousandCharactersLong) {
  std::wstring clear;
  for (int i = 0; i < 100000; ++i) clear.push_back(static_cast<wchar_t>(L' ' + i % 5000));
  EXPECT_EQ(decrypted(encrypted(clear)), clear);
}

TEST_F(Password, ThatCouldNotBeGivenBackIsRefused) {
  for (const wchar_t character : {wchar_t(0xD800), wchar_t(0xDFFF), wchar_t(0x110000)}) {
    std::wstring out = L"former content";
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->encrypt_string(std::wstring(L"ab") + character, out), 0);
    EXPECT_EQ(out, L"former content");
  }
}

// Shows: password-text
TEST_F(Password, IsBase64TextThatDoesNotShowIt) {
  const std::wstring text = encrypted(L"visible");
  EXPECT_EQ(text.size() % 4, 0u);
  EXPECT_EQ(
      text.find_first_not_of(L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
      std::wstring::npos);
  EXPECT_EQ(text.find(L"visible"), std::wstring::npos);
}

TEST_F(Password, IsNeverEncryptedTheSameWayTwice) {
  std::set<std::wstring> texts;
  for (int i = 0; i < 1000; ++i) texts.insert(encrypted(L"same"));
  EXPECT_EQ(texts.size(), 1000u);
}

TEST_F(Password, OutputMayBeItsInput) {
  std::wstring text = L"secret";
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  ASSERT_TRUE(object);
  ASSERT_TRUE(object->encrypt_string(text, text));
  EXPECT_NE(text, L"secret");
  ASSERT_TRUE(object->decrypt_string(text, text));
  EXPECT_EQ(text, L"secret");
}

TEST_F(Password, WithAnyBitFlippedIsRefused) {
  for (const std::wstring clear : {L"", L"x", L"xy", L"secret"}) {
    const std::wstring text = encrypted(clear);
    for (std::size_t bit = 0; bit < 21 * text.size(); ++bit) {
      std::wstring flipped = text;
      flipped[bit / 21] = static_cast<wchar_t>(flipped[bit / 21] ^ (1 << (bit % 21)));
      expectRefused(flipped, "bit " + std::to_string(bit));
    }
  }
}

TEST_F(Password, CutAnywhereIsRefused) {
  for (const std::wstring clear : {L"", L"x", L"xy", L"secret"}) {
    const std::wstring text = encrypted(clear);
    for (std::size_t length = 0; length < text.size(); ++length) {
      expectRefused(text.substr(0, length), "first " + std::to_string(length));
      expectRefused(text.substr(text.size() - length), "last " + std::to_string(length));
    }
  }
}

TEST_F(Password, WithAnythingAddedIsRefused) {
  const std::wstring text = encrypted(L"secret");
  for (const std::wstring more : {L"=", L"A", L"AAAA", L" ", L"\n", L"\u00A0", L"===="}) {
    expectRefused(text + more, "behind");
    expectRefused(more + text, "in front");
  }
  expectRefused(text + text, "twice");
  expectRefused(text + std::wstring(1, L'\0'), "zero character");
}

TEST_F(Password, ThatIsGarbageIsRefused) {
  for (const std::wstring text :
       {L"", L"=", L"====", L"clear text", L"AAAA", L"\u5BC6\u7801", L"\U0001F511",
        L"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA", L"AQAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"}) {
    expectRefused(text, test::narrow(text));
  }
  expectRefused(std::wstring(1000000, L'A'), "a million letters");
  expectRefused(std::wstring(4, wchar_t(-1)), "negative characters");
}

TEST_F(Password, ThatIsNoUtf8InsideIsRefused) {
  encrypted(L"so that there is a key");
  const std::string stored = test::readFile(test::passwordKeyPath(m_agent.dataDirectory()));
  host::Sealer sealer(host::SecretBytes(stored.begin(), stored.end()));
  for (const std::string bytes :
       {"\xFF", "\xC0\x80", "\xED\xA0\x80", "ok \xE2\x82", "\xF4\x90\x80\x80"}) {
    std::vector<unsigned char> sealed;
    ASSERT_TRUE(
        sealer.seal(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), sealed));
    expectRefused(test::wide(host::toBase64(sealed)), "invalid UTF-8");
  }
}

TEST_F(Password, OfAnotherAgentIsRefused) {
  const std::wstring text = encrypted(L"secret");
  const test::TempDir other;
  m_agent.settings.dataDirectory = other.path();
  m_agent.apply();
  expectRefused(text, "another agent's");
  EXPECT_EQ(decrypted(encrypted(L"here too")), L"here too");
  m_agent.settings.dataDirectory = m_agent.dataDirectory();
  m_agent.apply();
  EXPECT_EQ(decrypted(text), L"secret");
}

TEST_F(Password, ObjectDoesNotDecryptBuffers) {
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  ASSERT_TRUE(object);
  const std::string stored = test::readFile(test::passwordKeyPath(m_agent.dataDirectory()));
  std::vector<unsigned char> sealed;
  host::Sealer sealer(host::SecretBytes(stored.begin(), stored.end()));
  ASSERT_TRUE(sealer.seal(nullptr, 0, sealed));
  const test::CryptoBuffer in(static_cast<unsigned int>(sealed.size()), sealed.data());
  test::CryptoBuffer out(3, reinterpret_cast<const unsigned char*>("old"));
  EXPECT_EQ(object->decrypt_buffer(in, out), 0);
  EXPECT_EQ(out.cpp_str(), "old");
}

TEST_F(Password, IsProtectedAndRecoveredWithoutAWordInTheLog) {
  encrypted(L"so that there is a key");
  m_agent.clearLog();
  decrypted(encrypted(L"secret"));
  EXPECT_TRUE(m_agent.log().empty());
}

}  // namespace
