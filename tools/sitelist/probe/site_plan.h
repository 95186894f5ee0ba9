#ifndef TOOLS_SITELIST_PROBE_SITE_PLAN_H
#define TOOLS_SITELIST_PROBE_SITE_PLAN_H

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sitehlp/site.h"
#include "tools/sitelist/explain/proxy_choice.h"

namespace tool {

// The user and password for a server or a proxy. The texts belong to the list, so that there is no
// further copy of a password.
struct Login {
  const wchar_t* user = nullptr;  // null: no login
  const wchar_t* password = nullptr;
};

// A host with a port. An IPv6 address has no brackets.
struct Endpoint {
  std::string host;
  unsigned port = 0;
};

// Returns "HOST:PORT", with brackets around an IPv6 address.
std::string textOf(const Endpoint& endpoint);
// Returns the host as a URL needs it.
std::string hostForUrl(const std::string& host);
// Returns whether the host is an IPv4 or IPv6 address.
bool isAddress(const std::string& host);

enum class Method { Http, Ftp, Share, Directory };

// What a probe does with a site, as the agent would reach it.
struct SitePlan {
  const sitehlp::tag_Site* site = nullptr;
  std::string obstacle;  // why the site cannot be probed; empty if it can
  std::string advice;    // for the obstacle
  Method method = Method::Http;
  Endpoint server;
  unsigned securePort = 0;  // 0: none
  std::string path;         // of a URL, or the directory
  Login login;
  std::optional<Endpoint> proxy;
  std::vector<Login> proxyLogins;  // the second user is used if the proxy refuses the first
};

// The records of the list with a password that cannot be decrypted.
using LostPasswords = std::set<const sitehlp::tag_Site*>;

// Returns the plan for a site of the list whose proxy settings are `proxy`.
SitePlan planFor(const sitehlp::tag_Site& site, const ProxyChoice& proxy,
                 const LostPasswords& lost);

}  // namespace tool

#endif
