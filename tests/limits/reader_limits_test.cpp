#include <cstdio>
#include <fstream>
#include <sstream>

#include "host/agent.h"
#include "host/xml/limits.h"
#include "tests/limits/limits_fixture.h"
#include "tests/support/child_process.h"

namespace {

using namespace sitehlp;
using namespace test;

class ReaderLimits : public LimitsTest {
 protected:
  // Returns the result of reading a list with these children. `count` receives the number of
  // returned records.
  int codeOf(const std::string& children) {
    const std::string path = agent.dataDirectory() + "/many.xml";
    writeFile(path, document(children));
    return readCode(path);
  }
  void setRecordMegabytes(int megabytes) {
    writeFile(agent.dataDirectory() + "/agent.toml",
              "[limits]\nrecord_megabytes = " + std::to_string(megabytes) + "\n");
    agent.settings = host::readAgentSettings(agent.dataDirectory());
    agent.settings.logLevel = LogLevel::Off;
    agent.apply();
  }
};

// Shows: limit-unknown, unknown-last-site
TEST_F(ReaderLimits, TakeTheMostElementsThatAreNoSite) {
  EXPECT_EQ(codeOf(repeated("<a/>", c_mostUnknown)), c_errorGeneral);
  EXPECT_EQ(count, c_mostUnknown);
  EXPECT_EQ(codeOf(repeated("<a/>", c_mostUnknown) + "<LocalSite/>"), c_success);
  EXPECT_EQ(count, c_mostUnknown + 1);
}

// Shows: limit-unknown, limit-read
TEST_F(ReaderLimits, RefuseOneMoreWhereverItStands) {
  const std::string most = repeated("<a/>", c_mostUnknown);
  EXPECT_EQ(codeOf(most + "<a/>"), c_overLimit);
  EXPECT_LE(count, c_mostUnknown);
  EXPECT_EQ(codeOf("<Odd/>" + repeated("<LocalSite/>", 10) + most + "<LocalSite/>"), c_overLimit);
}

// Shows: limit-records-so-far
TEST_F(ReaderLimits, GiveTheRecordsThatWereReadBefore) {
  EXPECT_EQ(codeOf("<LocalSite/>" + repeated("<a/>", c_mostUnknown + 1) + "<LocalSite/>"),
            c_overLimit);
  EXPECT_EQ(count, 1 + c_mostUnknown);
  constexpr std::size_t c_fit = (std::size_t{1} << 20) / sizeof(tag_Site);
  setRecordMegabytes(1);
  EXPECT_EQ(codeOf(repeated("<LocalSite/>", c_fit + 2)), c_overLimit);
  EXPECT_EQ(count, c_fit);
}

// A "ProxyConfig" outside a "ProxyConfigList" is not a site either.
// Shows: proxy-as-site
TEST_F(ReaderLimits, CountAProxyOutsideOfItsListAsNoSite) {
  EXPECT_EQ(codeOf(repeated("<ProxyConfig/>", c_mostUnknown) + "<a/>"), c_overLimit);
}

TEST_F(ReaderLimits, DoNotCountSitesAsUnknown) {
  EXPECT_EQ(codeOf(repeated("<LocalSite/><ProxyConfigList/>", c_mostUnknown)), c_success);
  EXPECT_EQ(count, 2 * c_mostUnknown);
}

TEST_F(ReaderLimits, HoldForAListFromMemory) {
  std::wstring text = wide(document(repeated("<a/>", c_mostUnknown + 1) + "<LocalSite/>"));
  EXPECT_EQ(CSitesHelper(wide(own)).CreateSiteListFromBuffer(text), c_overLimit);
  const std::string bytes = narrow(text);
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(bytes.size()),
      reinterpret_cast<const unsigned char*>(bytes.data()));
  EXPECT_EQ(CSitesHelper(wide(own)).AdjustPwd(buffer), c_overLimit);
  EXPECT_FALSE(exists(agent.dataDirectory() + "/ServerSiteList.xml"));
  expectNothingWritten();
}

// Shows: limit-memory
TEST_F(ReaderLimits, FollowTheAgentsSetting) {
  constexpr std::size_t c_fit = (std::size_t{1} << 20) / sizeof(tag_Site);
  setRecordMegabytes(1);
  EXPECT_EQ(codeOf(repeated("<LocalSite/>", c_fit)), c_success);
  EXPECT_EQ(count, c_fit);
  EXPECT_EQ(codeOf(repeated("<LocalSite/>", c_fit + 1)), c_overLimit);
  EXPECT_LE(count, c_fit);
  setRecordMegabytes(2);
  EXPECT_EQ(codeOf(repeated("<LocalSite/>", c_fit + 1)), c_success);
  EXPECT_EQ(count, c_fit + 1);
}

#if defined(__linux__) && !defined(MEMORY_IS_NOT_MEASURED)
constexpr bool c_isMeasured = true;
#else
constexpr bool c_isMeasured = false;
#endif

// Returns the peak memory of this process in bytes, or 0 if the system does not report it.
std::size_t mostMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stoul(line.substr(6)) * 1024;
  }
  return 0;
}

// Reads the file. Sends the result, the number of records and the peak memory before and after.
CHILD_PROCESS(readMany) {
  host::AgentSettings settings;
  settings.dataDirectory = args[0];
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
  const std::size_t before = mostMemory();
  std::ostringstream answer;
  {
    SiteChain list;
    const int code = CSitesHelper(true).ReadSiteList(wide(args[1]), list.address(), true);
    answer << code << " " << lengthOf(list.head()) << " ";
  }
  answer << before << " " << mostMemory();
  channel.send(answer.str());
  return 0;
}

struct Reading {
  int code = 1;
  std::size_t records = 0;
  std::size_t mostBefore = 0;
  std::size_t mostBehind = 0;
};

class ReaderMemory : public ReaderLimits {
 protected:
  Reading readInChild(const std::string& children) {
    const std::string path = agent.dataDirectory() + "/many.xml";
    writeFile(path, document(children));
    ChildProcess child("readMany", {agent.dataDirectory(), path});
    std::istringstream answer(child.receive());
    Reading reading;
    answer >> reading.code >> reading.records >> reading.mostBefore >> reading.mostBehind;
    EXPECT_FALSE(answer.fail());
    EXPECT_EQ(child.wait(), 0);
    return reading;
  }
};

TEST_F(ReaderMemory, OfAHundredKilobytesOfNonsenseIsLittle) {
  const Reading reading = readInChild(repeated("<a/>", host::c_maxChildren));
  EXPECT_EQ(reading.code, c_overLimit);
  EXPECT_LE(reading.records, c_mostUnknown);
  if (!c_isMeasured) {
    std::printf("The memory of a process is not measured here: only the result is checked\n");
    return;
  }
  ASSERT_GT(reading.mostBefore, 0U) << "the system does not report the peak memory";
  EXPECT_GE(reading.mostBehind, reading.mostBefore);
  EXPECT_LT(reading.mostBehind, reading.mostBefore + (std::size_t{64} << 20));
}

TEST_F(ReaderMemory, IsEnoughForTheMostSites) {
  const Reading reading = readInChild(repeated("<LocalSite/>", host::c_maxChildren));
  EXPECT_EQ(reading.code, c_success);
  EXPECT_EQ(reading.records, host::c_maxChildren);
}

}  // namespace
