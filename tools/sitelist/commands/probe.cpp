#include <memory>

#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/probe/run_probe.h"

namespace tool {

void addProbe(Command& app, Context& context) {
  Command command = app.add_subcommand("probe", "Try sites over the network, as the agent would");
  const auto options = std::make_shared<ProbeOptions>();
  command
      .add_option("SITE", options->sites,
                  "Only sites whose kind, type or name matches; * matches any\n"
                  "characters and ? matches one. If SITE begins with kind=,\n"
                  "type= or name=, only that field is compared. (default: the\n"
                  "sites that the agent tries)")
      .type_name("")
      .completes(Completion::Site);
  command.add_option("--file", options->file, "The list (default: the agent's own list)")
      .type_name("FILE")
      .not_empty()
      .completes(Completion::File);
  command.add_flag("--all", options->all, "Also try mirrors and disabled sites");
  command
      .add_option("--timeout", options->timeout,
                  "Longest time for each site, from 1 to 3600 (default: 10)")
      .type_name("SECONDS")
      .not_empty();
  command
      .add_option("--jobs", options->jobs,
                  "Sites that are tried at the same time, from 1 to 64\n(default: 8)")
      .type_name("NUMBER")
      .not_empty();
  command.footer(
      "This is the only command that uses the network. It changes nothing.\n"
      "\n"
      "Each site is reached in the way that `sitelist explain` shows, and with the\n"
      "login of the list. Redirects are not followed. A proxy in an environment\n"
      "variable and files such as .netrc have no effect.\n"
      "  server, agent, http   gets the directory of the site\n"
      "  ftp                   logs in and lists the directory\n"
      "  unc                   connects to port 445; does not open the share\n"
      "  local                 reads the directory as the current user\n"
      "If a site has a port for secure connections, that port must show a certificate\n"
      "that a CA certificate of the list has issued. A site is ok only if all its ports\n"
      "are. A server that does not list its directory (status 403) is ok.\n"
      "\n"
      "The exit status is 0 if the agent has a site that is ok, otherwise 1. With SITE,\n"
      "it is 0 if all these sites are ok.\n"
      "\n"
      "Examples:\n"
      "  sitelist probe\n"
      "  sitelist probe 'Main server' --timeout 3\n"
      "  sitelist probe kind=ftp --file incoming/SiteList.xml --format json\n"
      "  sitelist probe --all --format csv > sites.csv\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return runProbe(context, *options); };
  });
}

}  // namespace tool
