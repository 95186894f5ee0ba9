#ifndef TOOLS_SITELIST_PROBE_SITE_RUN_H
#define TOOLS_SITELIST_PROBE_SITE_RUN_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "tools/sitelist/probe/background.h"
#include "tools/sitelist/probe/lookup.h"
#include "tools/sitelist/probe/outcome.h"
#include "tools/sitelist/probe/site_plan.h"
#include "tools/sitelist/probe/transfer.h"

namespace tool {

// The probe of one site in steps: it resolves the host, tries the port, tries the second proxy user
// if needed, and tries the secure port. The owner carries out the transfers and waits for the
// lookups.
class SiteRun {
 public:
  using Clock = std::chrono::steady_clock;

  // `plan` and `roots` must exist as long as the object. `readAs` is the name of the user. All
  // steps together take at most `time`. `wakeUp` is called, in any thread, when a lookup has ended.
  SiteRun(const SitePlan& plan, const TrustedRoots& roots, const std::string& readAs,
          std::chrono::milliseconds time, std::function<void()> wakeUp);

  bool isDone() const { return !m_transfer && !m_lookup; }
  const ProbeOutcome& outcome() const { return m_outcome; }
  // Returns the transfer that the owner has to carry out, or null.
  Transfer* transfer() const { return m_transfer.get(); }
  // The end of the time for all steps.
  Clock::time_point deadline() const { return m_deadline; }

  // Takes the result code of libcurl for the transfer. Releases the transfer.
  void onTransferEnd(int code);
  // Checks whether the lookup has ended or its time is over.
  void checkLookup();

 private:
  void startLookup(std::function<Lookup()> function);
  void takeAddresses(const Lookup& lookup);
  void takeDirectory(const Lookup& lookup);
  void startPlain();
  void startSecure();
  void start(Request request, int stepsLeft);
  void takePlain(const Reply& reply);
  void takeSecure(const Reply& reply);
  void fail(const std::string& error, const std::string& next);
  bool isLookupOfDirectory() const { return m_plan.method == Method::Directory; }

  const SitePlan& m_plan;
  const TrustedRoots& m_roots;
  Clock::time_point m_deadline;
  std::function<void()> m_wakeUp;
  ProbeOutcome m_outcome;
  std::optional<Background<Lookup>> m_lookup;
  std::unique_ptr<Transfer> m_transfer;
  std::size_t m_proxyLogin = 0;  // index of the login that is used
  bool m_isSecureStep = false;
};

}  // namespace tool

#endif
