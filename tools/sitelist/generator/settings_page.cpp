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
  const char* refused;  // a line that is an error, and which
  const char* error;
};

constexpr Setting c_settings[] = {
    {"managed", "true or false", "`false`",
     "Whether the agent is under central management. If so, a list is imported only when its "
     "management server is complete.",
     "managed = true", "managed = 1", "1:11: managed must be true or false"},
    {"crypto_key_size", "a string", "`\"2048\"`",
     "Which keys the agent and its server use: `\"2048\"` for those of 2048 bits, or `\"legacy\"` "
     "for "
     "the earlier ones. With the earlier ones, the passwords of a list that the server hands over "
     "are stored as they come.",
     "crypto_key_size = \"legacy\"", "crypto_key_size = \"4096\"",
     "1:19: crypto_key_size must be \"legacy\" or \"2048\""},
    {"mesh.site_list_path", "a string", "`mesh/SiteList.xml` in the data directory",
     "Where the mesh service keeps its copy of the list, which is written whenever the agent's own "
     "is. A relative path counts from the data directory.",
     "mesh.site_list_path = \"/var/lib/mesh/SiteList.xml\"", "mesh.site_list_path = \"\"",
     "1:23: mesh.site_list_path must not be empty"},
    {"mesh.load_command", "an array of strings", "empty",
     "The program, with its arguments, that makes the mesh service load its copy. It is run "
     "without "
     "a shell; a relative path of the program counts from the data directory. It succeeds when it "
     "ends with status 0. Without a program every load fails, which is logged and changes nothing "
     "else.",
     "mesh.load_command = [\"/usr/bin/systemctl\", \"reload\", \"mesh\"]",
     "mesh.load_command = \"/usr/bin/systemctl reload mesh\"",
     "1:21: mesh.load_command must be an array of strings"},
    {"mesh.load_timeout_seconds", "a whole number from 1 to 86400", "`60`",
     "How many seconds that program may run. One that runs longer is ended, which is logged as an "
     "error.",
     "mesh.load_timeout_seconds = 10", "mesh.load_timeout_seconds = 0",
     "1:29: mesh.load_timeout_seconds must be from 1 to 86400"},
    {"limits.record_megabytes", "a whole number from 1 to 1048576", "`1024`",
     "How many megabytes of memory the sites of one list may take. A list that takes more is "
     "refused (-104).",
     "limits.record_megabytes = 256", "limits.record_megabytes = \"256\"",
     "1:27: limits.record_megabytes must be a whole number"},
    {"log.level", "a string", "`\"error\"`",
     "The lowest level that is logged: `detail`, `info`, `error`, `internal-error` or `off`.",
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
      "MiB. `sitelist init` makes it; after that it is edited by hand.");
  page.paragraph(
      "A setting that is not there has its default, and so have all of them when there is no file. "
      "A process reads the file once, when it first needs a "
      "setting.");
  page.section("SETTINGS");
  page.paragraph(
      "A dot in a name stands for a table: `log.level = \"info\"` may also be written as "
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
      "What `sitelist init --managed --mesh-command /usr/bin/systemctl reload mesh` "
      "writes:");
  page.literal(linesOf(host::formatAgentSettings(exampleSettings())));

  page.section("DIAGNOSTICS");
  page.paragraph(
      "With a file that cannot be used, `sitelist` does nothing, names the place by line and "
      "column, and exits with 3. A process of the agent takes the defaults and logs the same as an "
      "error. These lines are refused, each with the text below it:");
  std::vector<std::string> lines;
  for (const Setting& setting : c_settings) {
    if (!lines.empty()) lines.emplace_back();
    lines.emplace_back(setting.refused);
    lines.push_back(std::string("agent.toml:") + setting.error);
  }
  page.literal(lines);
  page.paragraph("A setting of another name is refused, too:");
  page.literal({"mannaged = true", "agent.toml:1:1: unknown setting mannaged"});

  page.section("SEE ALSO");
  page.macro(".Xr sitelist 1");
  return page.source();
}

}  // namespace tool
