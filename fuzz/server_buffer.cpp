#include "fuzz/stage.h"
#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// Stores bytes from a server. The first byte determines whether passwords are adjusted.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  fuzz::Input input(data, size);
  const bool adjust = (input.byte() & 1) != 0;
  const std::string bytes = input.rest();
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(bytes.size()),
      reinterpret_cast<const unsigned char*>(bytes.data()));
  CSitesHelper helper(true);
  fuzz::require(helper.CreateServerSiteList(buffer, adjust) == 1, "storing the bytes succeeds");
  const std::string path = std::string(fuzz::c_directory) + "/ServerSiteList.xml";
  const std::string* const written = files.find(path);
  if (!adjust) {
    fuzz::require(written && *written == bytes, "the bytes are stored as they are");
  } else if (written) {
    AnXml document;
    fuzz::require(
        document.useExistingFile(AString(path.c_str()), L"ns:SiteLists", nullptr, nullptr),
        "an adjusted list is a document");
  }
  return 0;
}
