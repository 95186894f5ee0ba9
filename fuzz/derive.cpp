#include "fuzz/stage.h"
#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// Derives the server list from an own list of any bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  files.put("/agent/etc/SiteList.xml", std::string(reinterpret_cast<const char*>(data), size));
  const bool done = CSitesHelper::createServerSiteListFromSiteList(L"/agent/etc", nullptr);
  const std::string* const first = files.find("/agent/etc/ServerSiteList.xml");
  fuzz::require(done == (first != nullptr), "a list is written exactly on success");
  if (!done) return 0;
  // Deriving again must remove nothing, and writing the result again must change nothing.
  const std::string once = *first;
  files.put("/agent/etc/SiteList.xml", once);
  fuzz::require(CSitesHelper::createServerSiteListFromSiteList(L"/agent/etc", nullptr),
                "a derived list can be derived from");
  fuzz::require(*files.find("/agent/etc/ServerSiteList.xml") == once,
                "deriving again changes nothing");
  return 0;
}
