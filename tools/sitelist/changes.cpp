#include "tools/sitelist/changes.h"

#include <algorithm>
#include <iostream>

#include "tools/sitelist/certificate.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

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

}  // namespace

void printChanges(const SiteList& before, const SiteList& after, const tag_Site* sites) {
  std::cout << "\nVersions\n";
  printChange("global version", before.globalVersion, after.globalVersion);
  printChange("local version", before.localVersion, after.localVersion);
  printChange("type", before.type, after.type);
  printSites(before.sites.get(), sites);
  printCertificates(before.certificates, after.certificates);
  printPolicies(before, after);
}

}  // namespace tool
