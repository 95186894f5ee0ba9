#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/log_texts.h"
#include "sitehlp/query/certificates.h"
#include "sitehlp/query/versions.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/vendor_hosts.h"

namespace sitehlp {
namespace {

constexpr std::uint32_t c_vendorHttpPort = 80;
constexpr std::uint32_t c_vendorFtpPort = 21;

bool canBeVendorSite(const tag_Site& site) {
  return site.bEnabled == 1 && site.bLocal == 0 && !isFallback(site);
}

bool isVendorHttp(const tag_Site& site) {
  return site.eSiteKind == SITE_KIND_HTTP && canBeVendorSite(site) &&
         wcsicmp(site.http.szServer, c_vendorHttpHost) == 0 &&
         site.http.uServerPort == c_vendorHttpPort;
}

bool isVendorFtp(const tag_Site& site) {
  return site.eSiteKind == SITE_KIND_FTP && canBeVendorSite(site) &&
         wcsicmp(site.ftp.szServer, c_vendorFtpHost) == 0 &&
         site.ftp.uServerPort == c_vendorFtpPort;
}

// The common part of import and install into the instance's own file, `target`.
int importFrom(CSitesHelper& helper, const std::wstring& target, ListSource& source,
               const std::wstring& srcPath, tag_Site* sites, const std::wstring& keyDir) {
  helper.AdjustSitesOrder(sites);
  std::wstring globalVersion;
  std::wstring localVersion;
  std::wstring type;
  const int versionResult = queryVersions(source, globalVersion, localVersion, type);
  if (versionResult < 0) {
    logError(c_component,
             AString(L"Get version failed hr=").append(static_cast<long>(versionResult)));
    return versionResult;
  }
  logDetail(c_component,
            AString(L"Import sitelist from ").append(srcPath).append(L" to ").append(target));
  logDetail(
      c_component,
      AString(L"Original local version of ").append(srcPath).append(L" is ").append(localVersion));
  std::vector<std::wstring> certificates;
  queryCertificates(source, certificates);
  // The key files are written first, because the list must not name a server without its keys.
  if (!helper.createDirectoriesAndCopyKeyFiles(srcPath, sites, keyDir)) return c_errorGeneral;
  const int writeResult =
      helper.CreateSiteList(sites, target, globalVersion, localVersion, type, certificates);
  if (writeResult < 0) {
    logError(c_component, AString(log_texts::c_listNotCreated).append(writeResult));
    return c_errorGeneral;
  }
  return c_success;
}

}  // namespace

int CSitesHelper::InstallSiteList(const std::wstring& srcPath, const std::wstring& keyDir) {
  const std::wstring description = L"InstallSiteList," + srcPath + L"," + keyDir;
  const ADetailTrace trace(c_component, description.c_str());
  ListSource source(srcPath);
  ListOwner list;
  const int readResult =
      mustReadList(source, m_strCurrentFile, m_bUseDecryptData == 1, m_policySettings, list.out());
  if (readResult < 0) return readResult;
  return importFrom(*this, m_strSiteListFile, source, srcPath, list.get(), keyDir);
}

int CSitesHelper::ImportSiteList(const std::wstring& srcPath, const std::wstring& keyDir) {
  const std::wstring description = L"ImportSiteList," + srcPath;
  const ADetailTrace trace(c_component, description.c_str());
  ListSource source(srcPath);
  ListOwner list;
  const int readResult =
      mustReadList(source, m_strCurrentFile, m_bUseDecryptData == 1, m_policySettings, list.out());
  if (readResult < 0) return readResult;
  std::wstring overwrite;
  if (GetPolicySetting(L"OverwriteClientSites", overwrite) && overwrite != L"0") {
    logInfo(c_component, AString(log_texts::c_importedList)
                             .append(L"\"")
                             .append(srcPath)
                             .append(L"\" will be overwritten by Pyx site list"));
  }
  const int checkResult = SourceSiteListCheck(list.get(), IsOrbManaged() != 0);
  if (checkResult < 0) return checkResult;
  return importFrom(*this, m_strSiteListFile, source, srcPath, list.get(), keyDir);
}

int CSitesHelper::InternalImportSiteList(const std::wstring& srcPath, tag_Site* sites,
                                         const std::wstring& keyDir) {
  ListSource source(srcPath.empty() ? m_strSiteListFile : srcPath);
  return importFrom(*this, m_strSiteListFile, source, srcPath, sites, keyDir);
}

void CSitesHelper::AdjustSitesOrder(tag_Site* sites) {
  const ADetailTrace trace(c_component, L"Adjusting sitelist order");
  tag_Site* http = nullptr;
  tag_Site* ftp = nullptr;
  for (; sites; sites = sites->pNext) {
    if (!http && isVendorHttp(*sites)) http = sites;
    if (!ftp && isVendorFtp(*sites)) ftp = sites;
  }
  if (!http || !ftp || http->iOrder == 0 || ftp->iOrder == 0) return;
  if (ftp->iOrder >= http->iOrder) return;
  std::swap(http->iOrder, ftp->iOrder);
  logInfo(c_component, log_texts::c_ordersExchanged);
}

}  // namespace sitehlp
