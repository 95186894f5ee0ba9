#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "platform/lock/interprocess_lock.h"
#include "sitehlp/read/decoder.h"
#include "sitehlp/sites_helper.h"
#include "tests/import/records.h"
#include "tests/resilience/workshop.h"
#include "tests/resilience_memory/every_allocation.h"
#include "tests/support/child_process.h"

namespace {

using namespace test;
using korvel_com::orb::lock::InterProcessWriteLock;
using testing::IsEmpty;

struct Figures {
  unsigned long runs = 0;
  unsigned long thrown = 0;
  unsigned long refused = 0;
  unsigned long silent = 0;  // success without the new list
  std::vector<std::string> faults;

  void fault(const std::string& where, const std::string& what) {
    if (faults.size() < 20) faults.push_back(where + ": " + what);
  }
};

class Shortage {
 public:
  explicit Shortage(Figures& figures) : m_figures(figures) {
    m_workshop.agent.settings.logLevel = LogLevel::Off;
    m_workshop.agent.apply();
  }

  // Fails every `stride`-th allocation of an operation.
  void of(const Operation& operation, bool writes, unsigned long stride) {
    m_workshop.reset(operation);
    m_before = m_workshop.state();
    // This run creates the objects that a process creates only once.
    const int usual = operation.run(m_workshop);
    m_after = writes ? m_workshop.state() : m_before;
    for (const bool forGood : {false, true}) {
      for (unsigned long n = 0; tryOne(operation, n, forGood, usual); n += stride) {
      }
    }
    // A block that leaks in every run would be found many times.
    const unsigned long runs = m_figures.runs;
    const long blocks = inUse(operation);
    for (unsigned long n = 0; n < 40 * stride; n += stride) tryOne(operation, n, false, usual);
    m_figures.runs = runs;
    if (inUse(operation) > blocks + 20) m_figures.fault(operation.name, "loses memory");
  }

 private:
  long inUse(const Operation& operation) {
    m_workshop.reset(operation);
    operation.run(m_workshop);
    m_workshop.agent.apply();
    return blocksInUse();
  }

