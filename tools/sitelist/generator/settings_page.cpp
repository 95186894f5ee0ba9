#include <sstream>

#include "host/agent.h"
#include "tools/sitelist/generator/manual_page.h"
#include "tools/sitelist/generator/pages.h"
#include "tools/sitelist/generator/roff.h"

namespace tool {
namespace {

struct Setting {
  const char* name;
  const char* type;
  const char* byDefault;
  const char* meaning;
  const char* example;
  const char* refused;  // a line that is an error, with its message below
  const char* error;
};

constexpr Setting c_settings[] = {
    {"managed", "true or false", "`false`",
     "Whether the agent is under central management. If so, a list is imported only if its "
     "management server is complete.",
     "managed = true", "managed = 1", "1:11: managed must be true or false"},
    {"crypto_key_size", "a string", "`\"2048\"`",
     "The size of the management server's keys: `\"2048\"` for 2048 bits, or `\"legacy\"` for "
     "shorter keys. With `\"legacy\"`, a server list is stored with its passwords unchanged.",
     "crypto_key_size = \"legacy\"", "crypto_key_size = \"4096\"",
     "1:19: crypto_key_size must be \"legacy\" or \"2048\""},
    {"history", "a whole number from 0 to 10000", "`10`",
     "The number of lists that the history of the agent's own list keeps. A command of `sitelist` "
     "that changes the list puts the old list into the history, in etc/history/ of the data "
     "directory. With `0` no list is put there.",
     "history = 100", "history = -1", "1:11: history must be from 0 to 10000"},
    {"mesh.site_list_path", "a string", "`mesh/SiteList.xml` in the data directory",
     "The path of the mesh copy, the list for the mesh service. The mesh copy is written after "
     "every "
     "change of the agent's own list. A relative path is relative to the data directory.",
     "mesh.site_list_path = \"/var/lib/mesh/SiteList.xml\"", "mesh.site_list_path = \"\"",
     "1:23: mesh.site_list_path must not be empty"},
    {"mesh.load_command", "an array of strings", "empty",
     "The load command, which makes the mesh service load the mesh copy: a program and its "
     "arguments. It is run without a shell. A relative path of the program is relative to the data "
     "directory. The command succeeds if its exit status is 0. If the array is empty, every load "
     "fails. This failure is logged and has no other effect.",
     "mesh.load_command = [\"/usr/bin/systemctl\", \"reload\", \"mesh\"]",
     "mesh.load_command = \"/usr/bin/systemctl reload mesh\"",
     "1:21: mesh.load_command must be an array of strings"},
    {"mesh.load_timeout_seconds", "a whole number from 1 to 86400", "`60`",
     "The number of seconds that the load command may run. If it runs longer, it is terminated "
     "and an error is logged.",
     "mesh.load_timeout_seconds = 10", "mesh.load_timeout_seconds = 0",
     "1:29: mesh.load_timeout_seconds must be from 1 to 86400"},
    {"limits.record_megabytes", "a whole number from 1 to 1048576", "`1024`",
     "The number of megabytes of memory that the sites of one list may take. A list that needs "
     "more is refused (-104).",
     "limits.record_megabytes = 256", "limits.record_megabytes = \"256\"",
     "1:27: limits.record_megabytes must be a whole number"},
    {"log.level", "a string", "`\"error\"`",
     "The lowest level that a process of the agent logs: `detail`, `info`, `error`, "
     "`internal-error` or `off`. `sitelist` ignores this setting and has the option `--verbose`.",
     "log.level = \"info\"", "log.level = 2", "1:13: log.level must be a string"},
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

void describe(ManualPage& page) {
  page.section("DESCRIPTION");
  page.paragraph(
      "The settings of one agent, in its data directory. The file is TOML in UTF-8, of at most 1 "
      "MiB. `sitelist init` creates it. To change a setting, edit the file.");
  page.paragraph(
      "A setting that is not in the file has its default. Without the file, all settings have "
      "their defaults. A process reads the file once, when it first needs a setting.");
  page.section("SETTINGS");
  page.paragraph(
      "A dot in a name separates a table from its key: `log.level = \"info\"` may also be written "
      "as "
      "`level = \"info\"` under `[log]`.");
  page.beginList();
  for (const Setting& setting : c_settings) {
    page.item("Ic " + roffLiteral(setting.name), setting.meaning);
    page.paragraph(std::string("The value is ") + setting.type + "; the default is " +
                   setting.byDefault + ". Example:");
    page.literal({setting.example});
  }
  page.endList();
}

host::AgentSettings exampleSettings() {
  host::AgentSettings settings;
  settings.managed = true;
  settings.meshLoadCommand = {"/usr/bin/systemctl", "reload", "mesh"};
  return settings;
}

}  // namespace

std::string settingsPage(const std::string& date) {
  const host::AgentSettings defaults;
  const std::string file = defaults.dataDirectory + "/agent.toml";
  ManualPage page("agent.toml", 5, date, "settings of an endpoint agent");
  page.section("SYNOPSIS");
  page.macro(".Pa " + roffLiteral(file));
  describe(page);

  page.section("EXAMPLES");
  page.paragraph(
      "`sitelist init --managed --mesh-command /usr/bin/systemctl reload mesh` writes this file:");
  page.literal(linesOf(host::formatAgentSettings(exampleSettings())));

  page.section("DIAGNOSTICS");
  page.paragraph(
      "If the file is invalid, a command of `sitelist` that needs the agent does nothing and exits "
      "with 3. If the file cannot be read, the status is 4. The command prints the reason, with "
      "line and column if the fault is in the text. A process of the agent uses the defaults and "
      "logs the same reason. Each of these lines is refused with the text below it:");
  std::vector<std::string> lines;
  for (const Setting& setting : c_settings) {
    if (!lines.empty()) lines.emplace_back();
    lines.emplace_back(setting.refused);
    lines.push_back(std::string("agent.toml:") + setting.error);
  }
  page.literal(lines);
  page.paragraph("An unknown setting is refused as well:");
  page.literal({"mannaged = true", "agent.toml:1:1: unknown setting mannaged"});

  page.section("SEE ALSO");
  page.macro(".Xr sitelist 1");
  return page.source();
}

}  // namespace tool
