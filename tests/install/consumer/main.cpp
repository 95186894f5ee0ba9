// Writes a site list with a password and reads it back, as any user of the library would.
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iostream>
#include <string>

#include "host/agent.h"
#include "sitehlp/list.h"
#include "sitehlp/vendor_hosts.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace names = korvel_com::orb::xmlschema::sitelist;

namespace {

int failures = 0;

void expect(bool condition, const char* what) {
  if (condition) return;
  std::cerr << "FAILED: " << what << "\n";
  ++failures;
}

sitehlp::tag_Site* newSite(sitehlp::SiteKind kind) {
  auto* const site = static_cast<sitehlp::tag_Site*>(std::calloc(1, sizeof(sitehlp::tag_Site)));
  if (!site) return nullptr;
  site->eSiteKind = kind;
  site->bEnabled = 1;
  return site;
}

// Returns whether the library uses the vendor hosts of the installed header.
bool vendorOrdersAreExchanged() {
  sitehlp::ListOwner list(newSite(sitehlp::SITE_KIND_HTTP));
  sitehlp::tag_Site* const http = list.get();
  if (!http) return false;
  sitehlp::tag_Site* const ftp = http->pNext = newSite(sitehlp::SITE_KIND_FTP);
  if (!ftp) return false;
  sitehlp::CSitesHelper helper(true);
  helper.CopyWStr(http->http.szServer, sitehlp::c_vendorHttpHost, sitehlp::c_textCapacity);
  http->http.uServerPort = 80;
  http->iOrder = 2;
  helper.CopyWStr(ftp->ftp.szServer, sitehlp::c_vendorFtpHost, sitehlp::c_textCapacity);
  ftp->ftp.uServerPort = 21;
  ftp->iOrder = 1;
  helper.AdjustSitesOrder(http);
  return http->iOrder == 1 && ftp->iOrder == 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string directory = std::string(argv[1]) + "/agent";
  if (::mkdir(directory.c_str(), 0700) != 0) return 2;
  host::AgentSettings settings;
  settings.dataDirectory = directory;
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);

  sitehlp::ListOwner written(newSite(sitehlp::SITE_KIND_FTP));
  sitehlp::tag_Site* const site = written.get();
  if (!site) return 2;
  sitehlp::CSitesHelper helper(L"");
  helper.CopyWStr(site->szType, names::STR_SITE_TYPE_REPOSITORY, sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szName, L"Depot", sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szServer, L"depot.example", sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szPassword, L"secret", sitehlp::c_textCapacity);

  const std::wstring path(argv[1], argv[1] + std::strlen(argv[1]));
  const std::wstring file = path + L"/SiteList.xml";
  expect(helper.CreateSiteList(site, file, L"1", L"2", L"Client", {}) == 0, "writing");

  sitehlp::ListOwner list;
  const int result = helper.MustReadSiteList(file, list.out());
  expect(result == sitehlp::c_success, sitehlp::resultText(result));
  int count = 0;
  for (const sitehlp::tag_Site& read : list) {
    ++count;
    expect(read.eSiteKind == sitehlp::SITE_KIND_FTP, "its kind");
    expect(std::wcscmp(read.ftp.szName, L"Depot") == 0, "its name");
    expect(std::wcscmp(read.ftp.szPassword, L"secret") == 0, "its password");
  }
  expect(count == 1, "one site");
  expect(vendorOrdersAreExchanged(), "the vendor hosts");

  std::wstring name;
  unsigned int port = 0;
  expect(sitehlp::split_host_and_port(L"depot.example:8443", name, port), "a port");
  expect(name == L"depot.example" && port == 8443, "host and port");
  std::wstring out;
  expect(sitehlp::decrypt_data(L"garbage", out) == 0, "garbage");
  expect(sitehlp::CSitesHelper::m_pSiteList == nullptr, "an empty cache");
  return failures == 0 ? 0 : 1;
}