  // Runs the operation with a failing allocation. Returns whether an allocation failed.
  bool tryOne(const Operation& operation, unsigned long n, bool forGood, int usual) {
    const std::string where = std::string(operation.name) + ", allocation " + std::to_string(n) +
                              (forGood ? " and all after it" : "");
    m_workshop.reset(operation);
    const std::ptrdiff_t descriptors = m_workshop.openDescriptors();
    int code = usual;
    bool threw = false;
    unsigned long failed = 0;
    {
      const FailingAllocations failing(n, forGood);
      try {
        code = operation.run(m_workshop);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      failed = failing.failed();
    }
    ++m_figures.runs;
    m_figures.thrown += threw;
    m_figures.refused += !threw && code != usual && code != 0;
    // If a list cannot be built, the operation returns the result so far, which may be 0.
    const bool known = code == usual || code == 0 || operation.failures.count(code) != 0;
    if (!threw && !known) m_figures.fault(where, "undocumented result " + std::to_string(code));
    const State now = m_workshop.state();
    const std::string mixed = mixture(now, m_before, m_after, true);
    if (!mixed.empty()) m_figures.fault(where, mixed);
    if (operation.result) {
      const std::string path = operation.result(m_workshop);
      const auto is = now.find(path);
      const bool isNew = is != now.end() && is->second == m_after.at(path);
      const bool differs = m_before.count(path) == 0 || m_before.at(path) != m_after.at(path);
      m_figures.silent += code == 0 && !threw && !isNew;
      if (threw && differs && isNew) m_figures.fault(where, "throws although the list is written");
    }
    if (!m_workshop.temporaryFiles().empty()) m_figures.fault(where, "leaves a temporary file");
    if (m_workshop.openDescriptors() != descriptors) m_figures.fault(where, "leaks a descriptor");
    for (const char* name : {sitehlp::c_siteListLock, sitehlp::smartSiteListLock}) {
      if (!InterProcessWriteLock(name).lock(0)) m_figures.fault(where, "keeps a lock");
    }
    return failed != 0;
  }

  Figures& m_figures;
  Workshop m_workshop;
  State m_before;
  State m_after;
};

Figures failAllocations(unsigned long stride) {
  Figures figures;
  Shortage shortage(figures);
  // The directory for a list from a buffer does not exist, so only the mesh copy is written. The
  // file system that maps this directory in other tests allocates memory itself.
  for (const Operation& operation : writingOperations()) shortage.of(operation, true, stride);
  for (const Operation& operation : readingOperations()) shortage.of(operation, false, stride);
  return figures;
}

TEST(EveryAllocation, MayFailWithoutACrashAMixedFileOrALeak) {
  const Figures figures = failAllocations(11);
  EXPECT_THAT(figures.faults, IsEmpty());
  EXPECT_GT(figures.runs, 500u);
  EXPECT_GT(figures.thrown, 100u);
}

// Expects that the object has searched this number of records or more, and that it finds the text
// at the end of a released record of this size.
void expectSearch(const FreedBlocks& freed, unsigned long records, const std::wstring& text,
                  std::size_t size) {
  if (!FreedBlocks::c_works) {
    std::printf("Freed records are not searched in this build\n");
    return;
  }
  EXPECT_GE(freed.searched(), records);
  const unsigned long before = freed.found();
  const std::size_t length = text.size() * sizeof(wchar_t);
  void* const record = std::calloc(1, size);
  ASSERT_NE(record, nullptr);
  std::memcpy(static_cast<char*>(record) + size - length, text.data(), length);
  std::free(record);
  EXPECT_EQ(freed.found(), before + 1) << size << " bytes";
}

TEST(AFreedRecord, HoldsNoPasswordWhateverAllocationFails) {
  Workshop workshop;
  workshop.agent.settings.logLevel = LogLevel::Off;
  workshop.agent.apply();
  const std::wstring canary = wide(c_canary);
  const FreedBlocks freed(canary, sizeof(sitehlp::tag_LocalSite), sizeof(sitehlp::tag_Site) + 64);
  for (const auto* operations : {&writingOperations(), &readingOperations()}) {
    for (const Operation& operation : *operations) {
      bool failed = true;
      for (unsigned long n = 0; failed; n += 61) {
        workshop.reset(operation);
        const FailingAllocations failing(n, false);
        try {
          operation.run(workshop);
        } catch (const std::bad_alloc&) {
          // The other test checks the possible results.
        }
        failed = failing.failed() != 0;
      }
    }
  }
  EXPECT_EQ(freed.found(), 0u);
  expectSearch(freed, 1000, canary, sizeof(sitehlp::tag_Site));
}

// Returns whether a record has the text.
bool holds(const void* record, std::size_t size, const std::wstring& text) {
  const auto* const bytes = static_cast<const char*>(record);
  const auto* const wanted = reinterpret_cast<const char*>(text.data());
  const std::size_t length = text.size() * sizeof(wchar_t);
  return std::search(bytes, bytes + size, wanted, wanted + length) != bytes + size;
}

// Returns the document with a path after each password. The path is too long for its field, so
// reading it allocates memory while the record has the password.
std::string withLongPaths(std::string document) {
  const std::string end = "</Password>";
  const std::string path = "<RelativePath>" + std::string(5000, 'p') + "</RelativePath>";
  std::size_t at = 0;
  while ((at = document.find(end, at)) != std::string::npos) {
    at += end.size();
    document.insert(at, path);
  }
  return document;
}

// A single site element, whose record is the caller's.
TEST(AFreedRecord, OfOneElementHoldsNoPassword) {
  Workshop workshop;
  const std::wstring wideText = wide(withLongPaths(readFile(workshop.own())));
  const std::unique_ptr<AdvXMLParser::Document> document(
      AdvXMLParser::Parser().Parse(wideText.data(), wideText.size()));
  const std::wstring canary = wide(c_canary);
  for (const wchar_t* kind : {L"HttpSite", L"FTPSite", L"UNCSite", L"LocalSite"}) {
    int withPassword = 0;
    for (AdvXMLParser::Element element : document->GetRoot().GetElement(L"SiteList").Elements()) {
      if (!element.HasName(kind)) continue;
      const std::size_t size = sitehlp::recordSize(sitehlp::classify(element));
      const FreedBlocks freed(canary, sizeof(sitehlp::tag_LocalSite), sizeof(sitehlp::tag_Site));
      bool failed = true;
      bool hasPassword = false;
      for (unsigned long n = 0; failed; ++n) {
        const FailingAllocations failing(n, false);
        void* record = nullptr;
        try {
          test::OpenHelper(true).ReadSiteFromSiteList(&element, &record);
        } catch (const std::bad_alloc&) {
          EXPECT_EQ(record, nullptr);
        }
        failed = failing.failed() != 0;
        hasPassword = record && holds(record, size, canary);
        if (record) std::memset(record, 0, size);
        std::free(record);
      }
      EXPECT_EQ(freed.found(), 0u) << narrow(kind);
      // This test releases the last record, so the operation has released at least one.
      if (hasPassword) expectSearch(freed, 2, canary, size);
      withPassword += hasPassword;
    }
    EXPECT_GT(withPassword, 0) << narrow(kind);
  }
}

// The long form: --child everyAllocation STRIDE
CHILD_PROCESS(everyAllocation) {
  const Figures figures = failAllocations(args.empty() ? 1 : std::stoul(args[0]));
  for (const std::string& fault : figures.faults) std::printf("   FAULT %s\n", fault.c_str());
  std::printf(
      "   %lu failed allocations, %lu thrown, %lu refused, %lu returned 0 without the new list\n",
      figures.runs, figures.thrown, figures.refused, figures.silent);
  return figures.faults.empty() ? 0 : 1;
}

}  // namespace
