#include <memory>

#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/probe/run_probe.h"

namespace tool {

void addProbe(Command& app, Context& context) {
  Command command = app.add_subcommand("probe", "Find out whether the agent can reach its sites");
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
      "Only this command uses the network. It changes no file.\n"
      "\n"
      "Each site is reached in the way that `sitelist explain` shows, and with the\n"
      "login of the list. Redirects are not followed. A proxy in an environment\n"
      "variable and files such as .netrc have no effect.\n"
      "  server, agent, http   gets the directory of the site\n"
      "  ftp                   logs in and lists the directory\n"
      "  unc                   connects to port 445; does not open the share\n"
      "  local                 reads the directory as the current user\n"
      "A port for secure connections must show a certificate that the certificates of\n"
      "the list confirm. A site is ok only if every probed port is ok. A server that\n"
      "does not list its directory (status 403) is ok.\n"
      "\n"
      "The exit status is 0 if a site that the agent tries is ok, and 1 if none is.\n"
      "With SITE, it is 1 if one of the named sites is not ok.\n"
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
