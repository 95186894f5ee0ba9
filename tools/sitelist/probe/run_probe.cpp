#include "tools/sitelist/probe/run_probe.h"

#include <algorithm>
#include <cstdlib>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/progress.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/explain/search_order.h"
#include "tools/sitelist/model/selection.h"
#include "tools/sitelist/probe/probe.h"
#include "tools/sitelist/probe/probe_report.h"

namespace tool {
namespace {

// What a probe needs of a list. No lock is held once it is read.
struct ListToProbe {
  SiteList list;
  LostPasswords lost;
};

ListToProbe readListToProbe(Context& context, const std::string& file) {
  const AgentForReading agent(context, file);
  ListToProbe read = {readWholeSiteList(agent.path()), {}};
  const std::set<std::size_t> places = placesOfLostPasswords(agent.path());
  std::size_t place = 0;
  for (const auto* site = read.list.sites.get(); site; site = site->pNext) {
    if (places.count(place++) != 0) read.lost.insert(site);
  }
  warnOfUnreadPasswords(agent.path(), file.empty());
  return read;
}

unsigned long numberOfOption(const std::string& option, const std::string& value,
                             unsigned long unset, unsigned long most) {
  if (value.empty()) return unset;
  const bool isNumber =
      value.size() <= 5 && value.find_first_not_of("0123456789") == std::string::npos;
  const unsigned long number = isNumber ? std::strtoul(value.c_str(), nullptr, 10) : 0;
  if (number >= 1 && number <= most) return number;
  throw Failure(
      exitUsage,
      option + ": \"" + shown(value) + "\" is not a number from 1 to " + std::to_string(most),
      "give a number from 1 to " + std::to_string(most) + "; without the option it is " +
          std::to_string(unset));
}

ProbeLimits probeLimitsOf(const ProbeOptions& options) {
  constexpr unsigned long c_longest = 3600;
  constexpr unsigned long c_mostJobs = 64;
  ProbeLimits limits;
  limits.time = std::chrono::seconds(numberOfOption(
      "--timeout", options.timeout, static_cast<unsigned long>(limits.time.count()), c_longest));
  limits.jobs = numberOfOption("--jobs", options.jobs, limits.jobs, c_mostJobs);
  return limits;
}

// Returns whether the command probes the site at this place.
bool isChosenToProbe(const SearchPlace& place, const ProbeOptions& options) {
  if (options.sites.empty()) return options.all || place.number != 0;
  return std::any_of(options.sites.begin(), options.sites.end(), [&](const std::string& pattern) {
    return isSelected(*place.site, {{pattern}, ""});
  });
}

void requireSitesToProbe(const SiteList& list, const std::vector<SearchPlace>& places,
                         const ProbeOptions& options) {
  for (const std::string& pattern : options.sites) {
    const bool isFound = std::any_of(places.begin(), places.end(), [&](const SearchPlace& place) {
      return isSelected(*place.site, {{pattern}, ""});
    });
    if (isFound) continue;
    throw failureAt(list.path, exitNotFound,
                    "no site matches \"" + shown(pattern) + "\"" + similarSites(list, pattern),
                    "list all sites with `sitelist show`");
  }
}

// If no site is named, one site that the agent tries must be ok. If sites are named, all of them
// must be ok.
int statusOfProbe(const std::vector<ProbedSite>& sites, bool areNamed) {
  const auto isOk = [](const ProbedSite& each) { return each.outcome->state == ProbeState::Ok; };
  if (!areNamed) {
    return std::any_of(sites.begin(), sites.end(),
                       [&](const ProbedSite& each) {
                         return each.outcome && each.place.number != 0 && isOk(each);
                       })
               ? exitSuccess
               : exitNegative;
  }
  return std::all_of(sites.begin(), sites.end(),
                     [&](const ProbedSite& each) { return !each.outcome || isOk(each); })
             ? exitSuccess
             : exitNegative;
}

}  // namespace

int runProbe(Context& context, const ProbeOptions& options) {
  const ProbeLimits limits = probeLimitsOf(options);
  for (const std::string& site : options.sites) requireFilterKeys({{site}, ""});
  const ListToProbe read = readListToProbe(context, options.file);
  const std::vector<SearchPlace> places = searchOrder(read.list.sites.get());
  requireSitesToProbe(read.list, places, options);
  const ProxyChoice proxy(read.list.sites.get());
  std::vector<SitePlan> plans;
  std::vector<std::size_t> planned;  // the place of each plan
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (!isChosenToProbe(places[i], options)) continue;
    plans.push_back(planFor(*places[i].site, proxy, read.lost));
    planned.push_back(i);
  }
  std::vector<ProbeOutcome> outcomes;
  if (!plans.empty()) {
    Progress progress(wantsProgress(context), plans.size(), plans.size() == 1 ? "site" : "sites");
    outcomes = probeSites(plans, read.list.certificates, limits,
                          [&](std::size_t done) { progress.show(done); });
  }
  std::vector<ProbedSite> sites;
  for (const SearchPlace& place : places) sites.push_back({place, nullptr, nullptr});
  for (std::size_t i = 0; i < plans.size(); ++i) {
    sites[planned[i]].plan = &plans[i];
    sites[planned[i]].outcome = &outcomes[i];
  }
  context.report = probeReport(reportedName(read.list.path), sites);
  return statusOfProbe(sites, !options.sites.empty());
}

}  // namespace tool
