#include "sitehlp/common/password.h"

#include <gmock/gmock.h>

#include <string>

#include "host/crypto/sealed_value.h"
#include "tests/sitehlp/password_fixture.h"
#include "tests/support/heap.h"

namespace {

using sitehlp::decrypt_data;
using sitehlp::EncryptDecryptPassword;
using testing::IsEmpty;
using testing::Not;

class Password : public test::PasswordTest {};

const wchar_t* const c_clearTexts[] = {L"secret",
                                       L"",
                                       L" ",
                                       L"with \"quotes\" & <markup>",
                                       L"\u00FCn\u00EFc\u00F6de \u65E5\u672C\u8A9E \U0001F511",
                                       L"line\nbreak\ttab"};

// --- The password key
// -----------------------------------------------------------------------------

TEST_F(Password, ProtectedFormComesBackClear) {
  for (const wchar_t* clear : c_clearTexts) {
    std::wstring sealed;
    EXPECT_NE(helper.EncryptPassword(clear, sealed), 0);
    EXPECT_NE(sealed, clear);
    std::wstring out = L"as it was";
    EXPECT_NE(EncryptDecryptPassword(sealed, out, false), 0);
    EXPECT_EQ(out, clear);
  }
}

TEST_F(Password, MemberAndRoutineProtectAlike) {
  for (const wchar_t* clear : c_clearTexts) {
    std::wstring byMember;
    std::wstring byRoutine;
    EXPECT_EQ(helper.EncryptPassword(clear, byMember),
              EncryptDecryptPassword(clear, byRoutine, true));
    EXPECT_EQ(byMember.size(), byRoutine.size());
    EXPECT_EQ(unsealed(byMember), clear);
    EXPECT_EQ(unsealed(byRoutine), clear);
  }
}

TEST_F(Password, EmptyPasswordIsProtectedToo) {
  std::wstring sealed;
  EXPECT_NE(helper.EncryptPassword(L"", sealed), 0);
  EXPECT_THAT(sealed, Not(IsEmpty()));
  EXPECT_EQ(unsealed(sealed), L"");
}

TEST_F(Password, EveryObjectGoesBackToTheService) {
  constexpr int c_times = 500;
  std::wstring sealed;
  std::wstring out;
  const auto use = [&] {
    EXPECT_NE(EncryptDecryptPassword(L"secret", sealed, true), 0);
    EXPECT_NE(EncryptDecryptPassword(sealed, out, false), 0);
  };
  use();  // creates the objects that are never destroyed
  const std::size_t before = test::heapInUse();
  for (int i = 0; i < c_times; ++i) use();
  EXPECT_LT(test::heapInUse(), before + c_times);
}

TEST_F(Password, EncryptPasswordUsesNothingOfTheInstance) {
  helper.m_bUseDecryptData = 1;
  std::wstring sealed;
  EXPECT_NE(helper.EncryptPassword(L"secret", sealed), 0);
  test::Probe other(true);
  EXPECT_EQ(unsealed(sealed), L"secret");
  EXPECT_EQ(helper.m_bUseDecryptData, 1);
}

TEST_F(Password, ValueThatWasNeverProtectedFailsAndLeavesTheOutputAlone) {
  for (const wchar_t* value : {L"", L"secret", L"!!!!", L"AAAA", L"\u65E5\u672C"}) {
    std::wstring out = L"as it was";
    EXPECT_EQ(EncryptDecryptPassword(value, out, false), 0);
    EXPECT_EQ(out, L"as it was");
  }
}

TEST_F(Password, EveryTamperedCharacterFails) {
  const std::wstring value = sealed(L"secret");
  for (std::size_t i = 0; i < value.size(); ++i) {
    std::wstring tampered = value;
    tampered[i] = tampered[i] == L'A' ? L'B' : L'A';
    std::wstring out = L"as it was";
    EXPECT_EQ(EncryptDecryptPassword(tampered, out, false), 0) << i;
    EXPECT_EQ(out, L"as it was");
  }
}

TEST_F(Password, WithoutTheServiceNothingIsProtected) {
  makeKeysUnobtainable();
  std::wstring out = L"as it was";
  EXPECT_EQ(helper.EncryptPassword(L"secret", out), 0);
  EXPECT_EQ(EncryptDecryptPassword(L"secret", out, true), 0);
  EXPECT_EQ(EncryptDecryptPassword(L"secret", out, false), 0);
  EXPECT_EQ(out, L"as it was");
}

// --- The server key
// -------------------------------------------------------------------------------

// Shows: decrypt-data
TEST_F(Password, ServerValueComesBackClear) {
  storeServerKey();
  for (const wchar_t* clear : c_clearTexts) {
    std::wstring out = L"as it was";
    EXPECT_NE(decrypt_data(serverSealed(test::narrow(clear)), out), 0);
    EXPECT_EQ(out, clear);
  }
}

TEST_F(Password, ServerValueMayBeBrokenIntoLines) {
  storeServerKey();
  const std::wstring value = serverSealed("secret");
  std::wstring out;
  EXPECT_NE(decrypt_data(L"\n  " + value.substr(0, 10) + L"\r\n " + value.substr(10) + L"\n", out),
            0);
  EXPECT_EQ(out, L"secret");
}

TEST_F(Password, ServerValueEndsAtItsFirstZeroByte) {
  storeServerKey();
  std::wstring out = L"as it was";
  EXPECT_NE(decrypt_data(serverSealed(std::string("ab\0cd", 5)), out), 0);
  EXPECT_EQ(out, L"ab");
}

TEST_F(Password, ServerValueThatIsNoUtf8IsWidenedWithReplacements) {
  storeServerKey();
  std::wstring out;
  EXPECT_NE(decrypt_data(serverSealed("a\xFFz"), out), 0);
  EXPECT_EQ(out, L"a\uFFFDz");
}

TEST_F(Password, ServerValueThatIsNotBase64Fails) {
  storeServerKey();
  const std::wstring value = serverSealed("secret");
  for (const std::wstring& text : {std::wstring(L"?"), L"*" + value, value + L"*",
                                   value.substr(0, value.size() - 1), std::wstring(L"\u65E5")}) {
    std::wstring out = L"as it was";
    EXPECT_EQ(decrypt_data(text, out), 0) << test::narrow(text);
    EXPECT_EQ(out, L"as it was");
  }
}

TEST_F(Password, EmptyServerValueFails) {
  storeServerKey();
  std::wstring out = L"as it was";
  EXPECT_EQ(decrypt_data(L"", out), 0);
  EXPECT_EQ(out, L"as it was");
}

TEST_F(Password, TamperedServerValueFails) {
  storeServerKey();
  const std::wstring value = serverSealed("secret");
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == L'=') continue;
    std::wstring tampered = value;
    tampered[i] = tampered[i] == L'A' ? L'Q' : L'A';
    std::wstring out = L"as it was";
    EXPECT_EQ(decrypt_data(tampered, out), 0) << i;
    EXPECT_EQ(out, L"as it was");
  }
}

