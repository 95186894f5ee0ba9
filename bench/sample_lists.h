#ifndef BENCH_SAMPLE_LISTS_H
#define BENCH_SAMPLE_LISTS_H

#include <cstddef>
#include <string>

#include "sitehlp/site.h"

// Site lists for the measurements. The library itself writes their documents, with the current
// agent.
namespace bench {

enum class Passwords { Protected, None };

// Returns `count` sites of all kinds in turn: management server, HTTP, FTP, UNC, agent repository
// and local. One entry is the proxy. Lists with different values of `variant` have no server in
// common. Release the result with CSitesHelper::FreeSiteListMemory.
sitehlp::tag_Site* makeSites(std::size_t count, int variant = 0,
                             Passwords passwords = Passwords::Protected);

// Does the same with only management servers.
sitehlp::tag_Site* makeServers(std::size_t count, int variant);

// Returns the path of a file in "etc" with such a list and two certificates. The first call writes
// it.
std::string sitesFile(std::size_t count, int variant = 0,
                      Passwords passwords = Passwords::Protected);
std::string serversFile(std::size_t count, int variant);

// Does the same as sitesFile, with empty password elements. Passwords::None encrypts empty texts.
std::string sitesFileWithoutPasswords(std::size_t count);

}  // namespace bench

#endif
