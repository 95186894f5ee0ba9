#include "fuzz/stage.h"
#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// Edits one document of any bytes from another. The first byte determines what is replaced:
// repositories, management servers, both or nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  fuzz::Input input(data, size);
  const std::uint8_t flags = input.byte();
  const std::string own = input.part();
  const std::string path = std::string(fuzz::c_directory) + "/etc/SiteList.xml";
  files.put(path, own);
  files.put(fuzz::c_list, input.rest());
  for (const char* key :
       {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
    files.put(std::string("/dev/") + key, "key");
  }
  CSitesHelper helper(L"/agent/etc/SiteList.xml");
  const bool done =
      helper.modifySiteList(fuzz::c_widePath, (flags & 1) != 0, (flags & 2) != 0, AString());
  if (done) {
    AnXml document;
    fuzz::require(document.useExistingFile(AString(path.c_str()), L"ns:SiteLists", L"xmlns:ns",
                                           L"wxSiteList"),
                  "a modified list is a site list document");
  } else {
    fuzz::require(*files.find(path) == own, "a list that is not modified stays as it was");
  }
  return 0;
}
