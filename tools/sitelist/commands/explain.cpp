#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/explain/given_host.h"
#include "tools/sitelist/explain/proxy_choice.h"
#include "tools/sitelist/explain/search_order.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

const std::vector<std::string> c_siteColumns = {"place",  "tried",   "kind",       "name",
                                                "order",  "address", "path",       "local",
                                                "reason", "proxy",   "proxyReason"};
const std::vector<std::string> c_routeColumns = {"protocol", "bypassesProxy", "proxy", "reason"};

struct ExplainOptions {
  ListArguments lists;
  std::string host;
};

Record siteRow(const SearchPlace& place, const ProxyChoice& proxy) {
  const sitehlp::tag_Site& site = *place.site;
  const Route route = proxy.routeTo(site);
  return {{"place", place.number == 0 ? Scalar() : Scalar(std::int64_t{place.number})},
          {"tried", place.number != 0},
          {"kind", kindOf(site)},
          {"name", narrow(nameOf(site))},
          {"order", std::int64_t{site.iOrder}},
          {"address", narrow(addressOf(site))},
          {"path", narrow(pathOf(site))},
          {"local", site.bLocal != 0},
          {"reason", place.reason},
          {"proxy", orNull(route.proxy)},
          {"proxyReason", route.reason}};
}

std::string throughOf(const std::string& proxy, const std::string& reason) {
  return (proxy.empty() ? "directly: " : "through " + proxy + ": ") + reason;
}

void printSite(std::ostream& out, const Screen& screen, const Record& row) {
  const bool isTried = shownText(row, "tried") == "true";
  std::string where = shownText(row, "address");
  if (!shownText(row, "path").empty())
    where += (where.empty() ? "" : "  ") + shownText(row, "path");
  const std::string name = shownText(row, "kind") + "  " +
                           (shownText(row, "name").empty() ? "(no name)" : shownText(row, "name"));
  out << (isTried ? shownText(row, "place") + ". " : "-  ")
      << screen.styled(isTried ? Style::Heading : Style::Dim, name)
      << (where.empty() ? "" : "  " + where) << "\n     why    " << shownText(row, "reason")
      << '\n';
  if (!isTried) return;
  if (shownText(row, "local") == "true") {
    out << "     local  only this agent uses it\n";
  }
  out << "     goes   " << throughOf(shownText(row, "proxy"), shownText(row, "proxyReason"))
      << '\n';
}

void printProxySettings(std::ostream& out, const Screen& screen, const Record& facts) {
  const std::string mode = shownText(facts, "proxyMode");
  out << '\n' << screen.styled(Style::Heading, "Proxy") << '\n';
  if (mode == "none") {
    out << "  none: every site is reached directly\n";
    return;
  }
  if (mode == "system") {
    out << "  the system's own settings\n";
  } else {
    const auto line = [&](const char* label, const char* name) {
      out << label << (shownText(facts, name).empty() ? "none" : shownText(facts, name)) << '\n';
    };
    line("  HTTP      ", "httpProxy");
    line("  FTP       ", "ftpProxy");
    line("  excluded  ", "exclusions");
    out << "  local addresses "
        << (shownText(facts, "bypassLocal") == "true" ? "bypass the proxy\n"
                                                      : "use the proxy as well\n");
  }
  if (shownText(facts, "userMayChange") == "true") out << "  the user may change these settings\n";
}

void printSearchOrder(std::ostream& out, const Screen& screen, const Record& facts,
                      const std::vector<Record>& rows) {
  const bool isAnyTried = !rows.empty() && shownText(rows.front(), "tried") == "true";
  out << (isAnyTried ? "The agent tries, in this order:\n" : "The agent has no site to try.\n");
  bool isFirstOther = true;
  for (const Record& row : rows) {
    if (shownText(row, "tried") != "true" && isFirstOther) {
      out << "\nNot tried:\n";
      isFirstOther = false;
    }
    printSite(out, screen, row);
  }
  printProxySettings(out, screen, facts);
}

Record factsOf(const SiteList& list, const ProxyChoice& proxy) {
  Texts exclusions;
  for (const std::wstring& host : proxy.exclusions()) {
    exclusions.each.push_back(narrow(host));
    exclusions.joined += (exclusions.joined.empty() ? "" : ";") + exclusions.each.back();
  }
  const sitehlp::tag_ProxySite* const settings = proxy.settings();
  return {{"file", reportedName(list.path)},
          {"proxyMode", proxy.mode()},
          {"httpProxy", orNull(proxy.httpProxy())},
          {"ftpProxy", orNull(proxy.ftpProxy())},
          {"exclusions", exclusions},
          {"bypassLocal", settings && settings->bBypassLocalAddress},
          {"userMayChange", settings && settings->bAllowUserToConfigureProxy}};
}

Report explainSites(const SiteList& list, const ProxyChoice& proxy) {
  Report report;
  report.facts = factsOf(list, proxy);
  report.rowsName = "sites";
  report.rowName = "site";
  report.columns = c_siteColumns;
  for (const SearchPlace& place : searchOrder(list.sites.get())) {
    report.rows.push_back(siteRow(place, proxy));
  }
  report.table = [facts = report.facts, rows = report.rows](std::ostream& out,
                                                            const Screen& screen) {
    printSearchOrder(out, screen, facts, rows);
  };
  return report;
}

