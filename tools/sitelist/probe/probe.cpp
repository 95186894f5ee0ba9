#include "tools/sitelist/probe/probe.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>

#include "tools/sitelist/probe/curl_session.h"
#include "tools/sitelist/probe/site_run.h"
#include "tools/sitelist/probe/trusted_roots.h"

namespace tool {
namespace {

using Clock = SiteRun::Clock;

void checkMulti(CURLMcode code) {
  if (code == CURLM_OUT_OF_MEMORY) throw std::bad_alloc();
  if (code != CURLM_OK) throw std::logic_error(curl_multi_strerror(code));
}

// All sites of one call. The thread of a lookup may outlive this object, so both share the handle.
class Probe {
 public:
  Probe(const std::vector<SitePlan>& plans, const std::vector<std::wstring>& certificates,
        const ProbeLimits& limits, const std::function<void(std::size_t)>& onDone)
      : m_plans(plans), m_roots(certificates), m_limits(limits), m_onDone(onDone) {
    if (!m_multi) throw std::bad_alloc();
  }
  ~Probe() {
    for (Active& active : m_active) dismiss(active);
  }
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  std::vector<ProbeOutcome> run();

 private:
  struct Active {
    std::size_t index;
    std::unique_ptr<SiteRun> run;
    CURL* inMulti = nullptr;  // the handle that libcurl works on, or null
  };

  void startNext();
  void update(Active& active);
  void dismiss(Active& active);
  void takeEnds();
  void wait() const;

  const std::vector<SitePlan>& m_plans;
  const TrustedRoots m_roots;
  const ProbeLimits m_limits;
  const std::function<void(std::size_t)>& m_onDone;
  const std::string m_user = effectiveUser();
  const std::shared_ptr<CURLM> m_multi{curl_multi_init(), curl_multi_cleanup};
  std::vector<Active> m_active;
  std::vector<ProbeOutcome> m_outcomes;
  std::size_t m_next = 0;
  std::size_t m_done = 0;
};

void Probe::startNext() {
  while (m_next < m_plans.size() && m_active.size() < m_limits.jobs) {
    const SitePlan& plan = m_plans[m_next];
    if (plan.obstacle.empty()) {
      m_active.push_back({m_next, std::make_unique<SiteRun>(
                                      plan, m_roots, m_user, m_limits.time,
                                      [multi = m_multi] { curl_multi_wakeup(multi.get()); })});
      update(m_active.back());
    } else {
      m_outcomes[m_next].error = plan.obstacle;
      m_outcomes[m_next].next = plan.advice;
      m_onDone(++m_done);
    }
    ++m_next;
  }
}

// Gives the transfer that a site waits for to libcurl.
void Probe::update(Active& active) {
  Transfer* const transfer = active.run->transfer();
  if (!transfer || active.inMulti) return;
  checkMulti(curl_multi_add_handle(m_multi.get(), transfer->handle()));
  active.inMulti = transfer->handle();
}

void Probe::dismiss(Active& active) {
  if (active.inMulti) curl_multi_remove_handle(m_multi.get(), active.inMulti);
  active.inMulti = nullptr;
}

void Probe::takeEnds() {
  int left = 0;
  while (const CURLMsg* const message = curl_multi_info_read(m_multi.get(), &left)) {
    const CURL* const handle = message->easy_handle;
    const int code = message->data.result;
    const auto active = std::find_if(m_active.begin(), m_active.end(),
                                     [&](const Active& each) { return each.inMulti == handle; });
    if (message->msg != CURLMSG_DONE || active == m_active.end()) continue;
    // The handle is removed from libcurl only after its socket was shut down.
    Transfer* const transfer = active->run->transfer();
    transfer->closeConnection();
    dismiss(*active);
    active->run->onTransferEnd(code);
  }
}

void Probe::wait() const {
  constexpr std::chrono::milliseconds c_longest(1000);
  auto time = c_longest;
  for (const Active& active : m_active) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(active.run->deadline() -
                                                                            Clock::now());
    if (!active.inMulti) time = std::clamp(left, std::chrono::milliseconds(1), time);
  }
  checkMulti(curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(time.count()), nullptr));
}

std::vector<ProbeOutcome> Probe::run() {
  m_outcomes.resize(m_plans.size());
  for (startNext(); !m_active.empty(); startNext()) {
    int running = 0;
    checkMulti(curl_multi_perform(m_multi.get(), &running));
    takeEnds();
    for (Active& active : m_active) {
      active.run->checkLookup();
      update(active);
      if (!active.run->isDone()) continue;
      m_outcomes[active.index] = active.run->outcome();
      m_onDone(++m_done);
    }
    const auto isOver = [](const Active& active) { return active.run->isDone(); };
    const std::size_t before = m_active.size();
    m_active.erase(std::remove_if(m_active.begin(), m_active.end(), isOver), m_active.end());
    if (m_active.size() == before) wait();
  }
  return std::move(m_outcomes);
}

}  // namespace

std::vector<ProbeOutcome> probeSites(const std::vector<SitePlan>& plans,
                                     const std::vector<std::wstring>& certificates,
                                     const ProbeLimits& limits,
                                     const std::function<void(std::size_t)>& onDone) {
  openCurlSession();
  return Probe(plans, certificates, limits, onDone).run();
}

}  // namespace tool
