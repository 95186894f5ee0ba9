#include <functional>

#include "host/agent.h"
#include "host/xml/limits.h"
#include "tests/import/site_cache.h"
#include "tests/limits/limits_fixture.h"

// The results of operations that read a list over a limit.
namespace {

using namespace sitehlp;
using namespace test;

class LimitResults : public LimitsTest {
 protected:
  LimitResults() { clearSiteCache(); }
  ~LimitResults() override { clearSiteCache(); }

  // Calls the operation with a file over each kind of limit, and expects the code of a limit.
  void expectLimit(const std::function<int(CSitesHelper& helper, const std::wstring& path)>& call) {
    const std::string deep = repeated("<a>", 300) + repeated("</a>", 300);
    for (const std::string& children : {deep, repeated("<a/>", c_mostUnknown + 1)}) {
      writeFile(path, document(children));
      CSitesHelper helper{wide(path)};
      EXPECT_EQ(call(helper, wide(path)), c_overLimit);
    }
    expectNothingWritten();
  }

  const std::string path = agent.dataDirectory() + "/over.xml";
};

// Shows: SmartReadSiteList=-104
TEST_F(LimitResults, OfASmartRead) {
  expectLimit([](CSitesHelper& helper, const std::wstring& from) {
    SiteChain list;
    return helper.SmartReadSiteList(from, list.address());
  });
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
}

// Shows: MustReadSiteList=-104
TEST_F(LimitResults, OfAReadThatNeedsAPath) {
  expectLimit([](CSitesHelper& helper, const std::wstring& from) {
    SiteChain list;
    return helper.MustReadSiteList(from, list.address());
  });
}

// Shows: ReadListContents=-104
TEST_F(LimitResults, OfAReadOfAllContents) {
  expectLimit([](CSitesHelper&, const std::wstring& from) {
    ListContents contents;
    return CSitesHelper::ReadListContents(from, contents,
                                          [](tag_Site* site) { const SiteChain taken(site); });
  });
}

// Shows: MergeSiteLists=-104
TEST_F(LimitResults, OfAMerge) {
  expectLimit([](CSitesHelper& helper, const std::wstring&) {
    SiteChain result;
    const int code = helper.MergeSiteLists(nullptr, nullptr, false, result.address());
    EXPECT_EQ(result.head(), nullptr);
    return code;
  });
}

// Shows: InstallSiteList=-104, ImportSiteList=-104
TEST_F(LimitResults, OfAnInstallationAndAnImport) {
  const std::wstring target = wide(own);
  expectLimit([&](CSitesHelper&, const std::wstring& from) {
    const int code = CSitesHelper(target).InstallSiteList(from, L"");
    EXPECT_EQ(CSitesHelper(target).ImportSiteList(from, L""), code);
    return code;
  });
}

// Shows: GetPYXServerInfo=-104
TEST_F(LimitResults, OfTheManagementServers) {
  expectLimit([](CSitesHelper& helper, const std::wstring&) {
    std::wstring text[5];
    int port = 0;
    return helper.GetPYXServerInfo(text[0], text[1], text[2], text[3], port, text[4], true, false);
  });
}

// Shows: limit-bytes, limit-depth, limit-attributes, limit-children, limit-token, limit-memory
TEST(LimitNumbers, AreThoseOfTheFormatDocument) {
  EXPECT_EQ(host::c_maxDocumentBytes, 64u << 20);
  EXPECT_EQ(host::c_maxDepth, 256u);
  EXPECT_EQ(host::c_maxAttributes, 1024u);
  EXPECT_EQ(host::c_maxChildren, 32768u);
  EXPECT_EQ(host::c_maxTokenBytes, 1u << 20);
  EXPECT_EQ(host::AgentSettings().maxRecordMegabytes, 1024u);
}

}  // namespace
