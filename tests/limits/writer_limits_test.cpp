#include <cstdlib>
#include <memory>

#include "host/xml/limits.h"
#include "tests/limits/limits_fixture.h"

namespace {

using namespace sitehlp;
using namespace test;

constexpr wchar_t c_euro = L'\u20AC';  // three bytes in UTF-8
constexpr std::size_t c_euroBytes = 3;

// Many records that hold nothing. They are in one zero-filled block. Most of its pages are never
// written, so the block takes little memory.
class ManyRecords {
 public:
  ManyRecords(std::size_t count, SiteKind kind, const wchar_t* element = nullptr)
      : m_records(static_cast<tag_Site*>(std::calloc(count, sizeof(tag_Site)))) {
    if (!m_records) throw std::bad_alloc();
    for (std::size_t i = 0; i < count; ++i) {
      tag_Site& record = m_records.get()[i];
      record.eSiteKind = kind;
      if (element) setText(record.http.szElement, element);
      record.pNext = i + 1 < count ? &record + 1 : nullptr;
    }
  }
  tag_Site* head() const { return m_records.get(); }

 private:
  struct Free {
    void operator()(tag_Site* records) const { std::free(records); }
  };
  std::unique_ptr<tag_Site, Free> m_records;
};

class WriterLimits : public LimitsTest {
 protected:
  int write(tag_Site* list = nullptr, const std::vector<std::wstring>& certificates = {}) {
    return helper.CreateSiteList(list, wide(own), L"G", L"L", L"Client", certificates);
  }
  void expectRefused(int code) {
    EXPECT_EQ(code, c_errorWrite);
    expectNothingWritten();
  }
  void expectReadable(int code) {
    EXPECT_EQ(code, c_success);
    EXPECT_EQ(readCode(own), c_success);
    EXPECT_EQ(versionsCode(own), c_success);
    EXPECT_EQ(certificatesCode(own), c_success);
    EXPECT_TRUE(readFile(mesh) == readFile(own));
    EXPECT_TRUE(exists(mark)) << "the load command has not run";
  }
  void setPolicies(std::size_t number) {
    for (std::size_t i = 0; i < number; ++i) {
      helper.SetPolicySetting(L"P" + std::to_wstring(i), L"v");
    }
  }

