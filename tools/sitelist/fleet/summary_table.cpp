#include "tools/sitelist/fleet/summary_table.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "tools/sitelist/cli/table.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr std::size_t c_rowsOfGroup = 4;
constexpr std::size_t c_rowsOfLast = 10;

struct Column {
  const char* name;
  const char* heading;
};

std::vector<Column> columnsOf(const RowGroup& group) {
  if (group.rowName == "version") {
    return {{"lists", "LISTS"},
            {"globalVersion", "GLOBAL VERSION"},
            {"localVersions", "LOCAL VERSIONS"}};
  }
  if (group.rowName == "server") return {{"lists", "LISTS"}, {"server", "MANAGEMENT SERVER"}};
  if (group.rowName == "fault") {
    return {{"lists", "LISTS"}, {"rule", "FAULT"}, {"severity", "SEVERITY"}, {"faults", "FAULTS"}};
  }
  if (group.rowName == "month") {
    return {{"lists", "LISTS"}, {"month", "CERTIFICATE EXPIRES"}, {"certificates", "CERTIFICATES"}};
  }
  return {{"differences", "CHANGES"}, {"file", "MOST DIFFERENT FROM THE MOST FREQUENT LIST"}};
}

std::size_t countIn(const Record& record, const char* name) {
  return static_cast<std::size_t>(std::get<std::int64_t>(*find(record, name)));
}

std::wstring cellOf(const Record& row, const char* name) {
  const Scalar& value = *find(row, name);
  if (std::holds_alternative<std::int64_t>(value)) return wide(withCommas(countIn(row, name)));
  return wide(textOf(value));
}

// The numbers in the first column are right-aligned.
std::wstring aligned(const std::wstring& number, std::size_t width) {
  return std::wstring(width - std::min(width, number.size()), L' ') + number;
}

void printGroup(std::ostream& out, const Screen& screen, const RowGroup& group, std::size_t most) {
  const std::vector<Column> columns = columnsOf(group);
  const std::size_t count = std::min(most, group.rows.size());
  std::size_t width = std::string(columns.front().heading).size();
  for (std::size_t i = 0; i < count; ++i) {
    width = std::max(width, cellOf(group.rows[i], columns.front().name).size());
  }
  std::vector<std::wstring> headings;
  for (const Column& column : columns) headings.push_back(wide(column.heading));
  headings.front() = aligned(headings.front(), width);
  Table table(headings);
  if (group.rowName == "different") table.keepEndsOf(1);
  for (std::size_t i = 0; i < count; ++i) {
    std::vector<std::wstring> cells;
    for (const Column& column : columns) cells.push_back(cellOf(group.rows[i], column.name));
    cells.front() = aligned(cells.front(), width);
    const Scalar* const severity = find(group.rows[i], "severity");
    table.add(std::move(cells),
              severity && textOf(*severity) == "error" ? Style::Bad : Style::Plain);
  }
  out << '\n';
  table.print(out, screen);
  if (count < group.rows.size()) {
    const std::string more = "and " + withCommas(group.rows.size() - count) + " more";
    out << screen.styled(Style::Dim, std::string(width + 2, ' ') + more) << '\n';
  }
}

void printMostFrequent(std::ostream& out, const Screen& screen, const Record& facts) {
  const std::size_t alike = countIn(facts, "mostFrequentCount");
  if (alike == 0) return;
  const std::string before = "most frequent list: ";
  const std::string after =
      alike == 1 ? " (only this one)" : " (" + withCommas(alike) + " are alike)";
  std::wstring name = wide(shownText(facts, "mostFrequent"));
  const std::size_t others = before.size() + after.size();
  if (screen.columns > others) name = cutTo(name, screen.columns - others, Kept::End);
  out << before << narrow(name) << after << '\n';
}

}  // namespace

void printSummary(std::ostream& out, const Screen& screen, const Record& facts,
                  const std::vector<RowGroup>& groups) {
  const std::size_t lists = countIn(facts, "listCount");
  const std::size_t failed = countIn(facts, "failedCount");
  out << withCommas(lists) << (lists == 1 ? " list" : " lists");
  if (failed != 0) {
    out << ", " << screen.styled(Style::Bad, withCommas(failed) + " cannot be read");
  }
  out << '\n';
  printMostFrequent(out, screen, facts);
  for (const RowGroup& group : groups) {
    if (group.rows.empty()) continue;
    printGroup(out, screen, group, &group == &groups.back() ? c_rowsOfLast : c_rowsOfGroup);
  }
}

}  // namespace tool