Record routeRow(const char* protocol, const Route& route) {
  return {{"protocol", protocol},
          {"bypassesProxy", route.isDirect},
          {"proxy", orNull(route.proxy)},
          {"reason", route.reason}};
}

int statusFor(const ProxyChoice& proxy, const GivenHost& host) {
  const Route route = host.isFtp ? proxy.routeOverFtp(host.name) : proxy.routeOverHttp(host.name);
  return route.isDirect ? exitSuccess : exitNegative;
}

Report explainHost(const SiteList& list, const ProxyChoice& proxy, const GivenHost& given) {
  const std::string host = narrow(given.name);
  Report report;
  report.facts = factsOf(list, proxy);
  report.facts.emplace_back("host", host);
  report.rowsName = "routes";
  report.rowName = "route";
  report.columns = c_routeColumns;
  report.rows = {routeRow("http", proxy.routeOverHttp(given.name)),
                 routeRow("ftp", proxy.routeOverFtp(given.name))};
  report.table = [rows = report.rows, host](std::ostream& out, const Screen&) {
    for (const Record& row : rows) {
      out << shown(host)
          << (shownText(row, "protocol") == "http" ? "  over HTTP  " : "  over FTP   ")
          << throughOf(shownText(row, "proxy"), shownText(row, "reason")) << '\n';
    }
  };
  return report;
}

int addSiteRows(const SiteList& list, const ProxyChoice& proxy, ListRows& rows) {
  bool isAnyTried = false;
  for (const SearchPlace& place : searchOrder(list.sites.get())) {
    const bool isTried = place.number != 0;
    isAnyTried = isAnyTried || isTried;
    rows.add(siteRow(place, proxy), isTried ? Style::Plain : Style::Dim);
  }
  return isAnyTried ? exitSuccess : exitNegative;
}

int explainMany(Context& context, const ExplainOptions& options, const GivenHost& host) {
  const bool isOfHost = !options.host.empty();
  ManyLists many;
  many.layout.rowsName = isOfHost ? "routes" : "sites";
  many.layout.rowName = isOfHost ? "route" : "site";
  many.layout.columns = isOfHost ? c_routeColumns : c_siteColumns;
  many.layout.tableColumns =
      isOfHost ? std::vector<std::string>{"protocol", "proxy", "reason"}
               : std::vector<std::string>{"place", "kind", "name", "proxy", "reason"};
  many.read = [&](const GivenList& given, ListRows& rows) {
    const SiteList list = readWholeSiteList(given.path);
    const ProxyChoice proxy(list.sites.get());
    if (!isOfHost) return addSiteRows(list, proxy, rows);
    rows.add(routeRow("http", proxy.routeOverHttp(host.name)));
    rows.add(routeRow("ftp", proxy.routeOverFtp(host.name)));
    return statusFor(proxy, host);
  };
  if (isOfHost) {
    many.facts = [&](bool) { return Record{{"host", narrow(host.name)}}; };
  }
  serveDetachedAgent(context);
  return readManyLists(context, options.lists, many);
}

int explain(Context& context, const ExplainOptions& options) {
  GivenHost host;
  if (!options.host.empty()) host = parseHost(options.host);
  if (areMany(options.lists)) return explainMany(context, options, host);
  const AgentForReading agent(context, options.lists.only());
  const SiteList list = readWholeSiteList(agent.path());
  const ProxyChoice proxy(list.sites.get());
  if (!options.host.empty()) {
    context.report = explainHost(list, proxy, host);
    return statusFor(proxy, host);
  }
  context.report = explainSites(list, proxy);
  const std::vector<Record>& rows = context.report->rows;
  return !rows.empty() && shownText(rows.front(), "tried") == "true" ? exitSuccess : exitNegative;
}

}  // namespace

void addExplain(Command& app, Context& context) {
  Command command =
      app.add_subcommand("explain", "Show which sites the agent tries, in which order, and why");
  const auto options = std::make_shared<ExplainOptions>();
  addLists(command, options->lists);
  command
      .add_option("--host", options->host,
                  "Show only whether the agent reaches this host without a\n"
                  "proxy. HOST is a name, an address, NAME:PORT or a URL. The\n"
                  "exit status is 0 if it does so over HTTP (over FTP for an\n"
                  "ftp URL), otherwise 1.")
      .type_name("HOST")
      .not_empty();
  command.footer(
      "Sites are tried in ascending order. If two have the same order, the one that is\n"
      "first in the list is tried first. Disabled sites and mirrors are not tried. A\n"
      "fallback without an order has the order 65535.\n"
      "\n"
      "The first proxy settings of the list apply. UseIEConfig takes precedence over\n"
      "named proxies.\n"
      "\n"
      "An exclusion is a host name in which * matches any characters and ? matches one.\n"
      "It is compared with the host of a site, not with its other names. Case is\n"
      "ignored. A local address is a name without a dot, or this machine. The port and\n"
      "the path of --host do not matter.\n"
      "\n" +
      std::string(c_manyListsHelp) +
      "The exit status is then the highest of all lists.\n"
      "\n"
      "Examples:\n"
      "  sitelist explain\n"
      "  sitelist explain incoming/SiteList.xml --format csv\n"
      "  sitelist explain --host tokyo.example\n"
      "  sitelist explain --host https://tokyo.example:8443/pub\n"
      "  sitelist explain --host tokyo.example fleet/\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return explain(context, *options); };
  });
}

}  // namespace tool
