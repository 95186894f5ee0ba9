#include <memory>
#include <ostream>

#include "sitehlp/list.h"
#include "sitehlp/query/servers_by_order.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct ServersOptions {
  ListArguments lists;
  bool all = false;
  bool nonSecurePort = false;
};

// A value may have a ";", so the texts that the library has joined cannot be taken apart.
struct ServerTexts {
  Texts names;
  Texts hosts;
  Texts addresses;
  Texts computers;
  Texts versions;
};

void addEach(const sitehlp::tag_HttpSite& server, ServerTexts& texts) {
  texts.names.each.push_back(narrow(server.szName));
  texts.hosts.each.push_back(narrow(server.szServer));
  texts.addresses.each.push_back(narrow(sitehlp::plainAddress(server.szServerIP)));
  texts.computers.each.push_back(narrow(server.szServerName));
  texts.versions.each.push_back(narrow(server.szVersion));
}

int portOf(const sitehlp::tag_HttpSite& server, bool nonSecurePort) {
  const bool isPlain = server.uSecurePort == 0 || nonSecurePort;
  return static_cast<int>(isPlain ? server.uServerPort : server.uSecurePort);
}

// Calls `use` for the first management server of the list or, with --all, for each one by order.
template <typename Use>
void eachServer(const std::string& path, bool all, Use use) {
  const SiteList list = readWholeSiteList(path);
  sitehlp::CSitesHelper helper(true);
  sitehlp::ListOwner found;
  helper.GetVestaSite(list.sites.get(), found.out());
  if (!found.get()) throw libraryFailure(path, sitehlp::c_errorNoServerSite);
  for (const auto& [order, site] : sitehlp::sitesByOrder(found.get())) {
    use(site->http);
    if (!all) break;
  }
}

// Takes the texts and the port from the cached list of the class, as a process of the agent does.
int readOwn(Context& context, const ServersOptions& options, ServerTexts& texts) {
  const AgentForReading agent(context, "", ListUse::ReadCached);
  const std::string& path = agent.path();
  sitehlp::CSitesHelper helper(wide(path));
  std::wstring names;
  std::wstring hosts;
  std::wstring addresses;
  std::wstring computers;
  std::wstring versions;
  constexpr int noPort = -1;
  int port = noPort;
  const int result = helper.GetPYXServerInfo(names, hosts, addresses, computers, port, versions,
                                             options.all, options.nonSecurePort);
  if (result != 0) throw libraryFailure(path, result);
  requireSiteList(path);
  if (port == noPort) throw libraryFailure(path, sitehlp::c_errorNoServerSite);
  texts = {{{}, narrow(names)},
           {{}, narrow(hosts)},
           {{}, narrow(addresses)},
           {{}, narrow(computers)},
           {{}, narrow(versions)}};
  const SiteList list = readSiteList(path);
  sitehlp::ListOwner found;
  helper.GetVestaSite(list.sites.get(), found.out());
  for (const auto& [order, site] : sitehlp::sitesByOrder(found.get())) {
    addEach(site->http, texts);
    if (!options.all) break;
  }
  return port;
}

void join(Texts& texts) {
  for (const std::string& text : texts.each) {
    if (&text != texts.each.data()) texts.joined += ';';
    texts.joined += text;
  }
}

int readFile(Context& context, const ServersOptions& options, ServerTexts& texts) {
  const AgentForReading agent(context, options.lists.only());
  int port = 0;
  eachServer(agent.path(), options.all, [&](const sitehlp::tag_HttpSite& server) {
    addEach(server, texts);
    port = portOf(server, options.nonSecurePort);
  });
  for (Texts* each :
       {&texts.names, &texts.hosts, &texts.addresses, &texts.computers, &texts.versions}) {
    join(*each);
  }
  return port;
}

int serversOfMany(Context& context, const ServersOptions& options) {
  ManyLists many;
  many.layout.rowsName = "managementServers";
  many.layout.rowName = "managementServer";
  many.layout.columns = {"name", "server", "ipAddress", "computerName", "version", "port"};
  many.layout.tableColumns = {"name", "server", "port", "ipAddress", "version"};
  many.read = [options](const GivenList& list, ListRows& rows) {
    eachServer(list.path, options.all, [&](const sitehlp::tag_HttpSite& server) {
      rows.add({{"name", narrow(server.szName)},
                {"server", narrow(server.szServer)},
                {"ipAddress", narrow(sitehlp::plainAddress(server.szServerIP))},
                {"computerName", narrow(server.szServerName)},
                {"version", narrow(server.szVersion)},
                {"port", std::int64_t{portOf(server, options.nonSecurePort)}}});
    });
    return exitSuccess;
  };
  serveDetachedAgent(context);
  return readManyLists(context, options.lists, many);
}

int servers(Context& context, const ServersOptions& options) {
  if (areMany(options.lists)) return serversOfMany(context, options);
  ServerTexts texts;
  const int port = options.lists.only().empty() ? readOwn(context, options, texts)
                                                : readFile(context, options, texts);
  Report report;
  report.facts = {{"names", texts.names},           {"servers", texts.hosts},
                  {"ipAddresses", texts.addresses}, {"computerNames", texts.computers},
                  {"versions", texts.versions},     {"port", std::int64_t{port}}};
  report.table = [facts = report.facts](std::ostream& out, const Screen&) {
    static constexpr const char* labels[] = {"names           ", "servers         ",
                                             "IP addresses    ", "computer names  ",
                                             "versions        ", "port            "};
    for (std::size_t i = 0; i < facts.size(); ++i) {
      out << labels[i] << shown(textOf(facts[i].second)) << '\n';
    }
  };
  context.report = std::move(report);
  return exitSuccess;
}

}  // namespace

void addServers(Command& app, Context& context) {
  Command command =
      app.add_subcommand("servers", "Print the address of the management server in site lists");
  const auto options = std::make_shared<ServersOptions>();
  addLists(command, options->lists);
  command.add_flag(
      "--all", options->all,
      "All management servers, sorted by order and separated by\nsemicolons. The port is that "
      "of the last server.");
  command.add_flag("--non-secure-port", options->nonSecurePort,
                   "The plain port, even if there is a secure one");
  command.footer(std::string(c_manyListsHelp) +
                 "With --all, each management server then has a row of its own.\n"
                 "\n"
                 "Examples:\n"
                 "  sitelist servers\n"
                 "  sitelist servers --all --non-secure-port\n"
                 "  sitelist servers --all --format csv fleet/\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return servers(context, *options); };
  });
}

}  // namespace tool
