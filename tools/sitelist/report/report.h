#ifndef TOOLS_SITELIST_REPORT_REPORT_H
#define TOOLS_SITELIST_REPORT_REPORT_H

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/sitelist/cli/screen.h"

namespace tool {

class Failure;

// Goes up when a name of the output for programs goes away or means something else.
constexpr int c_schemaVersion = 1;

// One value; texts are UTF-8 as the document has them, made harmless by whoever prints them.
using Scalar = std::variant<std::monostate, bool, std::int64_t, std::string>;
using Record = std::vector<std::pair<std::string, Scalar>>;

// What a command has to tell, in every form: single facts, and rows of one kind. The names are part
// of the tool's interface.
struct Report {
  Record facts;
  std::string rowsName;              // empty: there are no rows
  std::string rowName;               // of a single row, in XML
  std::vector<std::string> columns;  // every name that a row may have
  std::vector<Record> rows;          // a row leaves out what does not apply to it
  std::string writtenRows;           // those behind them that have the form asked for already
  // The form for people.
  std::function<void(std::ostream&, const Screen&)> table;
};

enum class Format { Table, Json, Csv, Xml };

// Writes rows into `Report::writtenRows` as they come, so that there need not be more than one of
// them at a time. The form for people has none.
class RowWriter {
 public:
  RowWriter(Format format, Report& report) : m_format(format), m_report(report) {}
  bool isNeeded() const { return m_format != Format::Table; }
  void add(const Record& row);

 private:
  Format m_format;
  Report& m_report;
};

// How a command ended.
struct Ending {
  std::string command;
  int status = 0;
  const Failure* failure = nullptr;
};

// Prints a report in a form for programs. `report` may be null: the command had nothing to tell.
void printJson(std::ostream& out, const Report* report, const Ending& ending);
void printXml(std::ostream& out, const Report* report, const Ending& ending);
// The rows or, in a report without rows, name and value of every fact. One line each, whatever the
// texts hold.
void printCsv(std::ostream& out, const Report& report);

// Each appends one row to those that `rows` holds.
void appendJsonRow(std::string& rows, const Record& row);
void appendXmlRow(std::string& rows, const std::string& name, const Record& row);
void appendCsvRow(std::string& rows, const std::vector<std::string>& columns, const Record& row);

// What a failure tells programs.
Record factsOf(const Failure& failure);

// The text of a value, empty for none.
std::string textOf(const Scalar& value);
// A text as a value; none for an empty one.
Scalar orNull(const std::string& text);

// The value of that name; null when there is none.
const Scalar* find(const Record& record, const std::string& name);
// Its text, made printable; empty when there is none.
std::string shownText(const Record& record, const std::string& name);

}  // namespace tool

#endif
