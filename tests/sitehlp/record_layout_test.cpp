#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "sitehlp/site.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// The records are shared with code that was compiled elsewhere, so every offset is fixed.
namespace {

using namespace sitehlp;

#define EXPECT_FIELD(RECORD, FIELD, OFFSET, SIZE)                          \
  static_assert(offsetof(RECORD, FIELD) == (OFFSET), #FIELD " has moved"); \
  static_assert(sizeof(RECORD::FIELD) == (SIZE), #FIELD " has another size")
#define EXPECT_TEXT(RECORD, FIELD, OFFSET, CAPACITY)                                    \
  EXPECT_FIELD(RECORD, FIELD, OFFSET, (CAPACITY)*4);                                    \
  static_assert(std::is_same<decltype(RECORD::FIELD), wchar_t[CAPACITY]>::value, #FIELD \
                " is "                                                                  \
                "no text of that capacity")
#define EXPECT_SIGNED(RECORD, FIELD, OFFSET)                                       \
  EXPECT_FIELD(RECORD, FIELD, OFFSET, 4);                                          \
  static_assert(std::is_same<decltype(RECORD::FIELD), std::int32_t>::value, #FIELD \
                " is "                                                             \
                "not signed 32-bit")
#define EXPECT_UNSIGNED(RECORD, FIELD, OFFSET)                                      \
  EXPECT_FIELD(RECORD, FIELD, OFFSET, 4);                                           \
  static_assert(std::is_same<decltype(RECORD::FIELD), std::uint32_t>::value, #FIELD \
                " is "                                                              \
                "not unsigned 32-bit")

static_assert(sizeof(wchar_t) == 4, "text is UTF-32");

static_assert(SITE_KIND_HTTP == 0 && SITE_KIND_FTP == 1 && SITE_KIND_UNC == 2, "kind values");
static_assert(SITE_KIND_LOCAL == 3 && SITE_KIND_PROXY == 4, "kind values");

EXPECT_TEXT(tag_HttpSite, szElement, 0, 260);
EXPECT_TEXT(tag_HttpSite, szName, 1040, 260);
EXPECT_TEXT(tag_HttpSite, szServer, 2080, 260);
EXPECT_TEXT(tag_HttpSite, szServerIP, 3120, 100);
EXPECT_UNSIGNED(tag_HttpSite, uServerPort, 3520);
EXPECT_UNSIGNED(tag_HttpSite, uServerIPPort, 3524);
EXPECT_UNSIGNED(tag_HttpSite, uServerNamePort, 3528);
EXPECT_TEXT(tag_HttpSite, szRelativePath, 3532, 520);
EXPECT_TEXT(tag_HttpSite, szServerName, 5612, 261);
EXPECT_SIGNED(tag_HttpSite, iUseAuth, 6656);
EXPECT_TEXT(tag_HttpSite, szUserName, 6660, 260);
EXPECT_TEXT(tag_HttpSite, szPassword, 7700, 260);
EXPECT_TEXT(tag_HttpSite, szVersion, 8740, 260);
EXPECT_UNSIGNED(tag_HttpSite, uSecurePort, 9780);
static_assert(sizeof(tag_HttpSite) == 9784, "size");

EXPECT_TEXT(tag_FtpSite, szName, 0, 260);
EXPECT_TEXT(tag_FtpSite, szServer, 1040, 260);
EXPECT_TEXT(tag_FtpSite, szRelativePath, 2080, 520);
EXPECT_TEXT(tag_FtpSite, szUserName, 4160, 260);
EXPECT_TEXT(tag_FtpSite, szPassword, 5200, 260);
EXPECT_UNSIGNED(tag_FtpSite, uServerPort, 6240);
EXPECT_UNSIGNED(tag_FtpSite, uSecurePort, 6244);
static_assert(sizeof(tag_FtpSite) == 6248, "size");

EXPECT_TEXT(tag_UncSite, szName, 0, 260);
EXPECT_TEXT(tag_UncSite, szServer, 1040, 260);
EXPECT_TEXT(tag_UncSite, szRelativePath, 2080, 520);
EXPECT_TEXT(tag_UncSite, szDomainName, 4160, 260);
EXPECT_TEXT(tag_UncSite, szUserName, 5200, 260);
EXPECT_TEXT(tag_UncSite, szPassword, 6240, 260);
EXPECT_SIGNED(tag_UncSite, iUseLoggedonUserAccount, 7280);
EXPECT_TEXT(tag_UncSite, szShareName, 7284, 260);
static_assert(sizeof(tag_UncSite) == 8324, "size");

EXPECT_TEXT(tag_LocalSite, szName, 0, 260);
EXPECT_TEXT(tag_LocalSite, szRelativePath, 1040, 520);
EXPECT_TEXT(tag_LocalSite, szDomainName, 3120, 260);
EXPECT_TEXT(tag_LocalSite, szUserName, 4160, 260);
EXPECT_TEXT(tag_LocalSite, szPassword, 5200, 260);
EXPECT_SIGNED(tag_LocalSite, iUseLoggedonUserAccount, 6240);
static_assert(sizeof(tag_LocalSite) == 6244, "size");

EXPECT_TEXT(tag_ProxySite, szElement, 0, 260);
EXPECT_TEXT(tag_ProxySite, szName, 1040, 260);
EXPECT_TEXT(tag_ProxySite, szHttpProxyServer, 2080, 260);
EXPECT_SIGNED(tag_ProxySite, iHttpProxyPort, 3120);
EXPECT_TEXT(tag_ProxySite, szFtpProxyServer, 3124, 260);
EXPECT_SIGNED(tag_ProxySite, iFtpProxyPort, 4164);
EXPECT_SIGNED(tag_ProxySite, bAllowUserToConfigureProxy, 4168);
EXPECT_SIGNED(tag_ProxySite, bBypassLocalAddress, 4172);
EXPECT_SIGNED(tag_ProxySite, bUseIEConfig, 4176);
EXPECT_SIGNED(tag_ProxySite, iExclusionCount, 4180);
EXPECT_TEXT(tag_ProxySite, szExclusionList, 4184, 4001);
EXPECT_SIGNED(tag_ProxySite, bFtpUseAuth, 20188);
EXPECT_SIGNED(tag_ProxySite, bHttpUseAuth, 20192);
EXPECT_TEXT(tag_ProxySite, szHttpProxyUser, 20196, 260);
EXPECT_TEXT(tag_ProxySite, szHttpProxyPassword, 21236, 260);
EXPECT_TEXT(tag_ProxySite, szFtpProxyUser, 22276, 260);
EXPECT_TEXT(tag_ProxySite, szFtpProxyPassword, 23316, 260);
EXPECT_SIGNED(tag_ProxySite, bAlternateFtpUseAuth, 24356);
EXPECT_SIGNED(tag_ProxySite, bAlternateHttpUseAuth, 24360);
EXPECT_TEXT(tag_ProxySite, szAlternateHttpProxyUser, 24364, 260);
EXPECT_TEXT(tag_ProxySite, szAlternateHttpProxyPassword, 25404, 260);
EXPECT_TEXT(tag_ProxySite, szAlternateFtpProxyUser, 26444, 260);
EXPECT_TEXT(tag_ProxySite, szAlternateFtpProxyPassword, 27484, 260);
static_assert(sizeof(tag_ProxySite) == 28524, "size");

EXPECT_SIGNED(tag_Site, bEnabled, 0);
EXPECT_SIGNED(tag_Site, bVestaSite, 4);
EXPECT_SIGNED(tag_Site, bMirror, 8);
EXPECT_SIGNED(tag_Site, bLocal, 12);
EXPECT_SIGNED(tag_Site, iOrder, 16);
EXPECT_SIGNED(tag_Site, eSiteKind, 20);
EXPECT_TEXT(tag_Site, szType, 24, 260);
EXPECT_FIELD(tag_Site, pNext, 1064, sizeof(void*));
// The site data begins after the link. All kinds share this place.
static_assert(offsetof(tag_Site, http) == 1072, "site data has moved");
static_assert(offsetof(tag_Site, ftp) == 1072, "site data has moved");
static_assert(offsetof(tag_Site, unc) == 1072, "site data has moved");
static_assert(offsetof(tag_Site, local) == 1072, "site data has moved");
static_assert(offsetof(tag_Site, proxy) == 1072, "site data has moved");
static_assert(sizeof(tag_Site) == 29600, "size");

static_assert(std::is_trivially_copyable<tag_Site>::value, "records are copied bytewise");
static_assert(std::is_trivially_default_constructible<tag_Site>::value, "calloc makes a record");
static_assert(std::is_trivially_destructible<tag_Site>::value, "free releases a record");
static_assert(std::is_standard_layout<tag_Site>::value, "records are plain data");

TEST(RecordLayout, BytewiseCopyOfARecordCopiesItsData) {
  test::ListPtr site(test::newSite(SITE_KIND_PROXY));
  test::put(site->szType, L"repository");
  test::put(site->proxy.szExclusionList, std::wstring(4000, L'x'));
  test::put(site->proxy.szAlternateFtpProxyPassword, std::wstring(259, L'y'));
  test::ListPtr copy(test::newSite(SITE_KIND_HTTP));
  std::memcpy(copy.get(), site.get(), sizeof(tag_Site));
  EXPECT_EQ(copy->eSiteKind, SITE_KIND_PROXY);
  EXPECT_STREQ(copy->szType, L"repository");
  EXPECT_EQ(std::wstring(copy->proxy.szExclusionList), std::wstring(4000, L'x'));
  EXPECT_EQ(std::wstring(copy->proxy.szAlternateFtpProxyPassword), std::wstring(259, L'y'));
}

// --- The object
// -----------------------------------------------------------------------------------

static_assert(std::has_virtual_destructor<CSitesHelper>::value, "deleted through a base");
static_assert(std::is_same<decltype(CSitesHelper::m_pSiteList), tag_Site*>::value, "static");
static_assert(std::is_same<decltype(CSitesHelper::m_iChange), std::int32_t>::value, "static");

TEST(ObjectLayout, MembersStandInTheirOrderBehindTheTablePointer) {
  test::TestAgent agent;
  test::Probe object(true);
  const char* start = reinterpret_cast<const char*>(static_cast<CSitesHelper*>(&object));
  const auto offsetOf = [start](const auto& member) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&member) - start);
  };
  const std::size_t text = sizeof(std::wstring);
  std::size_t expected = sizeof(void*);
  EXPECT_EQ(offsetOf(object.m_strSiteListFile), expected);
  EXPECT_EQ(offsetOf(object.m_strCurrentFile), expected += text);
  EXPECT_EQ(offsetOf(object.m_strLocalVersion), expected += text);
  EXPECT_EQ(offsetOf(object.m_strGlobalVersion), expected += text);
  EXPECT_EQ(offsetOf(object.m_strSiteListType), expected += text);
  EXPECT_EQ(offsetOf(object.m_strReserved), expected += text);
  EXPECT_EQ(offsetOf(object.m_pSiteListElement), expected += text);
  EXPECT_EQ(offsetOf(object.m_policySettings), expected += sizeof(void*));
  EXPECT_EQ(offsetOf(object.m_iManagedOverride), expected += sizeof object.m_policySettings);
  EXPECT_EQ(offsetOf(object.m_iReserved), expected += 4);
  EXPECT_EQ(offsetOf(object.m_bUseDecryptData), expected += 4);
}

TEST(ObjectLayout, MemberTypes) {
  using test::Probe;
  static_assert(std::is_same<decltype(Probe::m_pSiteListElement), AdvXMLParser::Element*>::value,
                "a pointer to the parser's element");
  static_assert(
      std::is_same<decltype(Probe::m_policySettings), std::map<std::wstring, std::wstring>>::value,
      "an ordered map");
  static_assert(std::is_same<decltype(Probe::m_iManagedOverride), std::int32_t>::value, "");
  static_assert(std::is_same<decltype(Probe::m_iReserved), std::int32_t>::value, "");
  static_assert(std::is_same<decltype(Probe::m_bUseDecryptData), std::int32_t>::value, "");
}

TEST(ObjectLayout, DestructorIsVirtual) {
  test::TestAgent agent;
  struct Derived : CSitesHelper {
    explicit Derived(bool* gone) : CSitesHelper(true), m_gone(gone) {}
    ~Derived() override { *m_gone = true; }
    bool* m_gone;
  };
  bool gone = false;
  CSitesHelper* object = new Derived(&gone);
  delete object;
  EXPECT_TRUE(gone);
}

}  // namespace
