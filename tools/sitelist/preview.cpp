#include <algorithm>
#include <filesystem>
#include <iostream>

#include "platform/common/afile.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/changes.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/incoming.h"
#include "tools/sitelist/site_list.h"
#include "tools/sitelist/text.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

// Where the files go, and what they would be compared with.
struct Target {
  std::string ownList;
  std::string directory;
};

bool holds(const std::string& path, const ABuffer& bytes) {
  ABuffer found;
  return AFile::readExisting(wide(path), found) && found.size() == bytes.size() &&
         std::equal(found.data(), found.data() + found.size(), bytes.data());
}

void printFile(const Target& target, const std::string& name, const ABuffer& bytes) {
  const std::string path = target.directory + "/" + name;
  std::error_code error;
  const char* const note = holds(path, bytes)        ? " (as it is)"
                           : fs::exists(path, error) ? " (replaces another)"
                                                     : " (new)";
  std::cout << "  written  " << name << note << '\n';
}

struct KeyFile {
  const char* name;
  ABuffer bytes;
  bool isTaken = false;
};

// The library's own steps, up to the first write.
void printKeyFiles(CSitesHelper& helper, const IncomingOptions& options, tag_Site* sites,
                   const Target& target) {
  KeyFile publicKey{"srpubkey.bin", {}};
  KeyFile requestKey{"reqseckey.bin", {}};
  KeyFile publicKey2048{"sr2048pubkey.bin", {}};
  KeyFile requestKey2048{"req2048seckey.bin", {}};
  if (!helper.readKeyFiles(wide(options.file), sites, wide(options.keyDirectory), publicKey.bytes,
                           requestKey.bytes, publicKey2048.bytes, requestKey2048.bytes,
                           publicKey.isTaken, requestKey.isTaken, publicKey2048.isTaken,
                           requestKey2048.isTaken) ||
      !helper.writable(wide(target.ownList))) {
    failIncoming(options, target.ownList, sitehlp::c_errorGeneral);
  }
  std::cout << "\nKey files\n";
  std::size_t count = 0;
  for (const KeyFile* key : {&publicKey, &requestKey, &publicKey2048, &requestKey2048}) {
    if (!key->isTaken) continue;
    if (!helper.writable(wide(target.directory + "/" + key->name))) {
      failIncoming(options, target.ownList, sitehlp::c_errorGeneral);
    }
    printFile(target, key->name, key->bytes);
    ++count;
  }
  const std::string stale = target.directory + "/" + requestKey.name;
  std::error_code error;
  if ((publicKey.isTaken || publicKey2048.isTaken) && !requestKey.isTaken &&
      !requestKey2048.isTaken && fs::exists(stale, error)) {
    std::cout << "  deleted  " << requestKey.name << '\n';
  }
  if (count == 0) std::cout << "  none\n";
}

void printMarker(const IncomingOptions& options, const Target& target) {
  constexpr const wchar_t* marker = L"\\agentfipsmode";
  std::wstring source;
  splitPath(wide(options.file), &source, nullptr);
  ABuffer bytes;
  std::cout << "\nFIPS marker\n";
  if (AFile::readExisting(source + marker, bytes)) {
    const Target beside{target.ownList, fs::path(target.directory).parent_path().string()};
    printFile(beside, fs::path(target.directory).filename().string() + narrow(marker), bytes);
  } else {
    std::cout << "  none comes with the list\n";
  }
}

}  // namespace

void previewFiles(CSitesHelper& helper, const IncomingOptions& options, tag_Site* sites,
                  const std::string& ownList) {
  const Target target{ownList, fs::path(ownList).parent_path().string()};
  printKeyFiles(helper, options, sites, target);
  printMarker(options, target);
  std::cout << "\nNothing was written.\n";
}

int previewIncoming(Context& context, const IncomingOptions& options) {
  const std::string ownList = ownListPath(context);
  const PrivateAgent agent(context);
  CSitesHelper helper(wide(ownList));
  tag_Site* list = nullptr;
  const int read = helper.MustReadSiteList(wide(options.file), &list);
  const Sites sites(list);
  if (read != 0) failIncoming(options, ownList, read);
  if (options.isChecked) {
    const int checked = helper.SourceSiteListCheck(sites.get(), helper.IsOrbManaged() != 0);
    if (checked != 0) failIncoming(options, ownList, checked);
  }
  helper.AdjustSitesOrder(sites.get());
  const SiteList before = readSiteList(ownList);
  const SiteList after = readSiteList(options.file);

  std::cout << "What would change in " << shown(ownList) << '\n';
  printChanges(before, after, sites.get());
  previewFiles(helper, options, sites.get(), ownList);
  return exitSuccess;
}

}  // namespace tool
