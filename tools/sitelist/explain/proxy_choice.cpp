#include "tools/sitelist/explain/proxy_choice.h"

#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

// Returns whether a host is a name without a dot, or this machine.
bool isLocalAddress(const std::wstring& host) {
  const std::wstring name = caseFolded(host);
  if (name == L"localhost" || name == L"::1" || name == L"[::1]" || name.rfind(L"127.", 0) == 0) {
    return true;
  }
  return name.find_first_of(L".:") == std::wstring::npos;
}

std::string serverAndPort(const wchar_t* server, std::int32_t port) {
  return *server ? narrow(server) + ":" + std::to_string(port) : "";
}

}  // namespace

ProxyChoice::ProxyChoice(const tag_Site* list) {
  for (; list && !m_settings; list = list->pNext) {
    if (list->eSiteKind == sitehlp::SITE_KIND_PROXY) m_settings = &list->proxy;
  }
}

const char* ProxyChoice::mode() const {
  if (!m_settings) return "none";
  if (m_settings->bUseIEConfig) return "system";
  return httpProxy().empty() && ftpProxy().empty() ? "none" : "manual";
}

std::string ProxyChoice::httpProxy() const {
  if (!m_settings) return "";
  return serverAndPort(m_settings->szHttpProxyServer, m_settings->iHttpProxyPort);
}

std::string ProxyChoice::ftpProxy() const {
  if (!m_settings) return "";
  return serverAndPort(m_settings->szFtpProxyServer, m_settings->iFtpProxyPort);
}

std::vector<std::wstring> ProxyChoice::exclusions() const {
  return m_settings ? hostsIn(m_settings->szExclusionList) : std::vector<std::wstring>();
}

Route ProxyChoice::routeTo(const std::wstring& host, const std::string& proxy,
                           const char* protocol) const {
  if (!m_settings) return {true, "", "the list has no proxy settings"};
  if (m_settings->bUseIEConfig) {
    return {false, "system settings", "the list uses the proxy settings of the system"};
  }
  if (proxy.empty()) {
    return {true, "", std::string("the list has no proxy for ") + protocol};
  }
  for (const std::wstring& pattern : exclusions()) {
    if (matchesPattern(host, pattern)) {
      return {true, "", "excluded from the proxy by \"" + narrow(pattern) + "\""};
    }
  }
  if (m_settings->bBypassLocalAddress && isLocalAddress(host)) {
    return {true, "", "local addresses bypass the proxy"};
  }
  return {false, proxy, std::string("the proxy for ") + protocol + "; no exclusion matches"};
}

Route ProxyChoice::routeTo(const tag_Site& site) const {
  switch (static_cast<sitehlp::SiteKind>(site.eSiteKind)) {
    case sitehlp::SITE_KIND_HTTP:
      return routeOverHttp(site.http.szServer);
    case sitehlp::SITE_KIND_FTP:
      return routeOverFtp(site.ftp.szServer);
    case sitehlp::SITE_KIND_UNC:
      return {true, "", "a file share is not reached through a proxy"};
    case sitehlp::SITE_KIND_LOCAL:
    case sitehlp::SITE_KIND_PROXY:
      break;
  }
  return {true, "", "a local path needs no network"};
}

}  // namespace tool
