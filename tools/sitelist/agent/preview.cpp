#include <algorithm>
#include <filesystem>

#include "platform/common/afile.h"
#include "sitehlp/install/key_file_names.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/draft.h"
#include "tools/sitelist/agent/incoming.h"
#include "tools/sitelist/agent/incoming_check.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/model/site_list.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

// The paths that an import writes: the agent's own list and the directory of the key files.
struct Target {
  std::string ownList;
  std::string directory;
};

bool holds(const std::string& path, const ABuffer& bytes) {
  ABuffer found;
  return AFile::readExisting(wide(path), found) && found.size() == bytes.size() &&
         std::equal(found.data(), found.data() + found.size(), bytes.data());
}

FileChange changeOf(const std::string& directory, const std::string& name, const ABuffer& bytes) {
  const std::string path = directory + "/" + name;
  std::error_code error;
  return {name, holds(path, bytes) ? "unchanged" : fs::exists(path, error) ? "changed" : "added"};
}

struct KeyFile {
  std::string name;
  ABuffer bytes;
  bool isTaken = false;
};

// Repeats the steps of the library up to the first write.
std::vector<FileChange> keyFileChanges(CSitesHelper& helper, const IncomingOptions& options,
                                       tag_Site* sites, const Target& target) {
  KeyFile publicKey{narrow(sitehlp::c_srPubKey), {}};
  KeyFile requestKey{narrow(sitehlp::c_reqSecKey), {}};
  KeyFile publicKey2048{narrow(sitehlp::c_sr2048PubKey), {}};
  KeyFile requestKey2048{narrow(sitehlp::c_req2048SecKey), {}};
  if (!helper.readKeyFiles(wide(options.file), sites, wide(options.keyDirectory), publicKey.bytes,
                           requestKey.bytes, publicKey2048.bytes, requestKey2048.bytes,
                           publicKey.isTaken, requestKey.isTaken, publicKey2048.isTaken,
                           requestKey2048.isTaken) ||
      !helper.writable(wide(target.ownList))) {
    failIncoming(options, target.ownList, sitehlp::c_errorGeneral);
  }
  std::vector<FileChange> changes;
  for (const KeyFile* key : {&publicKey, &requestKey, &publicKey2048, &requestKey2048}) {
    if (!key->isTaken) continue;
    if (!helper.writable(wide(target.directory + "/" + key->name))) {
      failIncoming(options, target.ownList, sitehlp::c_errorGeneral);
    }
    changes.push_back(changeOf(target.directory, key->name, key->bytes));
  }
  const std::string stale = target.directory + "/" + requestKey.name;
  std::error_code error;
  if ((publicKey.isTaken || publicKey2048.isTaken) && !requestKey.isTaken &&
      !requestKey2048.isTaken && fs::exists(stale, error)) {
    changes.push_back({requestKey.name, "removed"});
  }
  return changes;
}

}  // namespace

std::vector<FileChange> fileChanges(CSitesHelper& helper, const IncomingOptions& options,
                                    tag_Site* sites, const std::string& ownList) {
  const Target target{ownList, fs::path(ownList).parent_path().string()};
  std::vector<FileChange> changes = keyFileChanges(helper, options, sites, target);
  std::wstring source;
  splitPath(wide(options.file), &source, nullptr);
  ABuffer bytes;
  if (AFile::readExisting(source + sitehlp::c_fipsMarker, bytes)) {
    const fs::path directory = target.directory;
    changes.push_back(changeOf(directory.parent_path().string(),
                               directory.filename().string() + narrow(sitehlp::c_fipsMarker),
                               bytes));
  }
  return changes;
}

int previewIncoming(Context& context, const IncomingOptions& options) {
  const std::string ownList = ownListPath(context);
  serveForPreview(context);
  requireIncomingList(options);
  refuseOlder(options, ownList);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  passwords.requireEncryptable(options.file);
  CSitesHelper helper(wide(ownList));
  tag_Site* list = nullptr;
  const int read = helper.MustReadSiteList(wide(options.file), &list);
  Sites sites(list);
  if (read != 0) failIncoming(options, ownList, read);
  if (options.isChecked) {
    const int checked = helper.SourceSiteListCheck(sites.get(), helper.IsOrbManaged() != 0);
    if (checked != 0) failIncoming(options, ownList, checked);
  }
  helper.AdjustSitesOrder(sites.get());
  const SiteList before = readSiteList(ownList);
  SiteList incoming = readSiteList(options.file);
  incoming.sites = std::move(sites);
  const std::vector<FileChange> files = fileChanges(helper, options, incoming.sites.get(), ownList);
  Diff diff(before, asWritten(incoming), false);
  diff.add(files);
  passwords.warn(true);
  context.report = diff.report("What would change in " + shown(ownList), "Nothing was written.");
  return exitSuccess;
}

}  // namespace tool
