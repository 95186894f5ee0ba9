#include <filesystem>
#include <iostream>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/edit/list_editor.h"

namespace tool {
namespace {

struct DeriveOptions {
  std::string source;
  std::string target;
};

int derive(Context& context, const DeriveOptions& options) {
  refuseStandardStream(options.source, "SOURCE_DIR");
  refuseStandardStream(options.target, "TARGET_DIR");
  const std::wstring target = wide(options.target);
  const std::string written =
      (options.target.empty() ? options.source : options.target) + "/ServerSiteList.xml";
  const ListLock lock(context, written, ListUse::Change);
  serveNoAgent(context);
  if (!sitehlp::CSitesHelper::createServerSiteListFromSiteList(
          wide(options.source).c_str(), options.target.empty() ? nullptr : target.c_str())) {
    failIfNotEditable(options.source + "/SiteList.xml");
    failIfOverLimit(options.source + "/SiteList.xml");
    throw libraryFailure(written, sitehlp::c_errorWrite);
  }
  std::cerr << "sitelist: wrote " << shown(written) << '\n';
  return exitSuccess;
}

}  // namespace

void addDeriveServerList(Command& app, Context& context) {
  Command command =
      app.add_subcommand("derive-server-list", "Derive ServerSiteList.xml from SiteList.xml");
  const auto options = std::make_shared<DeriveOptions>();
  command.add_option("SOURCE_DIR", options->source, "The directory of SiteList.xml")
      .required()
      .type_name("");
  command
      .add_option("TARGET_DIR", options->target,
                  "The directory of ServerSiteList.xml\n(default: SOURCE_DIR)")
      .type_name("");
  command.footer(
      "Copies SiteList.xml without the sites of the kinds http, ftp, unc and local that\n"
      "have exactly Local=\"1\". All other elements, attributes, comments and text are\n"
      "unchanged.\n"
      "\n"
      "Examples:\n"
      "  sitelist derive-server-list /Library/Korvel/orb/etc\n"
      "  sitelist derive-server-list lists out\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return derive(context, *options); };
  });
}

}  // namespace tool
