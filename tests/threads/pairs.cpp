#include "tests/threads/pairs.h"

#include <atomic>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#include "host/log_sink.h"
#include "tests/import/records.h"
#include "tests/support/child_process.h"
#include "tests/support/heap.h"
#include "tests/support/sanitizer.h"
#include "tests/threads/operations.h"

namespace test {
namespace {

using namespace sitehlp;

// The minimum number of runs of the slower operation. When the faster one has finished its runs,
// the pair ends, even if the slower one ran only this often.
constexpr unsigned long c_least = 5;
// The number of bytes that a pair may leave allocated. A leak in each run would be more.
constexpr long c_heapNoise = 128 * 1024;
// The same for all pairs.
constexpr long c_heapNoiseOfAll = 1024 * 1024;

// Returns 0 with a sanitizer. AddressSanitizer finds leaks itself.
long bytesInUse() { return TESTS_SANITIZED ? 0 : static_cast<long>(heapInUse()); }

bool mayRunTogether(const SharedOperation& a, const SharedOperation& b) {
  const auto releasesBeside = [](const SharedOperation& one, const SharedOperation& other) {
    return one.cache == Cache::HandsOut && other.cache != Cache::Untouched;
  };
  return !releasesBeside(a, b) && !releasesBeside(b, a);
}

class Pairs {
 public:
  Pairs(unsigned long times, Channel& channel) : m_times(times), m_channel(channel) {
    m_workshop.agent.settings.logLevel = LogLevel::Detail;
    m_workshop.agent.apply();
    host::setLogSink([this](LogLevel, const std::wstring&, const std::wstring&) { ++m_lines; });
  }

  void run(const SharedOperation& a, const SharedOperation& b) {
    const Outcomes ofA = outcomesOf(a, b);
    const Outcomes ofB = outcomesOf(b, a);
    start(a.writes || b.writes);
    const long before = bytesInUse();
    Side sides[] = {{a, ofA}, {b, ofB}};
    m_ready = 0;
    std::thread other([&] { work(sides[1], sides[0]); });
    work(sides[0], sides[1]);
    other.join();
    forgetCache();
    const long left = bytesInUse() - before;
    if (left > c_heapNoise) tell("FAULT leaves " + std::to_string(left) + " bytes");
    for (const Side& side : sides) {
      if (!side.strange.empty()) {
        tell("FAULT " + side.operation.name + " gives \"" + side.strange + "\" and alone \"" +
             *side.outcomes.begin() + "\"");
      }
      m_runs += side.done;
    }
  }
  unsigned long runs() const { return m_runs; }
  unsigned long lines() const { return m_lines; }

 private:
  using Outcomes = std::set<std::string>;

  struct Side {
    Side(const SharedOperation& what, const Outcomes& possible)
        : operation(what), outcomes(possible) {}
    const SharedOperation& operation;
    const Outcomes& outcomes;
    std::atomic<unsigned long> done{0};
    std::string strange;  // the first result that is not possible
  };

  void tell(const std::string& line) { m_channel.send(line); }

  static void forgetCache() {
    CSitesHelper::FreeSiteListMemory(CSitesHelper::m_pSiteList);
    CSitesHelper::m_pSiteList = nullptr;
    CSitesHelper::m_iChange = 0;
  }
  void start(bool files) {
    forgetCache();
    if (files) m_workshop.reset();
  }

  // Returns the results of the operation alone, after itself, and after the other operation. Each
  // sequence begins with the first state.
  Outcomes outcomesOf(const SharedOperation& operation, const SharedOperation& other) {
    using Runs = std::vector<const SharedOperation*>;
    const SharedOperation* const self = &operation;
    const SharedOperation* const partner = &other;
    std::vector<Runs> sequences = {{self}};
    if (other.writes)
      sequences.insert(sequences.end(), {{partner, self}, {partner, partner, self}});
    if (operation.writes) sequences.push_back({self, self});
    if (operation.writes && other.writes) {
      sequences.insert(sequences.end(), {{partner, self, self}, {self, partner, self}});
    }
    Outcomes outcomes;
    for (const Runs& sequence : sequences) {
      start(operation.writes || other.writes);
      std::string outcome;
      for (const SharedOperation* one : sequence) outcome = one->run(m_workshop);
      outcomes.insert(outcome);
    }
    return outcomes;
  }

