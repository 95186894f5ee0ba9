#include "tools/sitelist/fleet/list_summary.h"

#include <openssl/evp.h>

#include <algorithm>
#include <new>
#include <string_view>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/certificate.h"
#include "tools/sitelist/model/site_report.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {
namespace {

// Appends a text with its length, so that different sequences of texts give different results.
void append(std::string& all, const std::string& text) {
  all.append(std::to_string(text.size())).append(":").append(text);
}

std::string digestOf(const std::string& text) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  if (EVP_Digest(text.data(), text.size(), digest, &size, EVP_sha256(), nullptr) != 1) {
    throw std::bad_alloc();
  }
  return std::string(reinterpret_cast<const char*>(digest), size);
}

std::string contentDigest(const SiteList& list) {
  std::string all;
  append(all, narrow(list.type));
  append(all, narrow(list.fipsMode.value_or(L"")));
  for (const sitehlp::tag_Site* site = list.sites.get(); site; site = site->pNext) {
    append(all, "site");
    for (const auto& [name, value] : recordOf(*site, false)) append(all, textOf(value));
  }
  for (const std::wstring& certificate : list.certificates) append(all, narrow(certificate));
  for (const auto& [name, value] : list.policySettings) {
    append(all, narrow(name));
    append(all, narrow(value));
  }
  return digestOf(all);
}

void addContent(const SiteList& list, ListSummary& summary) {
  summary.globalVersion = narrow(list.globalVersion);
  summary.localVersion = narrow(list.localVersion);
  for (const sitehlp::tag_Site* site = list.sites.get(); site; site = site->pNext) {
    if (std::string_view(kindOf(*site)) == "server") {
      summary.servers.insert(narrow(addressOf(*site)));
    }
  }
  for (const std::wstring& text : list.certificates) {
    constexpr std::size_t monthLength = 7;  // "2051-11"
    const auto certificate = readCertificate(text);
    if (certificate) {
      summary.certificates.emplace(certificate->notAfter.substr(0, monthLength),
                                   certificate->fingerprint);
    } else {
      summary.certificates.emplace("unreadable", digestOf(narrow(text)));
    }
  }
  summary.digest = contentDigest(list);
}

}  // namespace

std::vector<Fault> faultsOf(const GivenList& given, bool checkServer) {
  if (given.error != 0) return {faultOfReading(readErrorOf(given.error))};
  return validateList({given.path, given.path, !given.isStream}, checkServer);
}

ListSummary summarise(const GivenList& given, bool checkServer) {
  ListSummary summary;
  try {
    for (const Fault& fault : faultsOf(given, checkServer)) {
      ++summary.faults[fault.rule];
      const bool isUnread = fault.rule->status > exitNegative;
      if (isUnread) summary.status = std::max<int>(summary.status, fault.rule->status);
    }
    if (summary.isRead()) addContent(readWholeSiteList(given.path), summary);
  } catch (const Failure& failure) {
    summary.status = failure.status();
  }
  return summary;
}

}  // namespace tool
