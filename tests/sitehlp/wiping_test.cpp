#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "sitehlp/fields.h"
#include "tests/sitehlp/sites_helper_fixture.h"

#if defined(__APPLE__)
#include <malloc/malloc.h>
#endif

// Clear passwords are wiped before the memory of a record is released.
namespace {

const void* g_watched = nullptr;
std::vector<unsigned char> g_bytesAtRelease;
const sitehlp::tag_Site* g_cachedAtRelease = nullptr;

void lookAt(const void* memory) {
  if (!memory || memory != g_watched) return;
  g_watched = nullptr;
  const auto* bytes = static_cast<const unsigned char*>(memory);
  g_bytesAtRelease.assign(bytes, bytes + sizeof(sitehlp::tag_Site));
  g_cachedAtRelease = sitehlp::CSitesHelper::m_pSiteList;
}

}  // namespace

#if defined(__APPLE__)
extern "C" void free(void* memory) {
  lookAt(memory);
  malloc_zone_free(malloc_zone_from_ptr(memory), memory);
}
#else
extern "C" void __real_free(void* memory);
extern "C" void __wrap_free(void* memory);
// The linker sends the objects' calls here (--wrap=free).
extern "C" void __wrap_free(void* memory) {
  lookAt(memory);
  __real_free(memory);
}
#endif

namespace {

using sitehlp::tag_Site;

class Wiping : public test::SitesHelperTest {
 protected:
  // Releases the record. Returns its content at that moment.
  static const tag_Site* released(tag_Site* site) {
    static tag_Site copy;
    g_watched = site;
    g_bytesAtRelease.clear();
    sitehlp::CSitesHelper::FreeSiteListMemory(site);
    EXPECT_EQ(g_bytesAtRelease.size(), sizeof(tag_Site)) << "the record was not released";
    if (g_bytesAtRelease.size() != sizeof copy) return &copy;
    std::memcpy(&copy, g_bytesAtRelease.data(), sizeof copy);
    return &copy;
  }
  template <std::size_t N>
  static void expectWiped(const wchar_t (&field)[N]) {
    for (const wchar_t character : field) EXPECT_EQ(character, L'\0');
  }
  static const std::wstring& secret() {
    static const std::wstring text(259, L's');
    return text;
  }
};

// Another thread may fork during the release. The child must not find a partly released list.
TEST_F(Wiping, OfAReplacedListBeginsWhenNoListIsCached) {
  const std::wstring file = store(test::documentWithSites("<UNCSite/><UNCSite/>"));
  tag_Site* list = nullptr;
  ASSERT_EQ(helper.SmartReadSiteList(file, &list), 0);
  helper.needToUpdateInMemSiteList();
  helper.needToUpdateInMemSiteList();
  g_watched = list;
  g_cachedAtRelease = list;
  ASSERT_EQ(helper.SmartReadSiteList(file, &list), 0);
  EXPECT_EQ(g_watched, nullptr) << "the old list was not released";
  EXPECT_EQ(g_cachedAtRelease, nullptr);
}

TEST_F(Wiping, EveryFieldThatIsAPasswordIsGone) {
  for (const sitehlp::SiteKind kind : sitehlp::c_siteKinds) {
    const auto eachPassword = [](auto& site, auto visit) {
      sitehlp::eachFieldOf(site, [&](const auto& row, auto& value) {
        if constexpr (std::is_array_v<std::remove_reference_t<decltype(value)>>) {
          if (row.form == sitehlp::FieldForm::Password) visit(value);
        }
      });
    };
    tag_Site* const site = test::newSite(kind);
    int passwords = 0;
    eachPassword(*site, [&](auto& password) {
      test::put(password, secret());
      ++passwords;
    });
    EXPECT_GT(passwords, 0) << kind;
    eachPassword(*released(site), [](const auto& password) { expectWiped(password); });
  }
}

TEST_F(Wiping, PasswordOfEveryKindIsGone) {
  tag_Site* http = test::newSite(sitehlp::SITE_KIND_HTTP);
  test::put(http->http.szPassword, secret());
  expectWiped(released(http)->http.szPassword);
  tag_Site* ftp = test::newSite(sitehlp::SITE_KIND_FTP);
  test::put(ftp->ftp.szPassword, secret());
  expectWiped(released(ftp)->ftp.szPassword);
  tag_Site* unc = test::newSite(sitehlp::SITE_KIND_UNC);
  test::put(unc->unc.szPassword, secret());
  expectWiped(released(unc)->unc.szPassword);
  tag_Site* local = test::newSite(sitehlp::SITE_KIND_LOCAL);
  test::put(local->local.szPassword, secret());
  expectWiped(released(local)->local.szPassword);
}

TEST_F(Wiping, EveryProxyPasswordIsGone) {
  tag_Site* proxy = test::newSite(sitehlp::SITE_KIND_PROXY);
  test::put(proxy->proxy.szHttpProxyPassword, secret());
  test::put(proxy->proxy.szFtpProxyPassword, secret());
  test::put(proxy->proxy.szAlternateHttpProxyPassword, secret());
  test::put(proxy->proxy.szAlternateFtpProxyPassword, secret());
  const tag_Site* record = released(proxy);
  expectWiped(record->proxy.szHttpProxyPassword);
  expectWiped(record->proxy.szFtpProxyPassword);
  expectWiped(record->proxy.szAlternateHttpProxyPassword);
  expectWiped(record->proxy.szAlternateFtpProxyPassword);
}

TEST_F(Wiping, PasswordsBehindTheFirstRecordAreGoneToo) {
  tag_Site* first = test::newSite(sitehlp::SITE_KIND_HTTP);
  tag_Site* second = test::newSite(sitehlp::SITE_KIND_LOCAL);
  first->pNext = second;
  test::put(second->local.szPassword, secret());
  g_watched = second;
  g_bytesAtRelease.clear();
  sitehlp::CSitesHelper::FreeSiteListMemory(first);
  ASSERT_EQ(g_bytesAtRelease.size(), sizeof(tag_Site));
  tag_Site copy;
  std::memcpy(&copy, g_bytesAtRelease.data(), sizeof copy);
  expectWiped(copy.local.szPassword);
}

}  // namespace
