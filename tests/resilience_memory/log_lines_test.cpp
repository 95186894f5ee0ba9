#include <gtest/gtest.h>

#include <filesystem>
#include <new>

#include "host/log_sink.h"
#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/import/site_cache.h"
#include "tests/resilience/workshop.h"
#include "tests/resilience_memory/every_allocation.h"

// A log line for which there is no memory is dropped. This must not affect anything else.
namespace {

using namespace sitehlp;
using namespace test;

bool saysNotWritten(const TestAgent& agent) {
  for (const std::wstring& text : agent.texts(LogLevel::Error)) {
    if (text.rfind(L"Site list not written", 0) == 0) return true;
  }
  return false;
}

// The mesh copy cannot be written, so error lines follow the write of the list.
TEST(ALineWithoutMemory, DoesNotMakeAWrittenListOneThatIsNotWritten) {
  Workshop workshop;
  workshop.agent.settings.logLevel = LogLevel::Error;
  workshop.agent.apply();
  const Operation& create = writingOperation("create");
  workshop.reset(create);
  create.run(workshop);
  const std::string whole = workshop.state().at(workshop.own());
  unsigned long written = 0;
  unsigned long refused = 0;
  bool failed = true;
  for (unsigned long number = 0; failed; ++number) {
    workshop.reset(create);
    std::filesystem::remove_all(workshop.agent.dataDirectory() + "/mesh");
    workshop.agent.clearLog();
    {
      const FailingAllocations failing(number, false);
      try {
        create.run(workshop);
      } catch (const std::bad_alloc&) {
      }
      failed = failing.failed() != 0;
    }
    const bool isWritten = workshop.state().at(workshop.own()) == whole;
    written += isWritten;
    refused += saysNotWritten(workshop.agent);
    EXPECT_FALSE(isWritten && saysNotWritten(workshop.agent)) << "allocation " << number;
  }
  EXPECT_GT(written, 10U);
  EXPECT_GT(refused, 10U);
}

class ListWithAnUnknownEnd : public testing::Test {
 protected:
  ListWithAnUnknownEnd() {
    workshop.agent.settings.logLevel = LogLevel::Error;
    workshop.agent.apply();
    host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});  // keeps no lines
    writeFile(workshop.own(), document(serverElement("s1") + serverElement("s2") + "<Odd/>"));
  }
  ~ListWithAnUnknownEnd() override { clearSiteCache(); }

  // Runs an operation with each of its allocations failing in turn. Returns how often one failed.
  template <typename Run>
  unsigned long failEachAllocation(Run run) {
    run();  // creates the objects that a process creates only once
    bool failed = true;
    unsigned long number = 0;
    for (; failed; ++number) {
      clearSiteCache();
      const long blocks = blocksInUse();
      {
        const FailingAllocations failing(number, false);
        run();
        failed = failing.failed() != 0;
      }
      EXPECT_LE(blocksInUse(), blocks) << "allocation " << number;
    }
    return number;
  }

  Workshop workshop;
};

TEST_F(ListWithAnUnknownEnd, LeavesNoRecordBehindAfterAQueryOfItsServers) {
  EXPECT_GT(failEachAllocation([this] {
              std::wstring text[5];
              int port = 0;
              try {
                EXPECT_LT(CSitesHelper(wide(workshop.own()))
                              .GetPYXServerInfo(text[0], text[1], text[2], text[3], port, text[4],
                                                true, false),
                          0);
              } catch (const std::bad_alloc&) {
              }
            }),
            20U);
}

// After an exception the output is unchanged. A returned failure comes with the list.
TEST_F(ListWithAnUnknownEnd, IsGivenOutOrReleased) {
  using Read = int (CSitesHelper::*)(const std::wstring&, tag_Site**);
  for (const Read read : {&CSitesHelper::SmartReadSiteList, &CSitesHelper::MustReadSiteList}) {
    EXPECT_GT(failEachAllocation([this, read] {
                tag_Site* list = nullptr;
                try {
                  if ((CSitesHelper(true).*read)(wide(workshop.own()), &list) == c_errorGeneral) {
                    EXPECT_NE(list, nullptr);
                  }
                  CSitesHelper::FreeSiteListMemory(list);
                } catch (const std::bad_alloc&) {
                  EXPECT_EQ(list, nullptr);
                }
              }),
              20U);
  }
}

}  // namespace
