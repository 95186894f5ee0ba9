#include "tools/sitelist/probe/probe_report.h"

#include <algorithm>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_report.h"
#include "tools/sitelist/probe/probe_table.h"

namespace tool {
namespace {

Scalar numberOrNull(const std::optional<std::int64_t>& number) {
  return number ? Scalar(*number) : Scalar();
}

Texts joinedTexts(const std::vector<std::string>& each) {
  Texts texts = {each, ""};
  for (const std::string& text : each) texts.joined += (texts.joined.empty() ? "" : ";") + text;
  return texts;
}

void addSecure(Record& row, const SitePlan& plan, const ProbeOutcome& outcome) {
  const SecureOutcome secure = outcome.secure.value_or(SecureOutcome());
  row.emplace_back("securePort",
                   plan.securePort == 0 ? Scalar() : Scalar(std::int64_t{plan.securePort}));
  row.emplace_back("secureOk", outcome.secure ? Scalar(secure.isOk) : Scalar());
  row.emplace_back("secureMilliseconds", numberOrNull(secure.milliseconds));
  const ShownCertificate shown = secure.certificate.value_or(ShownCertificate());
  const bool isShown = secure.certificate.has_value();
  row.insert(row.end(), {{"certificateSubject", orNull(shown.certificate.subject)},
                         {"certificateIssuer", orNull(shown.certificate.issuer)},
                         {"certificateExpires", orNull(shown.certificate.notAfter)},
                         {"certificateDaysLeft",
                          isShown ? Scalar(std::int64_t{shown.certificate.daysLeft}) : Scalar()},
                         {"certificateTrusted", isShown ? Scalar(shown.faults.empty()) : Scalar()},
                         {"certificateFaults", joinedTexts(shown.faults)}});
}

Record probeRow(const ProbedSite& each) {
  const sitehlp::tag_Site& site = *each.place.site;
  const ProbeOutcome& outcome = *each.outcome;
  const int place = each.place.number;
  Record row = {{"place", place == 0 ? Scalar() : Scalar(std::int64_t{place})},
                {"tried", place != 0},
                {"kind", kindOf(site)},
                {"name", narrow(nameOf(site))},
                {"address", narrow(addressOf(site))},
                {"path", narrow(pathOf(site))},
                {"reason", each.place.reason},
                {"state", std::string(nameOf(outcome.state))},
                {"addresses", joinedTexts(outcome.addresses)},
                {"proxy", each.plan->proxy ? Scalar(textOf(*each.plan->proxy)) : Scalar()},
                {"proxyLogin", orNull(outcome.proxyLogin)},
                {"milliseconds", numberOrNull(outcome.milliseconds)},
                {"answer", orNull(outcome.answer)},
                {"login", orNull(outcome.login)},
                {"entries", numberOrNull(outcome.entries)},
                {"listingCut", outcome.isListingCut},
                {"redirect", orNull(outcome.redirect)}};
  addSecure(row, *each.plan, outcome);
  row.insert(row.end(), {{"readAs", orNull(outcome.readAs)},
                         {"note", orNull(outcome.note)},
                         {"error", orNull(outcome.error)},
                         {"next", orNull(outcome.next)}});
  return row;
}

// Finds the site that the agent will use: the first one that is ok. The site is unknown if an
// earlier site was not probed.
void addDecision(Record& facts, const std::vector<ProbedSite>& sites) {
  const ProbedSite* used = nullptr;
  const ProbedSite* unknown = nullptr;
  for (const ProbedSite& each : sites) {
    if (each.place.number == 0 || used || unknown) break;
    if (!each.outcome || each.outcome->state == ProbeState::NotTried) {
      unknown = &each;
    } else if (each.outcome->state == ProbeState::Ok) {
      used = &each;
    }
  }
  const auto name = [](const ProbedSite* site) {
    return site ? Scalar(narrow(nameOf(*site->place.site))) : Scalar();
  };
  facts.insert(facts.end(),
               {{"decided", unknown == nullptr},
                {"use", name(used)},
                {"usePlace", used ? Scalar(std::int64_t{used->place.number}) : Scalar()},
                {"unknownSite", name(unknown)}});
}

}  // namespace

Report probeReport(const std::string& file, const std::vector<ProbedSite>& sites) {
  Report report;
  report.facts = {{"file", file}};
  addDecision(report.facts, sites);
  const auto count = [&](ProbeState state) {
    return std::int64_t{std::count_if(sites.begin(), sites.end(), [=](const ProbedSite& each) {
      return each.outcome && each.outcome->state == state;
    })};
  };
  report.facts.insert(report.facts.end(), {{"okCount", count(ProbeState::Ok)},
                                           {"failedCount", count(ProbeState::Failed)},
                                           {"notTriedCount", count(ProbeState::NotTried)}});
  report.rowsName = "sites";
  report.rowName = "site";
  for (const ProbedSite& each : sites) {
    if (each.outcome) report.rows.push_back(probeRow(each));
  }
  report.columns = {"place",
                    "tried",
                    "kind",
                    "name",
                    "address",
                    "path",
                    "reason",
                    "state",
                    "addresses",
                    "proxy",
                    "proxyLogin",
                    "milliseconds",
                    "answer",
                    "login",
                    "entries",
                    "listingCut",
                    "redirect",
                    "securePort",
                    "secureOk",
                    "secureMilliseconds",
                    "certificateSubject",
                    "certificateIssuer",
                    "certificateExpires",
                    "certificateDaysLeft",
                    "certificateTrusted",
                    "certificateFaults",
                    "readAs",
                    "note",
                    "error",
                    "next"};
  report.table = [facts = report.facts, rows = report.rows](std::ostream& out,
                                                            const Screen& screen) {
    printProbes(out, screen, facts, rows);
  };
  return report;
}

}  // namespace tool
