#include "tests/import/records.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

using namespace sitehlp;

namespace test {
namespace {

tag_Site blank(SiteKind kind) {
  tag_Site site;
  std::memset(&site, 0, sizeof site);
  site.bEnabled = 1;
  site.iOrder = 7;
  site.eSiteKind = kind;
  setText(site.szType, L"repository");
  return site;
}

void fillHttp(tag_HttpSite& http, const std::wstring& element, const std::wstring& name) {
  setText(http.szElement, element);
  setText(http.szName, name);
  setText(http.szServer, name + L".example");
  setText(http.szServerIP, L"10.0.0.1");
  http.uServerPort = 8080;
  http.uServerIPPort = 8081;
  http.uServerNamePort = 8082;
  setText(http.szRelativePath, L"path/of/" + name);
  setText(http.szServerName, L"NB" + name);
  setText(http.szUserName, L"user " + name);
  setText(http.szPassword, L"password " + name);
  http.uSecurePort = 8443;
}

}  // namespace

SiteChain::SiteChain(std::initializer_list<tag_Site> records) {
  for (const tag_Site& record : records) add(record);
}

SiteChain::~SiteChain() { clear(); }

void SiteChain::clear() {
  if (m_head) CSitesHelper::FreeSiteListMemory(release());
}

tag_Site* SiteChain::release() {
  tag_Site* head = m_head;
  m_head = nullptr;
  return head;
}

tag_Site* SiteChain::last() const {
  tag_Site* record = m_head;
  while (record && record->pNext) record = record->pNext;
  return record;
}

void SiteChain::add(const tag_Site& content) {
  tag_Site* record = newRecord(content);
  record->pNext = nullptr;
  if (tag_Site* end = last()) {
    end->pNext = record;
  } else {
    m_head = record;
  }
}

tag_Site* newRecord(const tag_Site& content) {
  void* memory = std::malloc(sizeof(tag_Site));
  if (!memory) throw std::bad_alloc();
  std::memcpy(memory, &content, sizeof(tag_Site));
  return static_cast<tag_Site*>(memory);
}

tag_Site httpSite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_HTTP);
  fillHttp(site.http, L"HttpSite", name);
  return site;
}

tag_Site serverSite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_HTTP);
  site.bVestaSite = 1;
  setText(site.szType, L"master");
  fillHttp(site.http, L"VestaSite", name);
  return site;
}

tag_Site ftpSite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_FTP);
  setText(site.ftp.szName, name);
  setText(site.ftp.szServer, name + L".example");
  setText(site.ftp.szRelativePath, L"path/of/" + name);
  setText(site.ftp.szPassword, L"password " + name);
  site.ftp.uServerPort = 2121;
  site.ftp.uSecurePort = 990;
  return site;
}

tag_Site uncSite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_UNC);
  setText(site.unc.szName, name);
  setText(site.unc.szServer, L"FILES");
  setText(site.unc.szShareName, L"share of " + name);
  site.unc.iUseLoggedonUserAccount = 1;
  return site;
}

tag_Site localSite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_LOCAL);
  setText(site.local.szName, name);
  setText(site.local.szRelativePath, L"path/of/" + name);
  return site;
}

tag_Site proxySite(const std::wstring& name) {
  tag_Site site = blank(SITE_KIND_PROXY);
  setText(site.szType, L"");
  setText(site.proxy.szElement, L"HttpSite");
  setText(site.proxy.szName, name);
  setText(site.proxy.szHttpProxyServer, L"proxy.example");
  site.proxy.iHttpProxyPort = 3128;
  setText(site.proxy.szExclusionList, L"one.example;two.example");
  site.proxy.iExclusionCount = 2;
  setText(site.proxy.szAlternateFtpProxyPassword, L"password " + name);
  return site;
}

tag_Site typed(tag_Site record, const std::wstring& type) {
  setText(record.szType, type);
  return record;
}

std::wstring nameOf(const tag_Site& record) {
  switch (record.eSiteKind) {
    case SITE_KIND_HTTP:
      return record.http.szName;
    case SITE_KIND_FTP:
      return record.ftp.szName;
    case SITE_KIND_UNC:
      return record.unc.szName;
    case SITE_KIND_LOCAL:
      return record.local.szName;
    case SITE_KIND_PROXY:
      return record.proxy.szName;
    default:
      return std::wstring();
  }
}

std::vector<std::wstring> namesOf(const tag_Site* head) {
  std::vector<std::wstring> names;
  for (; head; head = head->pNext) names.push_back(nameOf(*head));
  return names;
}

std::vector<const tag_Site*> recordsOf(const tag_Site* head) {
  std::vector<const tag_Site*> records;
  for (; head; head = head->pNext) records.push_back(head);
  return records;
}

bool sameContent(const tag_Site& a, const tag_Site& b) {
  constexpr std::size_t data = offsetof(tag_Site, proxy);
  return std::memcmp(&a, &b, offsetof(tag_Site, pNext)) == 0 &&
         std::memcmp(reinterpret_cast<const char*>(&a) + data,
                     reinterpret_cast<const char*>(&b) + data, sizeof(tag_ProxySite)) == 0;
}

}  // namespace test
