#include <algorithm>
#include <memory>
#include <ostream>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/table.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/cli/wrap.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/validate/rules.h"

namespace tool {
namespace {

constexpr std::size_t c_readableColumns = 80;

struct ExplainRuleOptions {
  std::string name;
};

Record ruleRecord(const Rule& rule) {
  return {{"name", std::string(rule.name)},       {"severity", std::string(nameOf(rule.severity))},
          {"summary", std::string(rule.summary)}, {"why", std::string(rule.why)},
          {"mend", std::string(rule.mend)},       {"faulty", std::string(rule.faulty)},
          {"mended", std::string(rule.mended)}};
}

// Returns the text in lines with an indent of two columns.
std::string indented(const std::string& text, std::size_t columns) {
  return "  " + wrapped(text, 2, columns) + '\n';
}

void printRule(std::ostream& out, const Screen& screen, const Rule& rule) {
  const std::size_t columns =
      screen.columns == 0 ? c_readableColumns : std::min(screen.columns, c_readableColumns);
  const auto heading = [&](const char* text) {
    return "\n" + screen.styled(Style::Heading, text) + "\n";
  };
  const Style style = rule.severity == Severity::Error ? Style::Bad : Style::Changed;
  out << screen.styled(style, rule.name) << " (" << nameOf(rule.severity) << ")\n"
      << indented(rule.summary, columns) << heading("Why") << indented(rule.why, columns)
      << heading("What to do")
      << indented(rule.mend, columns)
      // Examples are not broken into lines, so that they can be copied.
      << heading("Wrong") << "  " << rule.faulty << '\n'
      << heading("Right") << "  " << rule.mended << '\n';
}

const Rule& requireRule(const std::string& name) {
  if (const Rule* const rule = findRule(name)) return *rule;
  std::vector<std::string> known;
  for (const Rule& rule : allRules()) known.emplace_back(rule.name);
  throw Failure(exitNotFound, "unknown rule \"" + shown(name) + "\"" + suggestion(name, known),
                "list all rules with `sitelist explain-rule`");
}

Report reportOfAll() {
  Report report;
  report.rowsName = "rules";
  report.rowName = "rule";
  report.columns = {"name", "severity", "summary", "why", "mend", "faulty", "mended"};
  for (const Rule& rule : allRules()) report.rows.push_back(ruleRecord(rule));
  report.table = [](std::ostream& out, const Screen& screen) {
    Table table({L"RULE", L"SEVERITY", L"REQUIREMENT"});
    for (const Rule& rule : allRules()) {
      table.add({wide(rule.name), wide(nameOf(rule.severity)), wide(rule.summary)});
    }
    table.print(out, screen);
  };
  return report;
}

int explainRule(Context& context, const ExplainRuleOptions& options) {
  if (options.name.empty()) {
    context.report = reportOfAll();
    return exitSuccess;
  }
  const Rule& rule = requireRule(options.name);
  Report report;
  report.facts = ruleRecord(rule);
  report.table = [&rule](std::ostream& out, const Screen& screen) { printRule(out, screen, rule); };
  context.report = std::move(report);
  return exitSuccess;
}

std::vector<std::string> ruleNames() {
  std::vector<std::string> names;
  for (const Rule& rule : allRules()) names.emplace_back(rule.name);
  return names;
}

}  // namespace

void addExplainRule(Command& app, Context& context) {
  Command command =
      app.add_subcommand("explain-rule", "Explain a rule of `validate` and the fix for a fault");
  const auto options = std::make_shared<ExplainRuleOptions>();
  command
      .add_option("NAME", options->name, "The name of a rule, as in `validate` (default: list all)")
      .type_name("")
      .suggests(ruleNames);
  command.footer(
      "Examples:\n"
      "  sitelist explain-rule\n"
      "  sitelist explain-rule server-type-master\n"
      "  sitelist explain-rule --json | jq -r '.rules[].name'\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return explainRule(context, *options); };
  });
}

}  // namespace tool
