#include "fuzz/stage.h"
#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// The agent's own list of any bytes, from which that for servers is derived.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  files.put("/agent/etc/SiteList.xml", std::string(reinterpret_cast<const char*>(data), size));
  const bool done = CSitesHelper::createServerSiteListFromSiteList(L"/agent/etc", nullptr);
  const std::string* const first = files.find("/agent/etc/ServerSiteList.xml");
  fuzz::require(done == (first != nullptr), "a list is written exactly on success");
  if (!done) return 0;
  // Nothing is left to be taken out, and writing what was written changes nothing.
  const std::string once = *first;
  files.put("/agent/etc/SiteList.xml", once);
  fuzz::require(CSitesHelper::createServerSiteListFromSiteList(L"/agent/etc", nullptr),
                "a derived list can be derived from");
  fuzz::require(*files.find("/agent/etc/ServerSiteList.xml") == once,
                "deriving twice is deriving once");
  return 0;
}
