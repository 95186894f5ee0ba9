#include "fuzz/stage.h"
#include "host/crypto/key_file.h"
#include "host/crypto/sealed_value.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

// Imports with key files of any content beside the incoming list, and with any password key. The
// first byte determines which files exist.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  fuzz::Input input(data, size);
  const std::uint8_t there = input.byte();
  const std::uint8_t mode = input.byte();
  const char* const names[] = {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin",
                               "req2048seckey.bin"};
  for (unsigned int i = 0; i < 4; ++i) {
    const std::string bytes = input.part();
    if ((there >> i & 1) != 0) files.put(std::string("/dev/") + names[i], bytes, 0600);
  }
  if ((there & 16) != 0) files.put("/dev\\agentfipsmode", input.part(), 0600);
  const std::string key = input.rest();

  tag_Site server{};
  server.eSiteKind = SITE_KIND_HTTP;
  CSitesHelper::CopyWStr(server.http.szElement, L"VestaSite", c_textCapacity);
  if ((there & 32) != 0) CSitesHelper::CopyWStr(server.http.szVersion, L"5", c_textCapacity);
  CSitesHelper helper(L"/agent/etc/SiteList.xml");
  const bool done = helper.createDirectoriesAndCopyKeyFiles(fuzz::c_widePath, &server,
                                                            (there & 64) != 0 ? L"/dev" : L"");
  for (const char* name : names) {
    const std::string* const copy = files.find(std::string("/agent/etc/") + name);
    const std::string* const original = files.find(std::string("/dev/") + name);
    fuzz::require(!copy || (done && original && *copy == *original && !copy->empty()),
                  "a key file that is written is a copy");
  }

  const std::string path = host::keyFilePath(fuzz::c_directory, host::c_passwordKeyName);
  files.put(path, key, mode & 0777U);
  host::SecretBytes read;
  host::KeyFileState state;
  const bool isKey = host::readKeyFile(path, read, state);
  fuzz::require(isKey == (key.size() == host::c_keySize),
                "a key is read if and only if it has the right size");
  struct stat info;
  files.stat(-1, path, false, info);
  fuzz::require((info.st_mode & 077) == 0, "only the owner may use a key file");
  return 0;
}
