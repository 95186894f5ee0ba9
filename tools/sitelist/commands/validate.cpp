#include <algorithm>
#include <iostream>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/log_record.h"
#include "tools/sitelist/rules.h"
#include "tools/sitelist/site_list.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

struct Options {
  std::vector<std::string> files;
  bool managed = false;
  bool unmanaged = false;
};

void printFault(const std::string& file, const std::string& rule, const std::string& text) {
  std::cout << shown(file) << ": " << rule << ": " << text << '\n';
}

int reportUnreadable(const std::string& file, int result) {
  if (result == sitehlp::c_errorFileMissing) {
    printFault(file, "missing-file", "the file does not exist");
    return exitFile;
  }
  if (const auto fault = findDocumentFault(file)) {
    const std::string place =
        fault->line == 0 ? ""
                         : std::to_string(fault->line) + ":" + std::to_string(fault->column) + ": ";
    printFault(file, fault->rule, place + fault->reason);
    return fault->status;
  }
  if (result == sitehlp::c_errorGeneral) {
    printFault(file, "unknown-site", "the last site of the list is of no known kind");
    return exitDocument;
  }
  throw libraryFailure(file, result);
}

int validateOne(const std::string& file, bool checkServer) {
  clearLogRecords();
  sitehlp::CSitesHelper helper(true);
  sitehlp::tag_Site* list = nullptr;
  const int read = helper.ReadSiteList(wide(file), &list, false);
  const Sites sites(list);
  if (read != 0) return reportUnreadable(file, read);
  const int result = helper.SourceSiteListCheck(sites.get(), checkServer);
  if (result == 0) {
    std::cout << shown(file) << ": valid\n";
    return exitSuccess;
  }
  const std::vector<BrokenRule> broken = brokenRules();
  if (broken.empty()) throw libraryFailure(file, result);
  for (const BrokenRule& rule : broken) printFault(file, rule.name, rule.text);
  return exitNegative;
}

int validate(Context& context, const Options& options) {
  if (options.managed && options.unmanaged) {
    throw Failure(exitUsage,
                  "--managed and --unmanaged exclude each other\n  next: give at most one of them");
  }
  const PrivateAgent agent(context, PrivateAgent::Detached);
  int status = exitSuccess;
  for (const std::string& file : options.files) {
    status = std::max(status, validateOne(file, !options.unmanaged));
  }
  clearLogRecords();
  return status;
}

}  // namespace

void addValidate(Command& app, Context& context) {
  Command command = app.add_subcommand("validate", "Check whether site lists can be imported");
  const auto options = std::make_shared<Options>();
  command.add_option("FILE", options->files, "Site lists").required().type_name("");
  command.add_flag("--managed", options->managed,
                   "Check as an agent under central management does,\nmanagement server included "
                   "(the default)");
  command.add_flag("--unmanaged", options->unmanaged,
                   "Check as an agent does that is not under central\nmanagement");
  command.footer(
      "Needs no agent, and writes nothing. Each fault is one line, FILE: RULE: TEXT.\n"
      "The rules:\n" +
      ruleHelp() +
      "Faults of the document itself, which leave nothing to check:\n"
      "  missing-file, unreadable-file, invalid-encoding, over-limit,\n"
      "  not-well-formed (with LINE:COLUMN), unknown-site (the last site's element is\n"
      "  of no known kind)\n"
      "Of several lists the exit status is the highest.\n\n"
      "Examples:\n"
      "  sitelist validate incoming/SiteList.xml\n"
      "  sitelist validate --unmanaged lists/*.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return validate(context, *options); };
  });
}

}  // namespace tool
