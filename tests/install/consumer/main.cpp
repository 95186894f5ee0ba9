// Writes a site list with a password and reads it back, as any user of the library would.
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iostream>
#include <string>

#include "host/agent.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace names = korvel_com::orb::xmlschema::sitelist;

namespace {

int failures = 0;

void expect(bool condition, const char* what) {
  if (condition) return;
  std::cerr << "FAILED: " << what << "\n";
  ++failures;
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

  auto* const site = static_cast<sitehlp::tag_Site*>(std::calloc(1, sizeof(sitehlp::tag_Site)));
  if (!site) return 2;
  site->eSiteKind = sitehlp::SITE_KIND_FTP;
  site->bEnabled = 1;
  sitehlp::CSitesHelper helper(L"");
  helper.CopyWStr(site->szType, names::STR_SITE_TYPE_REPOSITORY, sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szName, L"Depot", sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szServer, L"depot.example", sitehlp::c_textCapacity);
  helper.CopyWStr(site->ftp.szPassword, L"secret", sitehlp::c_textCapacity);

  const std::wstring path(argv[1], argv[1] + std::strlen(argv[1]));
  const std::wstring file = path + L"/SiteList.xml";
  expect(helper.CreateSiteList(site, file, L"1", L"2", L"Client", {}) == 0, "writing");
  helper.FreeSiteListMemory(site);

  sitehlp::tag_Site* read = nullptr;
  expect(helper.MustReadSiteList(file, &read) == 0, "reading");
  expect(read && !read->pNext && read->eSiteKind == sitehlp::SITE_KIND_FTP, "one site");
  expect(read && std::wcscmp(read->ftp.szName, L"Depot") == 0, "its name");
  expect(read && std::wcscmp(read->ftp.szPassword, L"secret") == 0, "its password");
  helper.FreeSiteListMemory(read);

  std::wstring name;
  unsigned int port = 0;
  expect(sitehlp::split_host_and_port(L"depot.example:8443", name, port), "a port");
  expect(name == L"depot.example" && port == 8443, "host and port");
  std::wstring out;
  expect(sitehlp::decrypt_data(L"garbage", out) == 0, "garbage");
  expect(sitehlp::CSitesHelper::m_pSiteList == nullptr, "an empty cache");
  return failures == 0 ? 0 : 1;
}