TEST_F(Password, ServerValueUnderAnotherKeyFails) {
  storeServerKey('A');
  const std::wstring value = serverSealed("secret");
  storeServerKey('B');
  std::wstring out = L"as it was";
  EXPECT_EQ(decrypt_data(value, out), 0);
  EXPECT_EQ(out, L"as it was");
}

TEST_F(Password, WithoutTheServerKeyDecryptDataFails) {
  std::wstring out = L"as it was";
  EXPECT_EQ(decrypt_data(L"AAAA", out), 0);
  EXPECT_EQ(out, L"as it was");
}

TEST_F(Password, TheTwoProtectionsAreNotInterchangeable) {
  storeServerKey();
  std::wstring out = L"as it was";
  EXPECT_EQ(decrypt_data(sealed(L"secret"), out), 0);
  EXPECT_EQ(EncryptDecryptPassword(serverSealed("secret"), out, false), 0);
  EXPECT_EQ(out, L"as it was");
}

// --- Silence
// --------------------------------------------------------------------------------------

TEST_F(Password, TheLibraryLogsNothingAboutThem) {
  storeServerKey();
  const std::wstring own = sealed(L"secret");
  const std::wstring fromServer = serverSealed("secret");
  agent.clearLog();
  std::wstring out;
  helper.EncryptPassword(L"secret", out);
  EncryptDecryptPassword(own, out, false);
  EncryptDecryptPassword(L"no such value", out, false);
  decrypt_data(fromServer, out);
  decrypt_data(L"no such value", out);
  makeKeysUnobtainable();
  helper.EncryptPassword(L"secret", out);
  decrypt_data(fromServer, out);
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_THAT(scopes(), IsEmpty());
  for (const test::LogLine& line : agent.log()) {
    EXPECT_EQ(line.text.find(L"secret"), std::wstring::npos) << line;
  }
}

}  // namespace
