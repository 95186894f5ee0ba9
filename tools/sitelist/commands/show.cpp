#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/proxy_text.h"
#include "tools/sitelist/site_list.h"
#include "tools/sitelist/table.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

struct Options {
  std::string file;
  bool json = false;
  bool showSecrets = false;
};

std::wstring withPort(const wchar_t* host, unsigned port, unsigned securePort) {
  if (!*host) return L"";
  std::wstring text = std::wstring(host) + L":" + std::to_wstring(port);
  if (securePort != 0) text += L" (" + std::to_wstring(securePort) + L")";
  return text;
}

std::wstring addressOf(const tag_Site& site) {
  switch (site.eSiteKind) {
    case sitehlp::SITE_KIND_HTTP:
      return withPort(site.http.szServer, site.http.uServerPort, site.http.uSecurePort);
    case sitehlp::SITE_KIND_FTP:
      return withPort(site.ftp.szServer, site.ftp.uServerPort, site.ftp.uSecurePort);
    case sitehlp::SITE_KIND_UNC:
      return site.unc.szServer;
  }
  return L"";
}

std::wstring pathOf(const tag_Site& site) {
  switch (site.eSiteKind) {
    case sitehlp::SITE_KIND_HTTP:
      return site.http.szRelativePath;
    case sitehlp::SITE_KIND_FTP:
      return site.ftp.szRelativePath;
    case sitehlp::SITE_KIND_LOCAL:
      return site.local.szRelativePath;
  }
  const std::wstring share = site.unc.szShareName;
  const std::wstring path = site.unc.szRelativePath;
  return share.empty() || path.empty() ? share + path : share + L"\\" + path;
}

bool hasSecurePort(const tag_Site& site) {
  return (site.eSiteKind == sitehlp::SITE_KIND_HTTP && site.http.uSecurePort != 0) ||
         (site.eSiteKind == sitehlp::SITE_KIND_FTP && site.ftp.uSecurePort != 0);
}

std::vector<const tag_Site*> inSearchOrder(const tag_Site* list) {
  std::vector<const tag_Site*> sites;
  for (; list; list = list->pNext) {
    if (list->eSiteKind != sitehlp::SITE_KIND_PROXY) sites.push_back(list);
  }
  std::stable_sort(sites.begin(), sites.end(),
                   [](const tag_Site* a, const tag_Site* b) { return a->iOrder < b->iOrder; });
  return sites;
}

// A mirror has no place in the search order, and 65535 stands for a fallback's missing one.
std::wstring orderOf(const tag_Site& site) {
  if (site.bMirror && site.iOrder == 0) return L"";
  return site.iOrder == 65535 ? L"last" : std::to_wstring(site.iOrder);
}

void printTable(const SiteList& list, bool showSecrets) {
  const std::vector<const tag_Site*> sites = inSearchOrder(list.sites.get());
  Table table({L"ORDER", L"KIND", L"TYPE", L"NAME", L"ADDRESS", L"PATH", L"STATE"});
  for (const tag_Site* site : sites) {
    table.add({orderOf(*site), wide(kindOf(*site)), site->szType, nameOf(*site), addressOf(*site),
               pathOf(*site), site->bEnabled ? L"on" : L"off"});
  }
  if (!sites.empty()) table.print(std::cout);
  if (std::any_of(sites.begin(), sites.end(),
                  [](const tag_Site* site) { return hasSecurePort(*site); })) {
    std::cout << "\nA port in brackets is the one for secure connections.\n";
  }
  bool isFirst = sites.empty();
  for (const tag_Site* site = list.sites.get(); site; site = site->pNext) {
    if (site->eSiteKind != sitehlp::SITE_KIND_PROXY) continue;
    std::cout << (isFirst ? "" : "\n");
    printProxy(std::cout, site->proxy, showSecrets);
    isFirst = false;
  }
}

nlohmann::ordered_json valueOf(const Field& field, bool showSecrets) {
  if (const bool* flag = std::get_if<bool>(&field.value)) return *flag;
  if (const std::int64_t* number = std::get_if<std::int64_t>(&field.value)) return *number;
  const wchar_t* const text = std::get<const wchar_t*>(field.value);
  return field.isSecret && *text && !showSecrets ? c_mask : narrow(text);
}

void printJson(const SiteList& list, bool showSecrets) {
  nlohmann::ordered_json sites = nlohmann::ordered_json::array();
  for (const tag_Site* site = list.sites.get(); site; site = site->pNext) {
    nlohmann::ordered_json object = {{"kind", kindOf(*site)}};
    for (const Field& field : fieldsOf(*site)) object[field.name] = valueOf(field, showSecrets);
    sites.push_back(std::move(object));
  }
  nlohmann::ordered_json document = {{"file", narrow(wide(list.path))},
                                     {"result", list.result},
                                     {"globalVersion", narrow(list.globalVersion)},
                                     {"localVersion", narrow(list.localVersion)},
                                     {"type", narrow(list.type)}};
  document["fipsMode"] = nullptr;
  if (list.fipsMode) document["fipsMode"] = narrow(*list.fipsMode);
  document["sites"] = std::move(sites);
  // Escaped down to ASCII: what a document holds does nothing to a terminal.
  std::cout << document.dump(2, ' ', true) << '\n';
}

int show(const Context& context, const Options& options) {
  const AgentForReading agent(context, options.file);
  const SiteList list = readSiteList(agent.path());
  if (options.json) {
    printJson(list, options.showSecrets);
  } else {
    printTable(list, options.showSecrets);
  }
  if (list.result != 0) throw libraryFailure(agent.path(), list.result);
  if (!list.sites) {
    std::cerr << "sitelist: " << shown(agent.path()) << ": the list has no sites\n";
    return exitNegative;
  }
  return exitSuccess;
}

}  // namespace

void addShow(Command& app, Context& context) {
  Command command =
      app.add_subcommand("show", "Print the sites in search order, then the proxy settings");
  const auto options = std::make_shared<Options>();
  command.add_option("FILE", options->file, "A site list (default: the agent's own)").type_name("");
  command.add_flag("--json", options->json,
                   "One JSON object: the result, the versions, and in \"sites\"\nevery field of "
                   "every record, in the order of the list");
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print clear passwords instead of ********");
  command.footer(
      "Examples:\n"
      "  sitelist show\n"
      "  sitelist show incoming/SiteList.xml\n"
      "  sitelist show --json | jq '.sites[] | select(.enabled).name'\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return show(context, *options); };
  });
}

}  // namespace tool
