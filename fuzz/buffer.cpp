#include <fcntl.h>

#include "fuzz/stage.h"
#include "host/common/encoding.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// Reads a text of any characters as a list. The first byte determines how the other bytes become
// characters.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  files.makeDirectory(AT_FDCWD, "/Library/Korvel/orb/scratch/etc", 0700);
  fuzz::Input input(data, size);
  const bool wide = (input.byte() & 1) != 0;
  const std::string bytes = input.rest();
  std::wstring text;
  if (wide) {
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
      std::uint32_t c = 0;
      for (std::size_t k = 0; k < 4; ++k) c = c << 8 | static_cast<unsigned char>(bytes[i + k]);
      text += static_cast<wchar_t>(c);
    }
  } else {
    text = host::toWide(bytes.data(), bytes.size());
  }
  CSitesHelper helper(true);
  const int code = helper.CreateSiteListFromBuffer(text);
  const std::string* const written = files.find("/Library/Korvel/orb/scratch/etc/SiteList.xml");
  fuzz::require((code == 0) == (written != nullptr), "a list is written exactly on success");
  if (!written) return 0;
  files.put(fuzz::c_list, std::string(*written));
  tag_Site* list = nullptr;
  fuzz::require(helper.ReadSiteList(fuzz::c_widePath, &list, true) == 0,
                "what was written can be read");
  CSitesHelper::FreeSiteListMemory(list);
  return 0;
}
