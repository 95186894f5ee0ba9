#include "tools/sitelist/probe/answer.h"

#include <cwchar>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr int c_statusUnauthorized = 401;
constexpr int c_forbidden = 403;
constexpr int c_notFound = 404;
constexpr int c_statusProxyUnauthorized = 407;

bool repeats(const std::wstring& text, const Login& login) {
  const auto has = [&](const wchar_t* secret) {
    return secret && *secret && text.find(secret) != std::wstring::npos;
  };
  return has(login.user) || has(login.password);
}

// A server may repeat a login that it has received.
std::string withoutLogin(const SitePlan& plan, const std::string& text) {
  const std::wstring wideText = wide(text);
  bool isRepeated = repeats(wideText, plan.login);
  for (const Login& login : plan.proxyLogins) isRepeated = isRepeated || repeats(wideText, login);
  return isRepeated ? "(not shown, because it repeats a login)" : text;
}

// Some proxies answer a wrong login with the status by which a server asks for one.
bool isUnclear(const Reply& reply) {
  return reply.status == c_statusUnauthorized && reply.wasProxyChallenged;
}

std::string loginResult(bool isGiven, bool isRefused, bool wasChallenged, bool isKnown) {
  if (isRefused && !isKnown) return "unsupported";
  if (isRefused) return isGiven ? "refused" : "required";
  if (!isGiven) return "";
  return wasChallenged ? "accepted" : "not-asked";
}

void failSite(ProbeOutcome& outcome, const std::string& error, const std::string& next) {
  outcome.state = ProbeState::Failed;
  outcome.error = error;
  outcome.next = next;
}

void failLogin(ProbeOutcome& outcome, const std::string& whom, const std::string& result,
               const std::string& next) {
  if (result == "unsupported") {
    failSite(outcome,
             "the " + whom + " offers only methods of login that sitelist does not support",
             "permit the method Basic or Digest on the " + whom);
  } else {
    failSite(
        outcome,
        "the " + whom +
            (result == "refused" ? " refused the login" : " requires a login that the list lacks"),
        next);
  }
}

void takeStatus(const SitePlan& plan, const Reply& reply, ProbeOutcome& outcome) {
  // The request to a proxy for FTP has the login, because the proxy logs in.
  const bool isFtp = plan.method == Method::Ftp;
  outcome.login = loginResult(plan.login.user != nullptr, reply.status == c_statusUnauthorized,
                              reply.wasChallenged || isFtp, reply.isLoginKnown || isFtp);
  const std::string checkPath = "check the path of the site and the content of the server";
  if (reply.status >= 200 && reply.status < 300) {
    outcome.state = ProbeState::Ok;
  } else if (reply.status == c_statusProxyUnauthorized) {
    outcome.login = "";
    failLogin(outcome, "proxy", outcome.proxyLogin, "correct the login in the proxy settings");
  } else if (isUnclear(reply)) {
    outcome.proxyLogin = "unclear";
    outcome.login = plan.login.user ? "unclear" : "";
    failSite(outcome, "the proxy or the server refused the login",
             "check the login in the proxy settings, and that of the site");
  } else if (reply.status == c_statusUnauthorized) {
    failLogin(outcome, "server", outcome.login,
              "set useAuth, the user and the password of the site with `sitelist edit set`");
  } else if (reply.status == c_forbidden) {
    outcome.state = ProbeState::Ok;
    outcome.note =
        "the server does not list the directory; whether its files can be read is not "
        "known";
  } else if (reply.status == c_notFound) {
    failSite(outcome, "the server has no such directory", checkPath);
  } else if (reply.status >= 300 && reply.status < 400) {
    failSite(outcome, "the server redirects to another address, which was not tried",
             "set the site to the address of the redirect if you trust it");
  } else {
    failSite(
        outcome, "the server did not answer with the directory",
        plan.proxy ? "check the proxy and the server; either may have sent the answer" : checkPath);
  }
}

void takeFtp(const SitePlan& plan, const Reply& reply, ProbeOutcome& outcome) {
  const bool isGiven = plan.login.user != nullptr;
  if (reply.isLoggedIn) outcome.login = isGiven ? "accepted" : "anonymous";
  if (reply.isLoginDenied) outcome.login = isGiven ? "refused" : "required";
  if (!reply.error.empty()) return;
  outcome.entries = reply.entries;
  outcome.isListingCut = reply.isListingCut;
  outcome.state = ProbeState::Ok;
}

}  // namespace

bool isProxyLoginRefused(const Reply& reply) {
  return reply.status == c_statusProxyUnauthorized || isUnclear(reply);
}

void takeAnswer(const SitePlan& plan, const Reply& reply, ProbeOutcome& outcome) {
  if (!reply.answer.empty()) outcome.answer = withoutLogin(plan, reply.answer);
  if (!reply.redirect.empty()) outcome.redirect = withoutLogin(plan, reply.redirect);
  if (plan.proxy && reply.status != 0) {
    outcome.proxyLogin = loginResult(!plan.proxyLogins.empty(), isProxyLoginRefused(reply),
                                     reply.wasProxyChallenged, reply.isProxyLoginKnown);
  }
  if (!reply.error.empty()) failSite(outcome, reply.error, reply.next);
  if (plan.method == Method::Ftp && !plan.proxy) {
    takeFtp(plan, reply, outcome);
  } else if (plan.method == Method::Share && reply.error.empty()) {
    outcome.state = ProbeState::Ok;
    outcome.answer = "port 445 is open";
    outcome.note = "the share was not opened, and its login was not tried";
  } else if (reply.error.empty()) {
    takeStatus(plan, reply, outcome);
  }
}

}  // namespace tool