  CSitesHelper helper{true};
};

TEST_F(WriterLimits, TakeAsManyRecordsAsAReaderDoes) {
  const ManyRecords records(host::c_maxChildren, SITE_KIND_LOCAL);
  expectReadable(write(records.head()));
  EXPECT_EQ(count, host::c_maxChildren);
}

// Shows: limit-written, CreateSiteList=-11
TEST_F(WriterLimits, RefuseOneRecordMore) {
  const ManyRecords records(host::c_maxChildren + 1, SITE_KIND_LOCAL);
  expectRefused(write(records.head()));
}

TEST_F(WriterLimits, TakeAsManySettingsAsAReaderDoes) {
  setPolicies(host::c_maxChildren);
  expectReadable(write());
  OpenHelper reader(true);
  SiteChain list;
  EXPECT_EQ(reader.ReadSiteList(wide(own), list.address(), true), 0);
  EXPECT_EQ(reader.m_policySettings.size(), host::c_maxChildren);
}

TEST_F(WriterLimits, RefuseOneSettingMore) {
  setPolicies(host::c_maxChildren + 1);
  expectRefused(write());
}

TEST_F(WriterLimits, TakeAsManyCertificatesAsAReaderDoes) {
  expectReadable(write(nullptr, std::vector<std::wstring>(host::c_maxChildren, L"c")));
}

TEST_F(WriterLimits, RefuseOneCertificateMore) {
  expectRefused(write(nullptr, std::vector<std::wstring>(host::c_maxChildren + 1, L"c")));
}

TEST_F(WriterLimits, CountTheBytesOfAValueAndNotItsCharactersOrTheirEscapes) {
  std::wstring euros(host::c_maxTokenBytes / c_euroBytes, c_euro);
  euros.append(host::c_maxTokenBytes % c_euroBytes, L'x');
  for (const std::wstring& value : {std::wstring(host::c_maxTokenBytes, L'x'),
                                    std::wstring(host::c_maxTokenBytes, L'&'), euros}) {
    putBack();
    helper.SetPolicySetting(L"long", value + L'x');
    expectRefused(write());
    helper.SetPolicySetting(L"long", value);
    expectReadable(write());
    OpenHelper reader(true);
    SiteChain list;
    EXPECT_EQ(reader.ReadSiteList(wide(own), list.address(), true), 0);
    EXPECT_TRUE(reader.m_policySettings[L"long"] == value);
  }
}

// XML does not allow U+0001, which has one byte. It is written as U+FFFD, which has three bytes.
TEST_F(WriterLimits, CountWhatIsWrittenForACharacterThatXmlCannotHold) {
  const std::size_t most = host::c_maxTokenBytes / 3;
  helper.SetPolicySetting(L"odd", std::wstring(most + 1, L'\1'));
  expectRefused(write());
  helper.SetPolicySetting(L"odd", std::wstring(most, L'\1'));
  expectReadable(write());
  OpenHelper reader(true);
  SiteChain list;
  EXPECT_EQ(reader.ReadSiteList(wide(own), list.address(), true), 0);
  EXPECT_TRUE(reader.m_policySettings[L"odd"] == std::wstring(most, L'\uFFFD'));
}

TEST_F(WriterLimits, HoldForACertificate) {
  expectRefused(write(nullptr, {L"good", std::wstring(host::c_maxTokenBytes + 1, L'c')}));
  expectReadable(write(nullptr, {L"good", std::wstring(host::c_maxTokenBytes, L'c')}));
}

// A tag counts with all its attributes, so a little less than the limit is left for a value. A
// document just below the limit can also be read.
TEST_F(WriterLimits, HoldForTheValueOfAnAttribute) {
  struct Character {
    wchar_t character;
    std::size_t bytes;
    std::size_t written;
  };
  for (const Character& c : {Character{L'v', 1, 1}, Character{L'&', 1, 5},
                             Character{c_euro, c_euroBytes, c_euroBytes}}) {
    SCOPED_TRACE(c.written);
    const auto writeLong = [&](std::size_t length) {
      putBack();
      return helper.CreateSiteList(nullptr, wide(own), std::wstring(length, c.character), L"L",
                                   L"Client", {});
    };
    const std::size_t limit = host::c_maxTokenBytes / c.written;
    expectRefused(writeLong(host::c_maxTokenBytes / c.bytes));
    expectReadable(writeLong(limit - 200));
    for (std::size_t length = limit - 120; length <= limit; length += 7) {
      const int code = writeLong(length);
      if (code == c_success) {
        expectReadable(code);
      } else {
        expectRefused(code);
      }
    }
  }
}

// Each character of these values is five bytes in the file.
// Shows: limit-written, limit-bytes, CreateSiteList=-11
TEST_F(WriterLimits, HoldForTheWholeDocumentToTheByte) {
  constexpr std::size_t c_escaped = 5;
  std::vector<std::wstring> certificates(12, std::wstring(host::c_maxTokenBytes, L'&'));
  certificates.emplace_back(L"x");
  ASSERT_EQ(write(nullptr, certificates), c_success);
  const std::size_t room = host::c_maxDocumentBytes - readFile(own).size() + 1;
  certificates.back() = std::wstring(room / c_escaped, L'&');
  certificates.back().append(room % c_escaped, L'x');
  ASSERT_LT(certificates.back().size(), host::c_maxTokenBytes);

  putBack();
  certificates.back() += L'x';
  expectRefused(write(nullptr, certificates));
  certificates.back().pop_back();
  expectReadable(write(nullptr, certificates));
  EXPECT_EQ(readFile(own).size(), host::c_maxDocumentBytes);
}

TEST_F(WriterLimits, TakeAsManyUnknownElementsAsAReaderDoes) {
  const ManyRecords records(c_mostUnknown, SITE_KIND_HTTP, L"Odd");
  EXPECT_EQ(write(records.head()), c_success);
  EXPECT_EQ(readCode(own), c_errorGeneral);
  EXPECT_EQ(count, c_mostUnknown);
}

// Shows: limit-written, CreateSiteList=-11
TEST_F(WriterLimits, RefuseOneUnknownElementMore) {
  for (const wchar_t* const element : {L"Odd", L"O"}) {
    const ManyRecords records(c_mostUnknown + 1, SITE_KIND_HTTP, element);
    expectRefused(write(records.head()));
  }
  // This element is known only in a "ProxyConfigList".
  const ManyRecords proxies(c_mostUnknown + 1, SITE_KIND_HTTP, L"ProxyConfig");
  expectRefused(write(proxies.head()));
}

TEST_F(WriterLimits, CountOnlyUnknownElementsAsSuch) {
  const ManyRecords records(c_mostUnknown + 1, SITE_KIND_HTTP, L"KeystoneSite");
  expectReadable(write(records.head()));
}

// ">" becomes "&gt;" when it is written.
TEST_F(WriterLimits, LeaveTheOldListWhenAnImportedOneGrowsBeyondThem) {
  const std::string full(host::c_maxTokenBytes, 'c');
  const std::string marks(host::c_maxTokenBytes, '>');
  std::string bundle = "<CaBundle>";
  for (int i = 0; i < 62; ++i) bundle += "<CaCertificate>" + full + "</CaCertificate>";
  bundle += "<CaCertificate>" + marks + "</CaCertificate></CaBundle>";
  const TempDir work;
  const std::string source = work.file("SiteList.xml");
  writeFile(source, document(httpElement("new"), bundle));
  ASSERT_EQ(readCode(source), c_success);
  EXPECT_EQ(CSitesHelper(wide(own)).ImportSiteList(wide(source), L""), c_errorGeneral);
  expectNothingWritten();
}

}  // namespace
