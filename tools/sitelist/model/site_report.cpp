#include "tools/sitelist/model/site_report.h"

#include <algorithm>
#include <memory>

#include "sitehlp/fields.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

std::wstring withPort(const wchar_t* host, unsigned port, unsigned securePort) {
  if (!*host) return L"";
  std::wstring text = std::wstring(host) + L":" + std::to_wstring(port);
  if (securePort != 0) text += L" (" + std::to_wstring(securePort) + L")";
  return text;
}

std::wstring pathOnShare(const sitehlp::tag_UncSite& site) {
  const std::wstring share = site.szShareName;
  const std::wstring path = site.szRelativePath;
  return share.empty() || path.empty() ? share + path : share + L"\\" + path;
}

std::vector<std::string> namesOfAllKinds() {
  std::vector<std::string> names = {"kind"};
  const auto site = std::make_unique<tag_Site>();
  for (const sitehlp::SiteKind kind : sitehlp::c_siteKinds) {
    site->eSiteKind = kind;
    for (const Field& field : fieldsOf(*site)) {
      if (std::find(names.begin(), names.end(), field.name) == names.end()) {
        names.emplace_back(field.name);
      }
    }
  }
  return names;
}

}  // namespace

Scalar scalarOf(const Field& field, bool showSecrets) {
  if (const bool* const flag = std::get_if<bool>(&field.value)) return *flag;
  if (const auto* const number = std::get_if<std::int64_t>(&field.value)) return *number;
  const wchar_t* const text = std::get<const wchar_t*>(field.value);
  if (field.hasHosts) {
    Texts hosts = {{}, narrow(text)};
    for (const std::wstring& host : hostsIn(text)) hosts.each.push_back(narrow(host));
    return hosts;
  }
  return field.isSecret && *text && !showSecrets ? c_mask : narrow(text);
}

Record recordOf(const tag_Site& site, bool showSecrets) {
  const std::vector<Field> fields = fieldsOf(site);
  Record record;
  record.reserve(fields.size() + 1);
  record.emplace_back("kind", kindOf(site));
  for (const Field& field : fields) record.emplace_back(field.name, scalarOf(field, showSecrets));
  return record;
}

const std::vector<std::string>& siteFieldNames() {
  static const std::vector<std::string> names = namesOfAllKinds();
  return names;
}

Record listFacts(const SiteList& list) {
  return {{"file", reportedName(list.path)},
          {"globalVersion", narrow(list.globalVersion)},
          {"localVersion", narrow(list.localVersion)},
          {"type", narrow(list.type)},
          {"fipsMode", list.fipsMode ? Scalar(narrow(*list.fipsMode)) : Scalar()}};
}

// A mirror without an order has an empty cell.
std::wstring orderOf(const tag_Site& site) {
  if (site.bMirror && site.iOrder == 0) return L"";
  return site.iOrder == c_orderOfFallback ? L"last" : std::to_wstring(site.iOrder);
}

std::wstring addressOf(const tag_Site& site) {
  switch (static_cast<sitehlp::SiteKind>(site.eSiteKind)) {
    case sitehlp::SITE_KIND_HTTP:
      return withPort(site.http.szServer, site.http.uServerPort, site.http.uSecurePort);
    case sitehlp::SITE_KIND_FTP:
      return withPort(site.ftp.szServer, site.ftp.uServerPort, site.ftp.uSecurePort);
    case sitehlp::SITE_KIND_UNC:
      return site.unc.szServer;
    case sitehlp::SITE_KIND_LOCAL:
    case sitehlp::SITE_KIND_PROXY:
      break;
  }
  return L"";
}

std::wstring pathOf(const tag_Site& site) {
  switch (static_cast<sitehlp::SiteKind>(site.eSiteKind)) {
    case sitehlp::SITE_KIND_HTTP:
      return site.http.szRelativePath;
    case sitehlp::SITE_KIND_FTP:
      return site.ftp.szRelativePath;
    case sitehlp::SITE_KIND_UNC:
      return pathOnShare(site.unc);
    case sitehlp::SITE_KIND_LOCAL:
      return site.local.szRelativePath;
    case sitehlp::SITE_KIND_PROXY:
      break;
  }
  return L"";
}

bool hasSecurePort(const tag_Site& site) {
  return (site.eSiteKind == sitehlp::SITE_KIND_HTTP && site.http.uSecurePort != 0) ||
         (site.eSiteKind == sitehlp::SITE_KIND_FTP && site.ftp.uSecurePort != 0);
}

}  // namespace tool
