#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/log_texts.h"
#include "sitehlp/install/key_file_names.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::xmlschema::sitelist::STR_SITE_TYPE_MASTER;
using korvel_com::orb::xmlschema::sitelist::WX_XML_SITELIST_VESTA_SITE;

namespace {

bool isFilledFile(const AString& path) {
  unsigned long long size = 0;
  return AFiler::getFileSize(path, size) && size != 0;
}

// Logs each fault and remembers whether there was one.
class Checks {
 public:
  void fail(const AString& text) {
    logInfo(c_component, text);
    m_failed = true;
  }
  void failIf(bool fault, const wchar_t* text) {
    if (fault) fail(text);
  }
  // One of the two files of a pair is sufficient.
  void requireKeyFile(const AString& directory, const wchar_t* name, const wchar_t* otherName) {
    const APath path(directory, name);
    const APath otherPath(directory, otherName);
    if (isFilledFile(path.str()) || isFilledFile(otherPath.str())) return;
    fail(AString(path.str()).append(L" or ").append(otherPath.str()).append(L" is invalid"));
  }
  bool failed() const { return m_failed; }

 private:
  bool m_failed = false;
};

void checkServerSite(const tag_Site& site, const std::wstring& siteListFile, Checks& checks) {
  const tag_HttpSite& http = site.http;
  checks.failIf(site.bLocal != 0, log_texts::c_serverLocal);
  if (site.eSiteKind != SITE_KIND_HTTP) {
    checks.fail(AString(log_texts::c_serverKind).append(static_cast<unsigned int>(site.eSiteKind)));
  }
  if (wcsicmp(site.szType, STR_SITE_TYPE_MASTER) != 0) {
    checks.fail(AString(log_texts::c_serverType).append(site.szType));
  }
  if (wcsicmp(http.szElement, WX_XML_SITELIST_VESTA_SITE) != 0) {
    checks.fail(AString(log_texts::c_serverElement).append(http.szElement));
  }
  checks.failIf(http.szName[0] == L'\0', log_texts::c_noServerName);
  checks.failIf(http.szServer[0] == L'\0', log_texts::c_noServerAddress);
  checks.failIf(http.szServerIP[0] == L'\0', log_texts::c_noServerIp);
  checks.failIf(http.szServerName[0] == L'\0', log_texts::c_noComputerName);
  checks.failIf(http.szRelativePath[0] == L'\0', log_texts::c_noServerPath);
  if (http.szVersion[0] == L'\0') return;
  std::wstring directory;
  splitPath(siteListFile, &directory, nullptr);
  checks.requireKeyFile(directory, c_reqSecKey, c_req2048SecKey);
  checks.requireKeyFile(directory, c_srPubKey, c_sr2048PubKey);
}

}  // namespace

int CSitesHelper::SourceSiteListCheck(tag_Site* list, bool checkServer) {
  Checks checks;
  checks.failIf(!list, log_texts::c_noSites);
  if (checkServer) {
    const ADetailTrace trace(c_component, L"VESTA site checks");
    ListOwner servers;
    const int result = GetVestaSite(list, servers.out());
    if (result < 0 || !servers.get()) {
      logError(c_component, AString(log_texts::c_noServer).append(static_cast<long>(result)));
      return result;
    }
    checkServerSite(*servers.get(), m_strCurrentFile, checks);
  }
  return checks.failed() ? c_errorValidation : c_success;
}

bool CSitesHelper::ValidateSiteListForInstall(const std::wstring& path, bool checkServer) {
  const std::wstring description = L"ValidateSiteListForInstall," + path;
  const ADetailTrace trace(c_component, description.c_str());
  ListOwner list;
  if (MustReadSiteList(path, list.out()) < 0) return false;
  return SourceSiteListCheck(list.get(), checkServer) == c_success;
}

}  // namespace sitehlp
