#ifndef TESTS_EDIT_EDIT_FIXTURE_H
#define TESTS_EDIT_EDIT_FIXTURE_H

#include <gmock/gmock.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "platform/common/anxml.h"
#include "sitehlp/list.h"
#include "sitehlp/sites_helper.h"
#include "tests/edit/canonical.h"
#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/support/test_agent.h"

namespace test {

// Writes a new file. Removes an old file with that name first, because that is faster than
// overwriting.
inline void writeAnew(const std::string& path, const std::string& bytes) {
  std::remove(path.c_str());
  writeFile(path, bytes);
}

// An open document with its "SiteList" element, for operations on nodes.
struct OpenDocument {
  OpenDocument(const TempDir& dir, const std::string& text) : path(dir.file("opened.xml")) {
    writeAnew(path, text);
    opened = xml.useExistingFile(AString(wide(path)), L"ns:SiteLists", L"xmlns:ns", L"wxSiteList");
    root = AnXmlNode(&xml);
    root.tryGetChild(siteList, L"SiteList", nullptr, nullptr, nullptr, nullptr);
  }
  // Returns the current document.
  std::string text() {
    EXPECT_TRUE(xml.writeFile(AString(wide(path)), false, false));
    return canonical(readFile(path));
  }
  // Returns the first child of "SiteList" with that element name and "Name".
  AnXmlNode site(const wchar_t* element, const wchar_t* name) {
    AnXmlNode node;
    EXPECT_TRUE(siteList.tryGetChild(node, element, L"Name", name, nullptr, nullptr));
    return node;
  }

  std::string path;
  AnXml xml;
  bool opened = false;
  AnXmlNode root;
  AnXmlNode siteList;
};

// An agent with its own list, which is edited from an incoming list.
class EditFixture : public testing::Test {
 protected:
  void target(const std::string& bytes) { writeAnew(own, bytes); }
  void source(const std::string& bytes) { writeAnew(src, bytes); }

  bool modify(bool repositories, bool servers, const std::string& keyDirectory = "") {
    sitehlp::CSitesHelper helper{wide(own)};
    agent.clearLog();
    return helper.modifySiteList(wide(src).c_str(), repositories, servers,
                                 AString(wide(keyDirectory)));
  }
  std::string result() const { return canonical(readFile(own)); }
  std::map<std::string, std::string> onDisk() { return snapshot(agent.dataDirectory() + "/etc"); }

  TestAgent agent;
  TempDir incoming;
  TempDir keyDir;
  const std::string own = agent.etc("SiteList.xml");
  const std::string src = incoming.file("incoming.xml");
};

inline std::string vendorHttp(const std::string& attributes, const std::string& children = "") {
  return "<HttpSite Server=\"" VENDOR_HTTP_HOST ":80\" " + attributes + ">" + children +
         "</HttpSite>";
}
inline std::string vendorFtp(const std::string& attributes, const std::string& children = "") {
  return "<FTPSite Server=\"" VENDOR_FTP_HOST ":21\" " + attributes + ">" + children + "</FTPSite>";
}

}  // namespace test

#endif
