#include "tools/sitelist/probe/site_plan.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cwchar>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

constexpr unsigned c_sharePort = 445;

bool isDigitOrLetter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHostName(const std::string& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return isDigitOrLetter(c) || c == '-' || c == '.' || c == '_';
  });
}

std::string withoutBrackets(const std::string& host) {
  const bool has = host.size() > 2 && host.front() == '[' && host.back() == ']';
  return has ? host.substr(1, host.size() - 2) : host;
}

bool isHostOrAddress(const std::string& host) { return isAddress(host) || isHostName(host); }

// The agent replaces macros. A macro begins with "<" or with its escaped form.
bool hasAgentMacro(const std::wstring& text) {
  return text.find(L'<') != std::wstring::npos || text.find(L"%%lt%%") != std::wstring::npos;
}

// Returns the path in the form of a URL, for a directory.
std::string urlPath(const std::string& path) {
  std::string encoded = "/";
  for (const char c : path) {
    const bool isSeparator = c == '/';
    if (isSeparator && encoded.back() == '/') continue;
    if (isDigitOrLetter(c) || std::string("-._~/").find(c) != std::string::npos) {
      encoded += c;
      continue;
    }
    constexpr const char* c_digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += c_digits[byte / 16];
    encoded += c_digits[byte % 16];
  }
  return encoded.back() == '/' ? encoded : encoded + '/';
}

// Returns the host in a text that may be a URL. A login in the URL is omitted.
std::string hostInProxyText(const std::string& text) {
  const std::size_t mark = text.find("://");
  std::string rest = mark == std::string::npos ? text : text.substr(mark + 3);
  rest = rest.substr(0, rest.find('/'));
  return withoutBrackets(rest.substr(rest.rfind('@') + 1));
}

Login loginIfUsed(bool isUsed, const wchar_t* user, const wchar_t* password) {
  return isUsed && *user ? Login{user, password} : Login();
}

// FTP sends a name as a line of text, so a line end in it would be a further command.
bool hasControlCharacter(const Login& login) {
  const auto has = [](const wchar_t* text) {
    return text && std::any_of(text, text + std::wcslen(text), [](wchar_t c) { return c < L' '; });
  };
  return has(login.user) || has(login.password);
}

void setObstacle(SitePlan& plan, const std::string& text, const std::string& advice) {
  if (!plan.obstacle.empty()) return;
  plan.obstacle = text;
  plan.advice = advice;
}

void fillSite(SitePlan& plan) {
  const tag_Site& site = *plan.site;
  switch (static_cast<sitehlp::SiteKind>(site.eSiteKind)) {
    case sitehlp::SITE_KIND_HTTP:
      plan.method = Method::Http;
      plan.server = {narrow(site.http.szServer), site.http.uServerPort};
      plan.securePort = site.http.uSecurePort;
      plan.path = urlPath(narrow(site.http.szRelativePath));
      plan.login = loginIfUsed(site.http.iUseAuth != 0, site.http.szUserName, site.http.szPassword);
      break;
    case sitehlp::SITE_KIND_FTP:
      plan.method = Method::Ftp;
      plan.server = {narrow(site.ftp.szServer), site.ftp.uServerPort};
      plan.securePort = site.ftp.uSecurePort;
      plan.path = urlPath(narrow(site.ftp.szRelativePath));
      plan.login = loginIfUsed(true, site.ftp.szUserName, site.ftp.szPassword);
      break;
    case sitehlp::SITE_KIND_UNC:
      plan.method = Method::Share;
      plan.server = {narrow(site.unc.szServer), c_sharePort};
      break;
    case sitehlp::SITE_KIND_LOCAL:
    case sitehlp::SITE_KIND_PROXY:
      plan.method = Method::Directory;
      plan.path = narrow(site.local.szRelativePath);
      break;
  }
  plan.server.host = withoutBrackets(plan.server.host);
}

void fillProxy(SitePlan& plan, const ProxyChoice& choice) {
  const sitehlp::tag_ProxySite& settings = *choice.settings();
  Endpoint proxy;
  if (plan.method == Method::Http) {
    proxy = {narrow(settings.szHttpProxyServer), static_cast<unsigned>(settings.iHttpProxyPort)};
    plan.proxyLogins = {
        loginIfUsed(settings.bHttpUseAuth != 0, settings.szHttpProxyUser,
                    settings.szHttpProxyPassword),
        loginIfUsed(settings.bAlternateHttpUseAuth != 0, settings.szAlternateHttpProxyUser,
                    settings.szAlternateHttpProxyPassword)};
  } else {
    proxy = {narrow(settings.szFtpProxyServer), static_cast<unsigned>(settings.iFtpProxyPort)};
    plan.proxyLogins = {
        loginIfUsed(settings.bFtpUseAuth != 0, settings.szFtpProxyUser,
                    settings.szFtpProxyPassword),
        loginIfUsed(settings.bAlternateFtpUseAuth != 0, settings.szAlternateFtpProxyUser,
                    settings.szAlternateFtpProxyPassword)};
  }
  proxy.host = hostInProxyText(proxy.host);
  plan.proxy = proxy;
  std::vector<Login>& logins = plan.proxyLogins;
  logins.erase(
      std::remove_if(logins.begin(), logins.end(), [](const Login& login) { return !login.user; }),
      logins.end());
}

