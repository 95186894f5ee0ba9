#include <algorithm>
#include <memory>
#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

constexpr const char* c_policyPrefix = "policy.";

struct GetOptions {
  std::string field;
  std::string file;
  std::string site;
  std::string kind;
  bool showSecrets = false;
};

[[noreturn]] void failUnknownField(const std::string& field, const std::vector<std::string>& names,
                                   const std::string& known) {
  throw Failure(exitUsage, "unknown field \"" + shown(field) + "\"" + suggestion(field, names),
                "use one of " + known);
}

Failure missing(const SiteList& list, const std::string& what, const std::string& advice) {
  return failureAt(list.path, exitNotFound, what, advice);
}

const tag_Site& findSite(const SiteList& list, const GetOptions& options) {
  const tag_Site* found = nullptr;
  std::string kinds;
  std::size_t count = 0;
  bool areOfOneKind = true;
  for (const tag_Site* site = list.sites.get(); site; site = site->pNext) {
    if (narrow(nameOf(*site)) != options.site) continue;
    if (!options.kind.empty() && options.kind != kindOf(*site)) continue;
    if (!found) found = site;
    areOfOneKind = areOfOneKind && std::string(kindOf(*site)) == kindOf(*found);
    kinds += (++count == 1 ? "" : ", ") + std::string(kindOf(*site));
  }
  if (count > 1) {
    throw failureAt(
        list.path, exitConflict,
        "several sites are named \"" + shown(options.site) + "\": " + kinds,
        areOfOneKind ? "see them all with `sitelist show --json`" : "choose one with --kind KIND");
  }
  if (!found) {
    throw missing(list, missingSite(options.site, options.kind) + similarSites(list, options.site),
                  "list all sites with `sitelist show`");
  }
  return *found;
}

bool isSecret(const tag_Site& site, const std::string& name) {
  const std::vector<Field> fields = fieldsOf(site);
  return std::any_of(fields.begin(), fields.end(),
                     [&](const Field& field) { return field.isSecret && field.name == name; });
}

Scalar siteValue(const SiteList& list, const GetOptions& options) {
  const std::vector<std::string>& names = siteFieldNames();
  if (std::find(names.begin(), names.end(), options.field) == names.end()) {
    std::string known;
    for (const std::string& name : names) known += (known.empty() ? "" : ", ") + name;
    failUnknownField(options.field, names, known);
  }
  const tag_Site& site = findSite(list, options);
  const Record record = recordOf(site, options.showSecrets);
  if (isSecret(site, options.field)) warnOfUnreadPasswords(list.path, options.file.empty());
  if (const Scalar* const value = find(record, options.field)) return *value;
  throw missing(
      list,
      std::string("a site of kind ") + kindOf(site) + " has no field \"" + options.field + "\"",
      "see its fields with `sitelist show --json`");
}

Scalar policyValue(const SiteList& list, const std::string& name) {
  const auto setting = list.policySettings.find(wide(name));
  if (setting != list.policySettings.end()) return narrow(setting->second);
  throw missingPolicy(list, name);
}

Scalar listValue(const SiteList& list, const GetOptions& options) {
  const std::string prefix = c_policyPrefix;
  if (options.field.rfind(prefix, 0) == 0) {
    return policyValue(list, options.field.substr(prefix.size()));
  }
  const Record facts = listFacts(list);
  const Scalar* const value = find(facts, options.field);
  if (!value || options.field == "file") {
    failUnknownField(options.field, {"globalVersion", "localVersion", "type", "fipsMode"},
                     "globalVersion, localVersion, type, fipsMode, policy.NAME, or a field of a "
                     "site with --site NAME");
  }
  if (!std::holds_alternative<std::monostate>(*value)) return *value;
  throw missing(list, "the list has no FIPS mode",
                "print the versions, type and FIPS mode with `sitelist versions`");
}

std::vector<std::string> valueNames() {
  std::vector<std::string> names = {"globalVersion", "localVersion", "type", "fipsMode",
                                    c_policyPrefix};
  for (const std::string& name : siteFieldNames()) {
    if (name != "type") names.push_back(name);
  }
  return names;
}

int get(Context& context, const GetOptions& options) {
  const AgentForReading agent(context, options.file);
  const SiteList list = readWholeSiteList(agent.path());
  const Scalar value = options.site.empty() ? listValue(list, options) : siteValue(list, options);
  Report report;
  report.facts = {{"file", reportedName(list.path)},
                  {"site", options.site.empty() ? Scalar() : Scalar(options.site)},
                  {"field", options.field},
                  {"value", value}};
  report.table = [value](std::ostream& out, const Screen& screen) {
    out << (screen.isTerminal ? shown(textOf(value)) : textOf(value)) << '\n';
  };
  context.report = std::move(report);
  return exitSuccess;
}

}  // namespace

void addGet(Command& app, Context& context) {
  Command command =
      app.add_subcommand("get", "Print one value of a list, or of a site, for scripts");
  const auto options = std::make_shared<GetOptions>();
  command
      .add_option("FIELD", options->field,
                  "globalVersion, localVersion, type, fipsMode, policy.NAME;\n"
                  "with --site, any field of the site in the JSON form")
      .required()
      .type_name("")
      .suggests(valueNames);
  command.add_option("FILE", options->file, "A site list (default: the agent's own list)")
      .type_name("");
  command.add_option("--site", options->site, "Print a value of the site with this name")
      .type_name("NAME")
      .not_empty()
      .completes(Completion::Site);
  command
      .add_option("--kind", options->kind, "The kind of the site, if several sites have this name")
      .type_name("KIND")
      .choices(kindsInOutput());
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print a clear password instead of ********");
  command.footer(
      "Prints the bare value and a line end. A flag is true or false. On a terminal,\n"
      "control characters and invisible ones are printed as \\uXXXX.\n"
      "\n"
      "Examples:\n"
      "  sitelist get globalVersion\n"
      "  sitelist get policy.OverwriteClientSites incoming/SiteList.xml\n"
      "  sitelist get server --site 'Main server'\n"
      "  sitelist get httpProxyServer --site 'Site proxy' --kind proxy\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return get(context, *options); };
  });
}

}  // namespace tool
