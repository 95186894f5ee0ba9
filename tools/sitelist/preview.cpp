#include <algorithm>
#include <filesystem>
#include <iostream>

#include "platform/common/afile.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/certificate.h"
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

void printChange(const char* what, const std::wstring& before, const std::wstring& after) {
  std::string label = std::string("  ") + what;
  label.resize(18, ' ');
  std::cout << label;
  if (before == after) {
    std::cout << shown(after) << " (unchanged)\n";
  } else {
    std::cout << (before.empty() ? "(none)" : shown(before)) << " -> "
              << (after.empty() ? "(none)" : shown(after)) << '\n';
  }
}

std::string differingFields(const tag_Site& before, const tag_Site& after) {
  const std::vector<Field> old = fieldsOf(before);
  const std::vector<Field> fresh = fieldsOf(after);
  std::string names;
  for (std::size_t i = 0; i < old.size(); ++i) {
    if (!isSame(old[i], fresh[i])) names += (names.empty() ? "" : ", ") + std::string(old[i].name);
  }
  return names;
}

std::string title(const tag_Site& site) {
  return std::string(kindOf(site)) + " " + shown(std::wstring(nameOf(site)));
}

// Sites are the same one when kind and name agree; of several alike the first ones pair up.
void printSites(const tag_Site* before, const tag_Site* after) {
  std::vector<const tag_Site*> left;
  for (; before; before = before->pNext) left.push_back(before);
  std::size_t unchanged = 0;
  std::cout << "\nSites\n";
  for (; after; after = after->pNext) {
    const auto match = std::find_if(left.begin(), left.end(), [&](const tag_Site* site) {
      return std::string(kindOf(*site)) == kindOf(*after) &&
             std::wstring(nameOf(*site)) == nameOf(*after);
    });
    if (match == left.end()) {
      std::cout << "  added    " << title(*after) << '\n';
      continue;
    }
    const std::string fields = differingFields(**match, *after);
    if (fields.empty()) {
      ++unchanged;
    } else {
      std::cout << "  changed  " << title(*after) << ": " << fields << '\n';
    }
    left.erase(match);
  }
  for (const tag_Site* site : left) std::cout << "  removed  " << title(*site) << '\n';
  std::cout << "  " << unchanged << " unchanged\n";
}

std::string certificateTitle(const std::wstring& text) {
  const auto certificate = readCertificate(text);
  return certificate ? certificate->subject : "a text that is not readable as a certificate";
}

void printCertificates(std::vector<std::wstring> before, const std::vector<std::wstring>& after) {
  std::size_t unchanged = 0;
  std::cout << "\nCertificates\n";
  for (const std::wstring& text : after) {
    const auto match = std::find(before.begin(), before.end(), text);
    if (match == before.end()) {
      std::cout << "  added    " << certificateTitle(text) << '\n';
    } else {
      ++unchanged;
      before.erase(match);
    }
  }
  for (const std::wstring& text : before) {
    std::cout << "  removed  " << certificateTitle(text) << '\n';
  }
  std::cout << "  " << unchanged << " unchanged\n";
}

void printPolicies(const SiteList& before, const SiteList& after) {
  std::size_t unchanged = 0;
  std::cout << "\nPolicy settings\n";
  for (const auto& [name, value] : after.policies) {
    const auto old = before.policies.find(name);
    if (old == before.policies.end()) {
      std::cout << "  added    " << shown(name) << " = " << shown(value) << '\n';
    } else if (old->second == value) {
      ++unchanged;
    } else {
      std::cout << "  changed  " << shown(name) << " = " << shown(value) << '\n';
    }
  }
  for (const auto& [name, value] : before.policies) {
    if (after.policies.count(name) == 0) std::cout << "  removed  " << shown(name) << '\n';
  }
  std::cout << "  " << unchanged << " unchanged\n";
}

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

int previewIncoming(const Context& context, const IncomingOptions& options) {
  const Target target{ownListPath(context), fs::path(ownListPath(context)).parent_path().string()};
  const PrivateAgent agent(context);
  CSitesHelper helper(wide(target.ownList));
  tag_Site* list = nullptr;
  const int read = helper.MustReadSiteList(wide(options.file), &list);
  const Sites sites(list);
  if (read != 0) failIncoming(options, target.ownList, read);
  if (options.isChecked) {
    const int checked = helper.SourceSiteListCheck(sites.get(), helper.IsOrbManaged() != 0);
    if (checked != 0) failIncoming(options, target.ownList, checked);
  }
  helper.AdjustSitesOrder(sites.get());
  const SiteList before = readSiteList(target.ownList);
  const SiteList after = readSiteList(options.file);

  std::cout << "What would change in " << shown(target.ownList) << "\n\nVersions\n";
  printChange("global version", before.globalVersion, after.globalVersion);
  printChange("local version", before.localVersion, after.localVersion);
  printChange("type", before.type, after.type);
  printSites(before.sites.get(), sites.get());
  printCertificates(before.certificates, after.certificates);
  printPolicies(before, after);
  printKeyFiles(helper, options, sites.get(), target);
  printMarker(options, target);
  std::cout << "\nNothing was written.\n";
  return exitSuccess;
}

}  // namespace tool
