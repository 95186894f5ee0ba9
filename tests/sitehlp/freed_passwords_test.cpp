#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "tests/sitehlp/counted_new.h"
#include "tests/sitehlp/password_fixture.h"

// Looks into every block of memory that is given back, for as long as it is asked to.
namespace {

constexpr std::size_t c_head = test::blockSizeOfNew(0);
constexpr wchar_t c_secret[] = L"s3cret!s3cret!";
std::atomic<bool> g_watching{false};
std::atomic<int> g_found{0};

void* allocate(std::size_t size) {
  unsigned char* const block = static_cast<unsigned char*>(std::malloc(test::blockSizeOfNew(size)));
  if (!block) throw std::bad_alloc();
  std::memcpy(block, &size, sizeof size);
  return block + c_head;
}

void release(void* memory) noexcept {
  if (!memory) return;
  unsigned char* const bytes = static_cast<unsigned char*>(memory);
  if (g_watching) {
    std::size_t size = 0;
    std::memcpy(&size, bytes - c_head, sizeof size);
    const auto* const needle = reinterpret_cast<const unsigned char*>(c_secret);
    const auto* const end = needle + sizeof c_secret - sizeof c_secret[0];
    g_found += std::search(bytes, bytes + size, needle, end) != bytes + size;
  }
  std::free(bytes - c_head);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }

namespace {

using namespace std::string_literals;
using sitehlp::tag_Site;

class FreedPasswords : public test::PasswordTest {
 protected:
  FreedPasswords() {
    // A value that is too long for its field is logged at detail level, by design.
    agent.settings.logLevel = LogLevel::Info;
    agent.apply();
  }

  // How many blocks with the password in them were given back while it was read.
  int foundWhileReading(const std::wstring& password) {
    const std::wstring file =
        store(test::documentWithSites("<HttpSite Name=\"h\"><Password Encrypted=\"1\">" +
                                      sealedUtf8(password) + "</Password></HttpSite>"));
    sitehlp::tag_Site* list = nullptr;
    g_found = 0;
    g_watching = true;
    const int code = helper.ReadSiteList(file, &list, true);
    g_watching = false;
    const test::ListPtr owner(list);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(std::wstring(list->http.szPassword), password.substr(0, 259));
    return g_found;
  }
};

TEST_F(FreedPasswords, AreLookedFor) {
  g_found = 0;
  g_watching = true;
  { const std::wstring copy = std::wstring(100, L'x') + c_secret; }
  g_watching = false;
  EXPECT_GT(g_found, 0);
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
