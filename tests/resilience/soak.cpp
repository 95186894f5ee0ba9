#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "tests/resilience/faults.h"
#include "tests/resilience/forks.h"
#include "tests/resilience/hostile_documents.h"
#include "tests/resilience/kills.h"
#include "tests/resilience/load.h"
#include "tests/resilience/power_cut.h"
#include "tests/resilience/secrets.h"
#include "tests/resilience/updates.h"
#include "tests/support/child_process.h"

// Runs the long forms of all or of the named experiments, each at PERCENT of its full length:
// --child soak PERCENT [NAME...]
namespace test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned long c_kills = 20000;
constexpr unsigned long c_holderKills = 10000;
constexpr unsigned long c_forks = 10000;
constexpr unsigned int c_generations = 100;
constexpr unsigned long c_swaps = 10000;
constexpr unsigned long c_mixedOperations = 10000;
constexpr int c_loadSeconds = 60;
constexpr unsigned long c_updates = 50000;

class Soak {
 public:
  explicit Soak(unsigned long percent) : m_percent(percent) {}

  unsigned long part(unsigned long whole) const { return std::max(1UL, whole * m_percent / 100); }

  void begin(const char* name) {
    std::printf("\n== %s\n", name);
    m_start = m_shown = Clock::now();
  }
  Progress progress() {
    return [this](unsigned long done) {
      if (Clock::now() - m_shown < std::chrono::seconds(10)) return;
      m_shown = Clock::now();
      std::printf("   ... %lu after %.0f s\n", done, seconds());
      std::fflush(stdout);
    };
  }
  void end(const Faults& faults) {
    for (const std::string& line : faults.lines()) std::printf("   FAULT %s\n", line.c_str());
    std::printf("   %lu faults, %.1f s\n", faults.count(), seconds());
    std::fflush(stdout);
    m_faults += faults.count();
  }
  unsigned long faults() const { return m_faults; }

  void expect(bool holds, const char* what) {
    std::printf("   %s: %s\n", what, holds ? "yes" : "NO");
    if (!holds) ++m_faults;
  }

 private:
  double seconds() const { return std::chrono::duration<double>(Clock::now() - m_start).count(); }

  unsigned long m_percent;
  Clock::time_point m_start;
  Clock::time_point m_shown;
  unsigned long m_faults = 0;
};

void soakFaults(Soak& soak) {
  const FaultFigures calls = failEveryCall(Errors::Every, soak.progress());
  std::printf("   failing calls: %lu runs, %lu refused, %lu left-overs removed\n", calls.runs,
              calls.refused, calls.cleanedUp);
  soak.end(calls.faults);
  const FaultFigures transfers = moveFewBytes(soak.progress());
  std::printf("   short transfers and full disks: %lu runs, %lu refused\n", transfers.runs,
              transfers.refused);
  soak.end(transfers.faults);
}

void soakKills(Soak& soak) {
  const KillFigures calls = killBeforeEveryCall(soak.progress());
  std::printf("   before every call: %lu kills, %lu left-overs, %lu half done\n", calls.kills,
              calls.leftOvers, calls.unfinished);
  soak.end(calls.faults);
  const KillFigures moments = killAtAnyMoment(soak.part(c_kills), 2, soak.progress());
  std::printf("   at any moment: %lu kills, %lu left-overs\n", moments.kills, moments.leftOvers);
  soak.end(moments.faults);
}

void soakForks(Soak& soak) {
  const ForkFigures forks = forkBesideThreads(soak.part(c_forks), soak.progress());
  std::printf("   beside busy threads: %lu forks, %lu children hang\n", forks.forks, forks.hung);
  soak.end(forks.faults);
  const GenerationFigures generations = forkGenerations(c_generations);
  std::printf("   heap of generation 1: %zu bytes, of generation %u: %zu bytes\n",
              generations.heapOfFirst, c_generations, generations.heapOfLast);
  soak.expect(generations.heapOfLast <= generations.heapOfFirst + 4096,
              "generations keep at most 4 KB");
  soak.end(generations.faults);
}

void soakPowerCuts(Soak& soak) {
  const PowerCutFigures figures = cutPower({100, 64, 37}, soak.progress());
  std::printf("   %lu states, %lu different disks, %lu between old and new, %lu started again\n",
              figures.states, figures.distinct, figures.between, figures.restarted);
  soak.end(figures.faults);
}

// The figures of a family for a document and for one of twice the size.
struct HostileGrowth {
  HostileResult small;
  HostileResult large;
  double ofTime = 0;
};

// Reads both alternately several times, so that a slow phase of the machine affects both. The
// median removes outliers. For memory, the maximum is used.
HostileGrowth growthOf(const HostileFamily& family, HostileReader& reader, Faults& faults) {
  constexpr std::size_t c_small = std::size_t{4} << 20;
  constexpr std::size_t c_times = 9;
  HostileGrowth growth;
  std::vector<double> ratios;
  for (std::size_t i = 0; i < c_times; ++i) {
    HostileResult small;
    HostileResult large;
    if (!reader.read(family, c_small, small, faults)) break;
    if (!reader.read(family, 2 * c_small, large, faults)) break;
    ratios.push_back(large.seconds / std::max(small.seconds, 1e-9));
    small.peakFactor = std::max(small.peakFactor, growth.small.peakFactor);
    large.peakFactor = std::max(large.peakFactor, growth.large.peakFactor);
    growth.small = small;
    growth.large = large;
  }
  if (ratios.empty()) return growth;
  const auto median = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
  std::nth_element(ratios.begin(), median, ratios.end());
  growth.ofTime = *median;
  return growth;
}