bool hasLostPassword(const sitehlp::tag_ProxySite* settings, const LostPasswords& lost) {
  return std::any_of(lost.begin(), lost.end(),
                     [settings](const tag_Site* site) { return &site->proxy == settings; });
}

void checkProxy(SitePlan& plan, bool isPasswordLost) {
  const Endpoint& proxy = *plan.proxy;
  if (!isHostOrAddress(proxy.host) || proxy.port < 1 || proxy.port > c_maxPort) {
    setObstacle(plan, "the proxy \"" + textOf(proxy) + "\" is not a host with a port",
                "correct the proxy settings with `sitelist edit set`");
  }
  if (!plan.proxyLogins.empty() && isPasswordLost) {
    setObstacle(plan, "a password of the proxy settings cannot be decrypted",
                "restore the agent's password key, or set the password again");
  }
  for (const Login& login : plan.proxyLogins) {
    if (!hasControlCharacter(login)) continue;
    setObstacle(plan, "the login of the proxy has a control character",
                "set the user and password of the proxy again");
  }
}

void checkServer(SitePlan& plan, const LostPasswords& lost) {
  const Endpoint& server = plan.server;
  if (server.host.empty()) {
    setObstacle(plan, "the site has no host", "set its server with `sitelist edit set`");
  } else if (!isHostOrAddress(server.host)) {
    setObstacle(plan, "\"" + server.host + "\" is not a host name",
                "correct its server with `sitelist edit set`");
  } else if (server.port < 1 || server.port > c_maxPort || plan.securePort > c_maxPort) {
    setObstacle(plan, "a port of the site is not a number from 1 to 65535",
                "correct the port with `sitelist edit set`");
  }
  if (plan.login.user && lost.count(plan.site) != 0) {
    setObstacle(plan, "the password of the site cannot be decrypted",
                "restore the agent's password key, or set the password again");
  }
  if (hasControlCharacter(plan.login)) {
    setObstacle(plan, "the login of the site has a control character",
                "set its user and password again with `sitelist edit set`");
  }
}

}  // namespace

std::string hostForUrl(const std::string& host) {
  return host.find(':') == std::string::npos ? host : "[" + host + "]";
}

std::string textOf(const Endpoint& endpoint) {
  return hostForUrl(endpoint.host) + ":" + std::to_string(endpoint.port);
}

bool isAddress(const std::string& host) {
  in_addr four = {};
  in6_addr six = {};
  return ::inet_pton(AF_INET, host.c_str(), &four) == 1 ||
         ::inet_pton(AF_INET6, host.c_str(), &six) == 1;
}

SitePlan planFor(const tag_Site& site, const ProxyChoice& proxy, const LostPasswords& lost) {
  SitePlan plan;
  plan.site = &site;
  if (std::string(kindOf(site)) == c_unknownKind) {
    plan.obstacle = "the kind of the site is unknown";
    plan.advice = "see the faults of the list with `sitelist validate`";
    return plan;
  }
  fillSite(plan);
  for (const Field& field : fieldsOf(site)) {
    const std::string name = field.name;
    if (name != "server" && name != "relativePath") continue;
    if (!hasAgentMacro(std::get<const wchar_t*>(field.value))) continue;
    setObstacle(plan, "it has a macro, which only the agent can replace",
                "replace the macro in a copy of the list, and probe that copy with --file");
  }
  if (plan.method == Method::Directory) {
    if (plan.path.empty() || plan.path.front() != '/') {
      setObstacle(plan, "its path is not absolute, so only the agent knows the directory",
                  "write the full path into a copy of the list, and probe that copy with --file");
    }
    return plan;
  }
  const Route route = proxy.routeTo(site);
  if (!route.isDirect && *proxy.mode() == 's') {
    setObstacle(
        plan, "the agent uses the proxy settings of the system, which are not known here",
        "on the endpoint, try the site with a program that uses the proxy settings of the system");
  } else if (!route.isDirect) {
    fillProxy(plan, proxy);
    checkProxy(plan, hasLostPassword(proxy.settings(), lost));
  }
  checkServer(plan, lost);
  return plan;
}

}  // namespace tool
