#include <memory>

#include "bench/floors.h"
#include "bench/fresh_documents.h"
#include "bench/memory.h"
#include "bench/peers/peer.h"
#include "bench/reads.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"

// ReadSiteList against the same job done with other libraries: a file under a lock becomes records.
// The lists have no passwords, because a peer has no key to decrypt them.
namespace bench {
namespace {

struct Size {
  std::size_t sites;
  int samples;
  int runs;          // in one sample
  double firstRead;  // the bound against libxml2
};

constexpr Size c_sizes[] = {
    {12, 400, 8, 0.95}, {100, 200, 1, 0.80}, {1000, 60, 1, 0.70}, {10000, 11, 1, 0.70}};
constexpr double c_seenBefore = 0.50;           // the bound against libxml2
constexpr double c_seenBeforeUnchecked = 1.05;  // against pugixml

// Returns the cost of one run of a job on a list.
using CostOfJob = Cost (*)(const std::string& list, int runs, const UseDocument& job);

Cost firstRead(const std::string& list, int runs, const UseDocument& job) {
  return firstUse(std::make_shared<FreshDocuments>(list, static_cast<std::size_t>(runs)), job);
}

Cost bytesSeenBefore(const std::string& list, int runs, const UseDocument& job) {
  return timed([path = DocumentPath{list, widePath(list)}, job] { job(path); }, runs);
}

void addPeerRow(const Size& size, const char* state, CostOfJob costOf, const Peer& peer,
                const char* remark, double bound) {
  const std::string name = "ReadSiteList, " + std::to_string(size.sites) + " sites, " + state;
  addRow({name, std::string(peer.name) + ", whole job" + remark, bound, size.samples,
          [size, costOf, &peer] {
            keepFreedMemory();
            const std::string list = sitesFileWithoutPasswords(size.sites);
            checkRecords(peer, list);
            const auto job = [&peer](const DocumentPath& path) {
              freeRecords(readRecords(peer, path.narrow));
            };
            return Measurement{costOf(list, size.runs, readList), costOf(list, size.runs, job)};
          }});
}

}  // namespace

void addPeerRows() {
  constexpr const char* c_illFormed = ", accepts ill-formed documents";
  constexpr const char* c_unchecked = ", unchecked";
  for (const Size& size : c_sizes) {
    constexpr const char* c_first = "first read";
    addPeerRow(size, c_first, firstRead, c_libxml2, "", size.firstRead);
    addPeerRow(size, c_first, firstRead, c_tinyxml2, c_illFormed, 0);
    addPeerRow(size, c_first, firstRead, c_pugixml, c_unchecked, 0);
    constexpr const char* c_seen = "bytes seen before";
    addPeerRow(size, c_seen, bytesSeenBefore, c_libxml2, "", c_seenBefore);
    addPeerRow(size, c_seen, bytesSeenBefore, c_tinyxml2, c_illFormed, 0);
    addPeerRow(size, c_seen, bytesSeenBefore, c_pugixml, c_unchecked, c_seenBeforeUnchecked);
  }
}

}  // namespace bench
