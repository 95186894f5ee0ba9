#ifndef BENCH_SAMPLE_LISTS_H
#define BENCH_SAMPLE_LISTS_H

#include <cstddef>
#include <string>

#include "sitehlp/site.h"

// Site lists to measure with. Their documents are written by the library itself, under the agent
// that is served.
namespace bench {

enum class Passwords { Protected, None };

// `count` sites of all kinds in turn: management server, HTTP, FTP, UNC, agent repository, local
// and, once in a list, the proxy. `variant` tells lists apart: no server of one is in another.
// Release it with CSitesHelper::FreeSiteListMemory.
sitehlp::tag_Site* makeSites(std::size_t count, int variant = 0,
                             Passwords passwords = Passwords::Protected);

// The same with management servers only.
sitehlp::tag_Site* makeServers(std::size_t count, int variant);

// The file in "etc" that holds such a list, with two certificates; written when first asked for.
std::string sitesFile(std::size_t count, int variant = 0,
                      Passwords passwords = Passwords::Protected);
std::string serversFile(std::size_t count, int variant);

}  // namespace bench

#endif
