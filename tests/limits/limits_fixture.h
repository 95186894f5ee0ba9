#ifndef TESTS_LIMITS_LIMITS_FIXTURE_H
#define TESTS_LIMITS_LIMITS_FIXTURE_H

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

namespace test {

constexpr int c_overLimit = AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED;
// The limit on unknown elements in one list.
constexpr std::size_t c_mostUnknown = 1024;

inline std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

inline std::size_t lengthOf(const sitehlp::tag_Site* head) {
  std::size_t count = 0;
  for (; head; head = head->pNext) ++count;
  return count;
}

// An agent with a list and a mesh copy. Its load command creates a file. Its functions read a file
// and return the result.
class LimitsTest : public testing::Test {
 protected:
  LimitsTest() {
    agent.settings.meshLoadCommand = {"/bin/sh", "-c", "echo told > \"$1\"", "sh", mark};
    agent.settings.logLevel = LogLevel::Off;
    agent.apply();
    putBack();
  }

  void putBack() {
    writeFile(own, c_oldList);
    writeFile(mesh, c_oldMesh);
    std::remove(mark.c_str());
  }

  int readCode(const std::string& path) {
    SiteChain list;
    const int code = sitehlp::CSitesHelper(true).ReadSiteList(wide(path), list.address(), true);
    count = lengthOf(list.head());
    return code;
  }
  static int versionsCode(const std::string& path) {
    std::wstring text[3];
    return sitehlp::CSitesHelper(true).GetSitelistVersions(wide(path), text[0], text[1], text[2]);
  }
  static int certificatesCode(const std::string& path) {
    std::vector<std::wstring> certificates;
    return sitehlp::CSitesHelper(true).GetCaCertificates(wide(path), certificates);
  }
  void expectNothingWritten() {
    EXPECT_TRUE(readFile(own) == c_oldList) << "the own list has changed";
    EXPECT_TRUE(readFile(mesh) == c_oldMesh) << "the mesh copy has changed";
    EXPECT_FALSE(exists(mark)) << "the load command has run";
  }

  const std::string c_oldList = document(httpElement("old"));
  const std::string c_oldMesh = document(httpElement("oldmesh"));
  TestAgent agent;
  const std::string own = agent.etc("SiteList.xml");
  const std::string mesh = agent.dataDirectory() + "/mesh/SiteList.xml";
  const std::string mark = agent.dataDirectory() + "/told";
  std::size_t count = 0;  // number of records in the last list that was read
};

}  // namespace test

#endif
