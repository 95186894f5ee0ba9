#ifndef BENCH_PEERS_PEER_H
#define BENCH_PEERS_PEER_H

#include <string>

#include "sitehlp/site.h"

// Programs that do the whole job of ReadSiteList with another library. Each is written as a good
// user of that library would write it, and makes the same records of the measured lists.
//
// A peer does less than ReadSiteList. It has no limits, writes no log and does not decrypt. Values
// that the measured lists do not have are not decoded. The passwords of those lists are empty.
namespace bench {

struct Peer {
  const char* name;
  // Parses a document and makes its records. May change the bytes.
  sitehlp::tag_Site* (*parse)(std::string& bytes);
};

extern const Peer c_libxml2;
extern const Peer c_tinyxml2;
extern const Peer c_pugixml;

// Reads a file under the lock that ReadSiteList takes, and makes its records. Release them with
// freeRecords.
sitehlp::tag_Site* readRecords(const Peer& peer, const std::string& path);

// Ends this program if the records are not those that ReadSiteList makes of the same file.
void checkRecords(const Peer& peer, const std::string& path);

}  // namespace bench

#endif
