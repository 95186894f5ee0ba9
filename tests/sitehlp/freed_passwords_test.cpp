#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/sitehlp/password_fixture.h"
#include "tests/support/allocation/searched_new.h"

namespace {

using namespace std::string_literals;
using sitehlp::tag_Site;
using test::SearchedDeletes;

constexpr wchar_t c_secret[] = L"s3cret!s3cret!";
constexpr std::size_t c_secretSize = sizeof c_secret - sizeof c_secret[0];

class FreedPasswords : public test::PasswordTest {
 protected:
  FreedPasswords() {
    // A value that is too long for its field is logged at detail level, by design.
    agent.settings.logLevel = LogLevel::Info;
    agent.apply();
  }

  // Returns how many blocks with the password were released during the read.
  int foundWhileReading(const std::wstring& password) {
    const std::wstring file =
        store(test::documentWithSites("<HttpSite Name=\"h\"><Password Encrypted=\"1\">" +
                                      sealedUtf8(password) + "</Password></HttpSite>"));
    sitehlp::tag_Site* list = nullptr;
    int code = 0;
    int found = 0;
    {
      const SearchedDeletes deletes(c_secret, c_secretSize);
      code = helper.ReadSiteList(file, &list, true);
      found = deletes.found();
    }
    const test::ListPtr owner(list);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(std::wstring(list->http.szPassword), password.substr(0, 259));
    return found;
  }
};

TEST_F(FreedPasswords, AreLookedFor) {
  const SearchedDeletes deletes(c_secret, c_secretSize);
  { const std::wstring copy = std::wstring(100, L'x') + c_secret; }
  EXPECT_GT(deletes.found(), 0);
}

TEST_F(FreedPasswords, AreWipedWhateverTheirLength) {
  for (const std::size_t length : {14u, 258u, 259u, 260u, 261u, 1000u}) {
    std::wstring password;
    while (password.size() < length) password += c_secret;
    password.resize(length);
    EXPECT_EQ(foundWhileReading(password), 0) << length;
  }
}

TEST_F(FreedPasswords, LeaveNothingInAFieldThatAShorterOneComesInto) {
  std::vector<std::wstring> passwords = {L"p"};
  for (wchar_t first = L'!'; first <= L'~'; ++first) passwords.push_back(first + L"assword"s);
  for (const std::wstring& second : {L""s, L"x"s}) {
    std::string elements;
    for (const std::wstring& first : passwords) {
      elements += "<HttpSite><Password Encrypted=\"1\">" + sealedUtf8(first) +
                  "</Password><Password Encrypted=\"1\">" + sealedUtf8(second) +
                  "</Password></HttpSite>";
    }
    const Read sites = read(test::documentWithSites(elements));
    ASSERT_EQ(test::lengthOf(sites.list.get()), static_cast<int>(passwords.size()));
    for (const tag_Site* site = sites.list.get(); site; site = site->pNext) {
      EXPECT_EQ(std::wstring(site->http.szPassword), second);
    }
  }
}

}  // namespace
