#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <string>

#include "tests/import/failing_allocation.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// Records that cannot be allocated.
namespace {

using sitehlp::tag_Site;
using test::FailingAllocation;
using test::LockState;

class Allocation : public test::SitesHelperTest {
 protected:
  // Parses a text and hands its root to the decoder, which is to fail.
  void expectNoRecord(const std::wstring& text, std::size_t recordSize) {
    const std::unique_ptr<AdvXMLParser::Document> document(
        AdvXMLParser::Parser().Parse(text.c_str(), text.size()));
    AdvXMLParser::Element element = document->GetRoot();
    void* record = test::untouched();
    const FailingAllocation failing(recordSize, 0);
    EXPECT_THROW(helper.ReadSiteFromSiteList(&element, &record), std::bad_alloc)
        << test::narrow(text);
    EXPECT_EQ(record, nullptr) << test::narrow(text);
    EXPECT_EQ(failing.failed(), 1) << test::narrow(text);
  }
};

TEST_F(Allocation, DecoderWithoutARecordThrowsAndHandsOutNone) {
  expectNoRecord(L"<HttpSite/>", sizeof(sitehlp::tag_HttpSite));
  expectNoRecord(L"<VestaSite/>", sizeof(sitehlp::tag_HttpSite));
  expectNoRecord(L"<KeystoneSite/>", sizeof(sitehlp::tag_HttpSite));
  expectNoRecord(L"<FTPSite/>", sizeof(sitehlp::tag_FtpSite));
  expectNoRecord(L"<UNCSite/>", sizeof(sitehlp::tag_UncSite));
  expectNoRecord(L"<LocalSite/>", sizeof(sitehlp::tag_LocalSite));
  expectNoRecord(L"<ProxyConfig/>", sizeof(sitehlp::tag_ProxySite));
}

TEST_F(Allocation, ReaderWithoutARecordThrowsAndHandsOutNone) {
  const std::wstring file = store(test::documentWithSites("<HttpSite/><UNCSite/><FTPSite/>"));
  for (int before = 0; before < 3; ++before) {
    tag_Site* list = test::untouched();
    const FailingAllocation failing(sizeof(tag_Site), before);
    EXPECT_THROW(helper.ReadSiteList(file, &list, true), std::bad_alloc) << before;
    EXPECT_EQ(list, test::untouched()) << before;
    EXPECT_EQ(failing.failed(), 1) << before;
  }
  EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Free);
  EXPECT_EQ(test::lengthOf(readPath(file).list.get()), 3);
}

TEST_F(Allocation, SmartReadWithoutARecordLeavesNoCacheAndNoLock) {
  const std::wstring file = store(test::documentWithSites("<HttpSite/><UNCSite/>"));
  tag_Site* list = nullptr;
  {
    const FailingAllocation failing(sizeof(tag_Site), 1);
    EXPECT_THROW(helper.SmartReadSiteList(file, &list), std::bad_alloc);
  }
  EXPECT_EQ(sitehlp::CSitesHelper::m_pSiteList, nullptr);
  EXPECT_EQ(test::lockState(sitehlp::smartSiteListLock), LockState::Free);
  EXPECT_EQ(helper.SmartReadSiteList(file, &list), 0);
  EXPECT_EQ(test::lengthOf(list), 2);
}

}  // namespace
