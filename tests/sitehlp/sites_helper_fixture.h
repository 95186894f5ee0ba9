#ifndef TESTS_SITEHLP_SITES_HELPER_FIXTURE_H
#define TESTS_SITEHLP_SITES_HELPER_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"
#include "tests/support/test_agent.h"

namespace test {

// Gives the tests access to the protected members of the class.
struct Probe : sitehlp::CSitesHelper {
  using CSitesHelper::CSitesHelper;
  using CSitesHelper::m_bUseDecryptData;
  using CSitesHelper::m_iManagedOverride;
  using CSitesHelper::m_iReserved;
  using CSitesHelper::m_policySettings;
  using CSitesHelper::m_pSiteListElement;
  using CSitesHelper::m_strCurrentFile;
  using CSitesHelper::m_strGlobalVersion;
  using CSitesHelper::m_strLocalVersion;
  using CSitesHelper::m_strReserved;
  using CSitesHelper::m_strSiteListFile;
  using CSitesHelper::m_strSiteListType;
};

struct FreeList {
  void operator()(sitehlp::tag_Site* head) const {
    sitehlp::CSitesHelper::FreeSiteListMemory(head);
  }
};
using ListPtr = std::unique_ptr<sitehlp::tag_Site, FreeList>;

inline sitehlp::tag_Site* newSite(sitehlp::SiteKind kind) {
  auto* site = static_cast<sitehlp::tag_Site*>(std::calloc(1, sizeof(sitehlp::tag_Site)));
  if (!site) throw std::bad_alloc();
  site->eSiteKind = kind;
  return site;
}

// Links the records in this order and takes ownership of them.
inline ListPtr chain(const std::vector<sitehlp::tag_Site*>& sites) {
  for (std::size_t i = 0; i + 1 < sites.size(); ++i) sites[i]->pNext = sites[i + 1];
  return ListPtr(sites.empty() ? nullptr : sites.front());
}

inline int lengthOf(const sitehlp::tag_Site* head) {
  int count = 0;
  for (; head; head = head->pNext) ++count;
  return count;
}

// Fills a text field without the library.
template <std::size_t N>
void put(wchar_t (&field)[N], const std::wstring& text) {
  ASSERT_LT(text.size(), N);
  text.copy(field, text.size());
  field[text.size()] = L'\0';
}

const std::string c_declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

// Return a document with these child elements of the root, or with these sites.
inline std::string documentWithRoot(const std::string& children,
                                    const std::string& attributes = "") {
  return c_declaration + R"(<ns:SiteLists xmlns:ns="wxSiteList")" +
         (attributes.empty() ? "" : " " + attributes) + ">" + children + "</ns:SiteLists>";
}
inline std::string documentWithSites(const std::string& sites) {
  return documentWithRoot(R"(<SiteList Default="1" Name="SomeGUID">)" + sites + "</SiteList>");
}

// Returns a list pointer that no operation returns. It shows whether an output was written.
inline sitehlp::tag_Site* untouched() {
  static sitehlp::tag_Site site;
  return &site;
}

class SitesHelperTest : public testing::Test {
 protected:
  struct Read {
    int code;
    ListPtr list;
  };

  SitesHelperTest() {
    forgetCache();
    agent.clearLog();
  }
  ~SitesHelperTest() override { forgetCache(); }

  static void forgetCache() {
    sitehlp::CSitesHelper::FreeSiteListMemory(sitehlp::CSitesHelper::m_pSiteList);
    sitehlp::CSitesHelper::m_pSiteList = nullptr;
    sitehlp::CSitesHelper::m_iChange = 0;
  }

  std::wstring path(const std::string& name) const {
    return wide(agent.dataDirectory() + "/" + name);
  }

  // Writes a file below the agent's data directory and returns its path.
  std::wstring store(const std::string& bytes, const std::string& name = "list.xml") {
    writeFile(agent.dataDirectory() + "/" + name, bytes);
    return path(name);
  }

  // Reads a document. The list is null if the reader did not write its output.
  Read read(const std::string& document) { return readPath(store(document)); }
  Read readPath(const std::wstring& file, bool useLock = true) {
    sitehlp::tag_Site* list = untouched();
    const int code = helper.ReadSiteList(file, &list, useLock);
    if (list == untouched()) return {code, nullptr};
    return {code, ListPtr(list)};
  }

  // Returns the only site of a document that has only this element.
  ListPtr decode(const std::string& element) {
    Read result = read(documentWithSites(element));
    EXPECT_EQ(result.code, 0) << element;
    EXPECT_EQ(lengthOf(result.list.get()), 1) << element;
    return result.list ? std::move(result.list) : ListPtr(newSite(sitehlp::SITE_KIND_HTTP));
  }

  // Return the messages and the traces of the library, without those of the host library.
  std::vector<LogLine> messages() const {
    std::vector<LogLine> lines;
    for (const LogLine& line : agent.messages()) {
      if (line.component == L"SiteHlp") lines.push_back(line);
    }
    return lines;
  }
  std::vector<std::wstring> messageTexts() const {
    std::vector<std::wstring> texts;
    for (const LogLine& line : messages()) texts.push_back(line.text);
    return texts;
  }
  std::vector<LogLine> scopes() const {
    std::vector<LogLine> lines;
    for (const LogLine& line : agent.log()) {
      const bool isScope =
          line.text.rfind(L"Enter: ", 0) == 0 || line.text.rfind(L"Leave: ", 0) == 0;
      if (line.component == L"SiteHlp" && isScope) lines.push_back(line);
    }
    return lines;
  }

  static LogLine detail(const std::wstring& text) { return {LogLevel::Detail, L"SiteHlp", text}; }
  static LogLine info(const std::wstring& text) { return {LogLevel::Info, L"SiteHlp", text}; }
  static LogLine error(const std::wstring& text) { return {LogLevel::Error, L"SiteHlp", text}; }

  TestAgent agent;
  Probe helper{true};
};

}  // namespace test

#endif