void soakHostile(Soak& soak) {
  Faults faults;
  HostileReader reader;
  double mostMemory = 0;
  double mostGrowth = 0;
  unsigned long done = 0;
  const Progress progress = soak.progress();
  for (const HostileFamily& family : hostileFamilies()) {
    const HostileGrowth growth = growthOf(family, reader, faults);
    progress(++done);
    std::printf("   %-36s code %4d  %5.1f and %5.1f times the memory  %.2f times the time\n",
                family.name, growth.small.readCode, growth.small.peakFactor,
                growth.large.peakFactor, growth.ofTime);
    mostMemory = std::max({mostMemory, growth.small.peakFactor, growth.large.peakFactor});
    mostGrowth = std::max(mostGrowth, growth.ofTime);
  }
  std::printf("   worst memory: %.1f times the document; worst growth of time: %.2f\n", mostMemory,
              mostGrowth);
  soak.expect(mostMemory <= 32, "at most 32 times the memory");
  soak.expect(mostGrowth <= 2.5, "at most 2.5 times the time for twice the document");
  soak.end(faults);
}

void soakSecrets(Soak& soak) {
  const SecretFigures secrets = lookForTheCanary(soak.progress());
  std::printf("   %lu runs, %lu log lines, %lu files\n", secrets.runs, secrets.lines,
              secrets.files);
  soak.end(secrets.faults);
  const SwapFigures swaps = swapLinks(soak.part(c_swaps), soak.progress());
  std::printf("   %lu swaps in %lu writes\n", swaps.swaps, swaps.writes);
  soak.end(swaps.faults);
}

void soakLoad(Soak& soak) {
  const int seconds = static_cast<int>(soak.part(c_loadSeconds));
  const CrowdFigures crowd = writeAmongReaders(64, seconds);
  std::printf("   64 readers, %d s: %lu writes, worst wait %.1f ms, mean %.1f ms, %lu reads\n",
              seconds, crowd.writes, crowd.worstWaitMs, crowd.meanWaitMs, crowd.reads);
  soak.expect(crowd.worstWaitMs <= 50, "a writer waits at most 50 ms");
  soak.expect(crowd.writes * 60 >= 1000UL * static_cast<unsigned long>(seconds),
              "at least 1,000 writes in 60 s");
  const WriterFigures writers = writeAtOnce(8, 4, std::max(1, seconds / 3));
  std::printf("   8 writers: %lu writes (least %lu), 4 readers: %lu reads (least %lu)\n",
              writers.writes, writers.leastWrites, writers.reads, writers.leastReads);
  soak.expect(writers.leastReads > 0, "every reader reads");
  const MixedFigures mixed = mixOperations(16, soak.part(c_mixedOperations));
  std::printf("   16 processes: %lu operations, %lu versions written\n", mixed.operations,
              mixed.versions);
  soak.end(mixed.faults);
  const unsigned long kills = soak.part(c_holderKills);
  const HolderFigures holders = killHolders(kills, soak.progress());
  std::printf("   %lu holders killed, worst wait of the next one %.1f ms\n", holders.kills,
              holders.worstWaitMs);
  soak.expect(holders.kills == kills, "every kill lets the next one in");
  soak.expect(holders.worstWaitMs <= 100, "within 100 ms");
}

#ifdef SITELIST_TOOL
void soakUpdates(Soak& soak) {
  for (const UpdatedList which : {UpdatedList::OfAgent, UpdatedList::Named}) {
    for (const UpdateKills kills : {UpdateKills::None, UpdateKills::OneInTen}) {
      const UpdateFigures figures =
          updateAtOnce(SITELIST_TOOL, which, kills, soak.part(c_updates / 4), soak.progress());
      std::printf("   16 processes, %s: %lu changes, %lu kills\n",
                  which == UpdatedList::OfAgent ? "the agent's list" : "a named list",
                  figures.changes, figures.kills);
      soak.end(figures.faults);
    }
  }
}
#endif

struct Part {
  const char* name;
  void (*run)(Soak& soak);
};
constexpr Part c_parts[] = {
    {"faults", soakFaults},   {"kills", soakKills},
    {"forks", soakForks},     {"power-cuts", soakPowerCuts},
    {"hostile", soakHostile}, {"secrets", soakSecrets},
    {"load", soakLoad},
#ifdef SITELIST_TOOL
    {"updates", soakUpdates},
#endif
};

CHILD_PROCESS(soak) {
  Soak all(args.empty() ? 100 : std::stoul(args[0]));
  for (const Part& part : c_parts) {
    if (args.size() > 1 && std::find(args.begin() + 1, args.end(), part.name) == args.end()) {
      continue;
    }
    all.begin(part.name);
    part.run(all);
  }
  std::printf("\n%lu faults in all\n", all.faults());
  return all.faults() == 0 ? 0 : 1;
}

}  // namespace
}  // namespace test
