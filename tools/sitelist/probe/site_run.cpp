#include "tools/sitelist/probe/site_run.h"

#include <algorithm>
#include <utility>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/probe/answer.h"

namespace tool {

SiteRun::SiteRun(const SitePlan& plan, const TrustedRoots& roots, const std::string& readAs,
                 std::chrono::milliseconds time, std::function<void()> wakeUp)
    : m_plan(plan), m_roots(roots), m_deadline(Clock::now() + time), m_wakeUp(std::move(wakeUp)) {
  if (isLookupOfDirectory()) {
    m_outcome.readAs = readAs;
    startLookup([path = plan.path] { return openDirectory(path); });
    return;
  }
  const std::string host = plan.proxy ? plan.proxy->host : plan.server.host;
  if (isAddress(host)) {
    takeAddresses({{host}, ""});
  } else {
    startLookup([host] { return resolveHost(host); });
  }
}

void SiteRun::startLookup(std::function<Lookup()> function) {
  m_lookup.emplace(std::move(function), m_wakeUp);
}

void SiteRun::checkLookup() {
  if (!m_lookup) return;
  const std::optional<Lookup> lookup = m_lookup->result();
  if (lookup) {
    m_lookup.reset();
    isLookupOfDirectory() ? takeDirectory(*lookup) : takeAddresses(*lookup);
  } else if (Clock::now() >= m_deadline) {
    m_lookup.reset();
    fail(isLookupOfDirectory() ? "the directory was not read in time"
                               : "the name was not resolved in time",
         isLookupOfDirectory() ? "check the file system, or wait longer with --timeout"
                               : "check the name servers, or wait longer with --timeout");
  }
}

void SiteRun::takeDirectory(const Lookup& lookup) {
  if (lookup.error.empty()) {
    m_outcome.state = ProbeState::Ok;
    m_outcome.answer = "the directory is readable";
  } else {
    fail("the directory cannot be read: " + lookup.error,
         "check the path and its permissions, and run the command as the agent's user");
  }
}

void SiteRun::takeAddresses(const Lookup& lookup) {
  m_outcome.addresses = lookup.addresses;
  if (lookup.error.empty()) {
    startPlain();
    return;
  }
  const bool isProxy = m_plan.proxy.has_value();
  fail(std::string("the name of the ") + (isProxy ? "proxy" : "server") +
           " cannot be resolved: " + lookup.error,
       isProxy ? "check the proxy settings of the list and the name servers"
               : "check the server of the site and the name servers");
}

void SiteRun::startPlain() {
  Request request;
  request.goal = m_plan.method == Method::Http  ? Goal::Http
                 : m_plan.method == Method::Ftp ? Goal::Ftp
                                                : Goal::Connect;
  request.server = m_plan.server;
  request.path = request.goal == Goal::Connect ? "" : m_plan.path;
  request.login = m_plan.login;
  start(std::move(request), m_plan.securePort == 0 ? 1 : 2);
}

void SiteRun::startSecure() {
  m_isSecureStep = true;
  Request request;
  request.goal = Goal::Handshake;
  request.server = {m_plan.server.host, m_plan.securePort};
  start(std::move(request), 1);
}

// The remaining time is divided, so that a step that hangs leaves time for the next one.
void SiteRun::start(Request request, int stepsLeft) {
  request.proxy = m_plan.proxy;
  if (m_proxyLogin < m_plan.proxyLogins.size()) {
    request.proxyLogin = m_plan.proxyLogins[m_proxyLogin];
  }
  request.addresses = m_outcome.addresses;
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now());
  request.time = std::max(left, std::chrono::milliseconds(1)) / stepsLeft;
  m_transfer = std::make_unique<Transfer>(request, m_roots);
}

void SiteRun::onTransferEnd(int code) {
  const Reply reply = m_transfer->finish(code);
  m_transfer.reset();
  m_isSecureStep ? takeSecure(reply) : takePlain(reply);
}

void SiteRun::takePlain(const Reply& reply) {
  if (isProxyLoginRefused(reply) && m_proxyLogin + 1 < m_plan.proxyLogins.size()) {
    ++m_proxyLogin;
    startPlain();
    return;
  }
  m_outcome.milliseconds = reply.milliseconds;
  takeAnswer(m_plan, reply, m_outcome);
  if (m_plan.securePort != 0) startSecure();
}

void SiteRun::takeSecure(const Reply& reply) {
  SecureOutcome secure;
  secure.milliseconds = reply.milliseconds;
  secure.certificate = reply.certificate;
  secure.isOk = reply.error.empty();
  m_outcome.secure = secure;
  if (!secure.isOk) fail(reply.error, reply.next);
}

// The first failure of a site is the one that is reported.
void SiteRun::fail(const std::string& error, const std::string& next) {
  m_outcome.state = ProbeState::Failed;
  if (!m_outcome.error.empty()) return;
  m_outcome.error = error;
  m_outcome.next = next;
}

}  // namespace tool
