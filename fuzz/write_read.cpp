#include <fcntl.h>

#include <cstdlib>

#include "fuzz/stage.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

namespace {

constexpr std::size_t c_mostSites = 4;

template <std::size_t N>
void fill(wchar_t (&field)[N], fuzz::Input& input) {
  CSitesHelper::CopyWStr(field, input.text(40).c_str(), N);
}

template <typename Record>
void fillShared(Record& record, fuzz::Input& input) {
  fill(record.szName, input);
  fill(record.szRelativePath, input);
  fill(record.szUserName, input);
  fill(record.szPassword, input);
}

template <typename Record>
bool sameShared(const Record& a, const Record& b) {
  return std::wcscmp(a.szName, b.szName) == 0 && std::wcscmp(a.szUserName, b.szUserName) == 0 &&
         std::wcscmp(a.szRelativePath, b.szRelativePath) == 0 &&
         std::wcscmp(a.szPassword, b.szPassword) == 0;
}

tag_Site* newSite(fuzz::Input& input) {
  auto* const site = static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site)));
  if (!site) std::abort();
  site->eSiteKind = input.byte() % 4;
  site->bEnabled = input.byte() & 1;
  site->bLocal = input.byte() & 1;
  site->iOrder = input.byte();
  CSitesHelper::CopyWStr(site->szType, L"repository", c_textCapacity);
  switch (site->eSiteKind) {
    case SITE_KIND_HTTP:
      CSitesHelper::CopyWStr(site->http.szElement, L"HttpSite", c_textCapacity);
      site->http.uServerPort = input.byte();
      fillShared(site->http, input);
      break;
    case SITE_KIND_FTP:
      site->ftp.uServerPort = input.byte();
      fillShared(site->ftp, input);
      break;
    case SITE_KIND_UNC:
      fill(site->unc.szShareName, input);
      fill(site->unc.szDomainName, input);
      fillShared(site->unc, input);
      break;
    default:
      fill(site->local.szDomainName, input);
      fillShared(site->local, input);
  }
  return site;
}

bool same(const tag_Site& a, const tag_Site& b) {
  if (a.eSiteKind != b.eSiteKind || a.bEnabled != b.bEnabled || a.bLocal != b.bLocal) return false;
  if (a.iOrder != b.iOrder) return false;
  switch (a.eSiteKind) {
    case SITE_KIND_HTTP:
      return sameShared(a.http, b.http);
    case SITE_KIND_FTP:
      return sameShared(a.ftp, b.ftp);
    case SITE_KIND_UNC:
      return sameShared(a.unc, b.unc) && std::wcscmp(a.unc.szShareName, b.unc.szShareName) == 0 &&
             std::wcscmp(a.unc.szDomainName, b.unc.szDomainName) == 0;
    default:
      return sameShared(a.local, b.local) &&
             std::wcscmp(a.local.szDomainName, b.local.szDomainName) == 0;
  }
}

}  // namespace

// Writes records of any content. Reading must give the same records.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Stage::clear().makeDirectory(AT_FDCWD, "/dev", 0700);
  fuzz::Input input(data, size);
  tag_Site* list = nullptr;
  tag_Site** link = &list;
  for (std::size_t left = input.byte() % (c_mostSites + 1); left > 0; --left) {
    *link = newSite(input);
    link = &(*link)->pNext;
  }
  CSitesHelper helper(true);
  const std::wstring version = input.text(20);
  fuzz::require(helper.CreateSiteList(list, fuzz::c_widePath, L"1" + version, L"2", L"", {}) == 0,
                "a list can be written");
  tag_Site* read = nullptr;
  fuzz::require(helper.ReadSiteList(fuzz::c_widePath, &read, true) == 0,
                "a written list can be read");
  const tag_Site* a = list;
  const tag_Site* b = read;
  for (; a && b; a = a->pNext, b = b->pNext) fuzz::require(same(*a, *b), "a record comes back");
  fuzz::require(!a && !b, "all records come back");
  std::wstring global;
  std::wstring local;
  std::wstring type;
  helper.GetSitelistVersions(fuzz::c_widePath, global, local, type);
  fuzz::require(global == L"1" + version && local == L"2", "the versions come back");
  CSitesHelper::FreeSiteListMemory(list);
  CSitesHelper::FreeSiteListMemory(read);
  return 0;
}
