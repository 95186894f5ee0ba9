#include <gtest/gtest.h>

#include <string>

#include "tests/sitehlp/site_generator.h"
#include "tests/sitehlp/writer_fixture.h"

// Compares AddHTTPSite and the similar operations with a write of a list that has only the same
// record.
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

class OneWriterAgrees : public test::WriterTest {
 protected:
  std::string siteInTree(tag_Site* site) {
    constexpr int (CSitesHelper::*writers[])(tag_Site*, int) = {
        &CSitesHelper::AddHTTPSite, &CSitesHelper::AddFTPSite, &CSitesHelper::AddUNCSite,
        &CSitesHelper::AddLocalSite, &CSitesHelper::AddProxySite};
    const AdvXMLParser::Document document(L"root");
    AdvXMLParser::Element anchor = document.GetRoot().AddElementInto(L"anchor");
    helper.m_pSiteListElement = &anchor;
    EXPECT_EQ((helper.*writers[site->eSiteKind])(site, 0), 0);
    helper.m_pSiteListElement = nullptr;
    return between(comparable(test::narrow(document.GenerateXML(false))), "<anchor>", "</anchor>");
  }
  static std::string between(const std::string& text, const std::string& open,
                             const std::string& close) {
    const std::size_t begin = text.find(open);
    const std::size_t end = text.rfind(close);
    EXPECT_NE(begin, std::string::npos) << text;
    EXPECT_NE(end, std::string::npos) << text;
    if (begin == std::string::npos || end == std::string::npos) return text;
    return text.substr(begin + open.size(), end - begin - open.size());
  }
};

TEST_F(OneWriterAgrees, WithAWriteOfTheWholeList) {
  for (unsigned int seed = 1; seed <= 50; ++seed) {
    SCOPED_TRACE(seed);
    const std::string inTree = siteInTree(test::ListPtr(test::SiteGenerator(seed).site()).get());
    EXPECT_EQ(inTree, siteOf(test::SiteGenerator(seed).site()));
  }
}

}  // namespace
