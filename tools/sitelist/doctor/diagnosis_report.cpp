#include "tools/sitelist/doctor/diagnosis_report.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/cli/wrap.h"

namespace tool {
namespace {

// The further findings of a check are only counted.
constexpr std::size_t c_mostFindings = 20;
constexpr std::size_t c_mostCharacters = 600;
constexpr std::size_t c_stateColumns = 9;
constexpr std::size_t c_checkColumns = 14;
constexpr std::size_t c_indent = c_stateColumns + c_checkColumns;

Style stateStyle(const std::string& state) {
  return state == nameOf(State::Ok)        ? Style::Good
         : state == nameOf(State::Warning) ? Style::Changed
                                           : Style::Bad;
}

std::string gapAfter(const std::string& text, std::size_t columns) {
  return text.size() < columns ? std::string(columns - text.size(), ' ') : "";
}

void printRow(std::ostream& out, const Screen& screen, const Record& row) {
  // The texts are printable.
  const auto text = [&row](const char* name) { return textOf(*find(row, name)); };
  const std::string state = text("state");
  const std::string check = text("check");
  out << screen.styled(stateStyle(state), state) << gapAfter(state, c_stateColumns) << check
      << gapAfter(check, c_checkColumns) << wrapped(text("text"), c_indent, screen.columns) << '\n';
  if (text("next").empty()) return;
  out << std::string(c_indent, ' ') << wrapped("next: " + text("next"), c_indent, screen.columns)
      << '\n';
}

std::string counted(std::int64_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Texts of documents and settings may be long.
std::string bounded(const std::string& text) {
  const std::wstring all = wide(text);
  return all.size() <= c_mostCharacters ? text : narrow(all.substr(0, c_mostCharacters)) + "...";
}

Record rowOf(const std::string& check, const Finding& finding) {
  return {{"check", check},
          {"state", std::string(nameOf(finding.state))},
          {"text", bounded(finding.text)},
          {"next", orNull(finding.next)},
          {"file", orNull(reportedName(finding.file))},
          {"mended", false}};
}

Record rowOfMended(const std::string& check, const Finding& finding) {
  Finding now{State::Ok, "mended: " + finding.mended};
  now.file = finding.file;
  Record row = rowOf(check, now);
  row.back().second = true;
  return row;
}

Finding remainder(const std::vector<Finding>& findings) {
  const std::size_t count = findings.size() - c_mostFindings;
  Finding more{
      State::Ok,
      std::to_string(count) + " more " + (count == 1 ? "result" : "results") + " of this check",
      "mend the faults above first"};
  for (std::size_t i = c_mostFindings; i < findings.size(); ++i) {
    more.state = std::max(more.state, findings[i].state);
  }
  return more;
}

std::int64_t countOf(const std::vector<CheckResult>& results, State state) {
  std::ptrdiff_t number = 0;
  for (const CheckResult& result : results) {
    number += std::count_if(result.findings.begin(), result.findings.end(),
                            [state](const Finding& finding) { return finding.state == state; });
  }
  return number;
}

}  // namespace

bool hasFailure(const std::vector<CheckResult>& results) {
  return countOf(results, State::Failure) != 0;
}

Mended withoutRemaining(Mended mended, const std::vector<CheckResult>& results) {
  for (const CheckResult& result : results) {
    const auto found = mended.find(result.check);
    if (found == mended.end()) continue;
    std::vector<Finding>& all = found->second;
    for (const Finding& left : result.findings) {
      all.erase(std::remove_if(all.begin(), all.end(),
                               [&left](const Finding& each) { return each.text == left.text; }),
                all.end());
    }
    if (all.empty()) mended.erase(found);
  }
  return mended;
}

Report reportOf(const Context& context, const std::vector<CheckResult>& results,
                const Mended& mended) {
  Report report;
  report.rowsName = "checks";
  report.rowName = "check";
  report.columns = {"check", "state", "text", "next", "file", "mended"};
  std::int64_t mendedCount = 0;
  for (const CheckResult& result : results) {
    if (const auto found = mended.find(result.check); found != mended.end()) {
      for (const Finding& finding : found->second) {
        report.rows.push_back(rowOfMended(result.check, finding));
        ++mendedCount;
      }
    }
    const std::size_t shownCount = std::min(result.findings.size(), c_mostFindings);
    for (std::size_t i = 0; i < shownCount; ++i) {
      report.rows.push_back(rowOf(result.check, result.findings[i]));
    }
    if (result.findings.size() > c_mostFindings) {
      report.rows.push_back(rowOf(result.check, remainder(result.findings)));
    }
  }
  const std::int64_t failures = countOf(results, State::Failure);
  const std::int64_t warnings = countOf(results, State::Warning);
  report.facts = {{"directory", reportedName(context.agentDirectory)},
                  {"healthy", failures == 0},
                  {"failureCount", failures},
                  {"warningCount", warnings},
                  {"mendedCount", mendedCount}};
  report.table = [rows = report.rows, failures, warnings](std::ostream& out, const Screen& screen) {
    for (const Record& row : rows) printRow(out, screen, row);
    out << counted(failures, "failure") << ", " << counted(warnings, "warning") << '\n';
  };
  return report;
}

}  // namespace tool
