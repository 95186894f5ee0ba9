#ifndef TOOLS_SITELIST_EXPLAIN_PROXY_CHOICE_H
#define TOOLS_SITELIST_EXPLAIN_PROXY_CHOICE_H

#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace tool {

// The way in which a host is reached, and the reason.
struct Route {
  bool isDirect = true;
  std::string proxy;  // "HOST:PORT" or "system settings"; empty without a proxy
  std::string reason;
};

// The effect of a list's proxy settings on hosts. Only the first proxy record of a list is used.
class ProxyChoice {
 public:
  explicit ProxyChoice(const sitehlp::tag_Site* list);

  // Returns null when the list has no proxy settings.
  const sitehlp::tag_ProxySite* settings() const { return m_settings; }
  // Returns "none", "system" or "manual".
  const char* mode() const;
  std::string httpProxy() const;  // "HOST:PORT", or empty
  std::string ftpProxy() const;
  std::vector<std::wstring> exclusions() const;

  Route routeTo(const sitehlp::tag_Site& site) const;
  Route routeOverHttp(const std::wstring& host) const { return routeTo(host, httpProxy(), "HTTP"); }
  Route routeOverFtp(const std::wstring& host) const { return routeTo(host, ftpProxy(), "FTP"); }

 private:
  Route routeTo(const std::wstring& host, const std::string& proxy, const char* protocol) const;

  const sitehlp::tag_ProxySite* m_settings = nullptr;
};

}  // namespace tool

#endif
