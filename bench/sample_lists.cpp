#include "bench/sample_lists.h"

#include <cstdlib>
#include <filesystem>

#include "bench/check.h"
#include "bench/sample_agent.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

namespace {

template <std::size_t N>
void set(wchar_t (&field)[N], const std::wstring& text) {
  CSitesHelper::CopyWStr(field, text.c_str(), N);
}

struct Maker {
  int variant;
  std::wstring password;

  std::wstring host(const wchar_t* kind, std::size_t i) const {
    return std::wstring(kind) + std::to_wstring(variant) + L"-" + std::to_wstring(i) +
           L".branch.example";
  }

  template <typename Record>
  void setAccount(Record& site, std::size_t i) const {
    set(site.szUserName, L"agent" + std::to_wstring(i));
    if (!password.empty()) set(site.szPassword, password + std::to_wstring(i));
  }

  void fillHttp(tag_Site& site, std::size_t i, const wchar_t* element) const {
    const bool isVesta = std::wstring(element) == L"VestaSite";
    const bool isKeystone = std::wstring(element) == L"KeystoneSite";
    site.bVestaSite = isVesta || isKeystone ? 1 : 0;
    set(site.szType, isVesta ? L"master" : L"repository");
    set(site.http.szElement, element);
    set(site.http.szName, L"Site " + std::to_wstring(i));
    set(site.http.szServer, host(L"web", i));
    site.http.uServerPort = 8080;
    set(site.http.szRelativePath, L"Software/Current/" + std::to_wstring(i));
    if (isVesta || isKeystone) {
      set(site.http.szServerName, L"PC" + std::to_wstring(variant) + L"N" + std::to_wstring(i));
      site.http.uServerNamePort = 8080;
      set(site.http.szServerIP, L"10." + std::to_wstring(variant) + L"." +
                                    std::to_wstring(i / 250) + L"." + std::to_wstring(i % 250));
      site.http.uServerIPPort = 8080;
      site.http.uSecurePort = 8443;
    }
    if (isVesta) set(site.http.szVersion, L"5.10.0");
    site.http.iUseAuth = 1;
    setAccount(site.http, i);
  }

  void fill(tag_Site& site, std::size_t i) const {
    site.bEnabled = 1;
    site.iOrder = static_cast<std::int32_t>(i + 1);
    set(site.szType, L"repository");
    switch (i % 6) {
      case 0:
        return fillHttp(site, i, L"VestaSite");
      case 1:
        return fillHttp(site, i, L"HttpSite");
      case 2:
        site.eSiteKind = sitehlp::SITE_KIND_FTP;
        set(site.ftp.szName, L"Site " + std::to_wstring(i));
        set(site.ftp.szServer, host(L"ftp", i));
        site.ftp.uServerPort = 21;
        set(site.ftp.szRelativePath, L"pub/current/" + std::to_wstring(i));
        return setAccount(site.ftp, i);
      case 3:
        site.eSiteKind = sitehlp::SITE_KIND_UNC;
        set(site.unc.szName, L"Site " + std::to_wstring(i));
        set(site.unc.szServer, host(L"files", i));
        set(site.unc.szShareName, L"software$");
        set(site.unc.szRelativePath, L"current");
        set(site.unc.szDomainName, L"BRANCH");
        return setAccount(site.unc, i);
      case 4:
        return fillHttp(site, i, L"KeystoneSite");
      default:
        site.eSiteKind = sitehlp::SITE_KIND_LOCAL;
        site.bLocal = 1;
        set(site.local.szName, L"Site " + std::to_wstring(i));
        set(site.local.szRelativePath, L"/var/cache/agent/" + std::to_wstring(i));
        set(site.local.szDomainName, L"BRANCH");
        return setAccount(site.local, i);
    }
  }

  void fillProxy(tag_Site& site) const {
    site.eSiteKind = sitehlp::SITE_KIND_PROXY;
    site.bEnabled = 1;
    set(site.proxy.szElement, L"HttpSite");
    set(site.proxy.szName, L"Proxy");
    set(site.proxy.szHttpProxyServer, L"proxy.branch.example");
    site.proxy.iHttpProxyPort = 3128;
    site.proxy.bBypassLocalAddress = 1;
    site.proxy.iExclusionCount = 3;
    set(site.proxy.szExclusionList, L"localhost;intranet.branch.example;10.0.0.1");
    site.proxy.bHttpUseAuth = 1;
    set(site.proxy.szHttpProxyUser, L"agent");
    if (!password.empty()) set(site.proxy.szHttpProxyPassword, password);
  }
};

template <typename Fill>
tag_Site* makeList(std::size_t count, Fill fill) {
  tag_Site* head = nullptr;
  tag_Site** link = &head;
  for (std::size_t i = 0; i < count; ++i) {
    *link = static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site)));
    check(*link != nullptr, "out of memory");
    fill(**link, i);
    link = &(*link)->pNext;
  }
  return head;
}

std::string writeList(const std::string& name, tag_Site* list) {
  const std::string path = inEtc(name);
  const std::wstring certificate =
      L"-----BEGIN CERTIFICATE-----" + std::wstring(700, L'A') + L"-----END CERTIFICATE-----";
  CSitesHelper helper(true);
  check(helper.CreateSiteList(list, widePath(path), L"20261120000000", L"20261120000000", L"Client",
                              {certificate, certificate}) == 0,
        "cannot write a sample list");
  CSitesHelper::FreeSiteListMemory(list);
  return path;
}

// Removes the texts of all password elements.
std::string withoutPasswords(const std::string& document) {
  const std::string start = "Password Encrypted=\"1\">";
  std::string kept;
  std::size_t done = 0;
  for (std::size_t at = document.find(start); at != std::string::npos;
       at = document.find(start, done)) {
    kept.append(document, done, at + start.size() - done);
    done = document.find('<', at);
  }
  return kept.append(document, done, std::string::npos);
}

}  // namespace

tag_Site* makeSites(std::size_t count, int variant, Passwords passwords) {
  const Maker maker{variant, passwords == Passwords::Protected ? L"Secret-" : L""};
  return makeList(count, [&](tag_Site& site, std::size_t i) {
    i + 1 == count ? maker.fillProxy(site) : maker.fill(site, i);
  });
}

tag_Site* makeServers(std::size_t count, int variant) {
  const Maker maker{variant, L"Secret-"};
  return makeList(count, [&](tag_Site& site, std::size_t i) { maker.fill(site, 6 * i); });
}

std::string sitesFile(std::size_t count, int variant, Passwords passwords) {
  const std::string name = "sites-" + std::to_string(count) + "-" + std::to_string(variant) +
                           (passwords == Passwords::None ? "-plain" : "") + ".xml";
  return std::filesystem::exists(inEtc(name))
             ? inEtc(name)
             : writeList(name, makeSites(count, variant, passwords));
}

std::string serversFile(std::size_t count, int variant) {
  const std::string name =
      "servers-" + std::to_string(count) + "-" + std::to_string(variant) + ".xml";
  return std::filesystem::exists(inEtc(name)) ? inEtc(name)
                                              : writeList(name, makeServers(count, variant));
}

std::string sitesFileWithoutPasswords(std::size_t count) {
  std::string path = inEtc("sites-" + std::to_string(count) + "-without-passwords.xml");
  if (!std::filesystem::exists(path)) {
    writeFile(path, withoutPasswords(readFile(sitesFile(count, 0, Passwords::None))));
  }
  return path;
}

}  // namespace bench