  // Only the common start orders the two threads.
  void work(Side& side, const Side& other) {
    ++m_ready;
    while (m_ready.load() < 2) std::this_thread::yield();
    for (unsigned long mine = 0, theirs = 0;
         (mine < m_times && theirs < m_times) || mine < c_least || theirs < c_least;
         theirs = other.done.load(std::memory_order_relaxed)) {
      const std::string outcome = side.operation.run(m_workshop);
      if (side.strange.empty() && side.outcomes.count(outcome) == 0) side.strange = outcome;
      side.done.store(++mine, std::memory_order_relaxed);
    }
  }

  const unsigned long m_times;
  Channel& m_channel;
  Workshop m_workshop;
  std::atomic<int> m_ready{0};
  unsigned long m_runs = 0;
  unsigned long m_lines = 0;  // number of log lines; the lock of the log guards it
};

struct PairOfOperations {
  const SharedOperation* a;
  const SharedOperation* b;
  std::string name() const { return a->name + " beside " + b->name; }
};

std::vector<PairOfOperations> everyPair() {
  const SharedOperations& all = sharedOperations();
  std::vector<PairOfOperations> pairs;
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = i; j < all.size(); ++j) {
      if (mayRunTogether(all[i], all[j])) pairs.push_back({&all[i], &all[j]});
    }
  }
  return pairs;
}

// Runs the pairs of a part from a number on. Sends the number of each pair before it begins, its
// faults, and finally the number of runs.
CHILD_PROCESS(runPairsFrom) {
  const std::vector<PairOfOperations> pairs = everyPair();
  Pairs runner(std::stoul(args[1]), channel);
  long before = 0;
  for (std::size_t i = std::stoul(args[0]); i < pairs.size(); i += c_parts) {
    channel.send("PAIR " + std::to_string(i));
    runner.run(*pairs[i].a, *pairs[i].b);
    if (before == 0) before = bytesInUse();  // the first pair creates lasting objects
  }
  const long left = bytesInUse() - before;
  if (left > c_heapNoiseOfAll) {
    channel.send("FAULT together all pairs leave " + std::to_string(left) + " bytes");
  }
  if (runner.lines() == 0) channel.send("FAULT together all pairs log nothing");
  channel.send("RUNS " + std::to_string(runner.runs()));
  return 0;
}

}  // namespace

const SharedOperations& sharedOperations() {
  static const SharedOperations all = [] {
    SharedOperations operations;
    for (const SharedOperations& some : {recordOperations(), readingSharedOperations(),
                                         writingSharedOperations(), editingOperations()}) {
      operations.insert(operations.end(), some.begin(), some.end());
    }
    return operations;
  }();
  return all;
}

std::string told(int result, const tag_Site* list) {
  std::string text = std::to_string(result);
  for (; list; list = list->pNext) {
    const bool isHttp = list->eSiteKind == SITE_KIND_HTTP;
    const bool isProxy = list->eSiteKind == SITE_KIND_PROXY;
    text += " " + narrow(nameOf(*list)) + ":" + std::to_string(list->iOrder);
    if (isHttp) text += ":" + narrow(list->http.szServer) + ":" + narrow(list->http.szPassword);
    if (isProxy) text += ":" + narrow(list->proxy.szFtpProxyPassword);
  }
  return text;
}

std::string told(int result, const std::vector<std::wstring>& texts) {
  std::string all = std::to_string(result);
  for (const std::wstring& text : texts) all += " " + narrow(text);
  return all;
}

std::size_t numberOfPairs() { return everyPair().size(); }

PairFigures runPairs(std::size_t part, unsigned long times) {
  const std::vector<PairOfOperations> pairs = everyPair();
  PairFigures figures;
  for (std::size_t next = part; next < pairs.size();) {
    ChildProcess child("runPairsFrom", {std::to_string(next), std::to_string(times)});
    std::string name = "before the first pair";
    for (std::string line = child.receive(); !line.empty(); line = child.receive()) {
      std::istringstream words(line);
      std::string word;
      words >> word;
      if (word == "PAIR") {
        words >> next;
        name = pairs[next].name();
        next += c_parts;
        ++figures.pairs;
      } else if (word == "RUNS") {
        unsigned long runs = 0;
        words >> runs;
        figures.runs += runs;
        name = "after the last pair";
      } else {
        figures.faults.add(name, line);
      }
    }
    const int status = child.wait();
    if (status != 0) figures.faults.add(name, "ends with status " + std::to_string(status));
    if (figures.pairs == 0) break;
  }
  return figures;
}

}  // namespace test
