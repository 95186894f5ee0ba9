#ifndef TOOLS_SITELIST_REPORT_REPORT_H
#define TOOLS_SITELIST_REPORT_REPORT_H

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/sitelist/cli/screen.h"

namespace tool {

class Failure;
class RowSpool;

// Must be raised when a name in the output for programs is removed or changes its meaning.
constexpr int c_schemaVersion = 2;

// Several texts as one value. JSON and XML have each text. A table and CSV have all of them in one
// text.
struct Texts {
  std::vector<std::string> each;
  std::string joined;  // with ";"
};
bool operator==(const Texts& a, const Texts& b);
inline bool operator!=(const Texts& a, const Texts& b) { return !(a == b); }

struct Object;

// One value. Texts are UTF-8, unchanged from the document. The code that prints them must make them
// printable.
using Scalar = std::variant<std::monostate, bool, std::int64_t, std::string, Texts,
                            std::shared_ptr<const Object>>;
using Record = std::vector<std::pair<std::string, Scalar>>;

// Several values as one value. JSON and XML have each value. A table and CSV have only the text.
struct Object {
  Record members;
  std::string text;
};

// Rows of one kind.
struct RowGroup {
  std::string rowsName;
  std::string rowName;  // of one row, in XML
  std::vector<Record> rows;
};

// The result of a command in every format: facts, and rows of one kind. The names are part of the
// tool's interface.
struct Report {
  Record facts;
  std::string rowsName;              // empty without rows
  std::string rowName;               // of one row, in XML
  std::vector<std::string> columns;  // all names that a row may have
  std::vector<Record> rows;          // a row omits values that do not apply
  std::string writtenRows;           // further rows, already in the output format
  std::vector<RowGroup> groups;      // further rows, of other kinds, with names of their own
  std::shared_ptr<RowSpool> spool;   // may be null; further rows, already in the output format
  bool isPrinted = false;            // whether the rows were already printed or put into `spool`
  // Prints the report as a table for people.
  std::function<void(std::ostream&, const Screen&)> table;
};

enum class Format { Table, Json, JsonLines, Csv, Xml };

// Appends rows to `Report::writtenRows`, so that only one of them at a time is in memory. The table
// format does not use it.
class RowWriter {
 public:
  RowWriter(Format format, Report& report) : m_format(format), m_report(report) {}
  bool isNeeded() const { return m_format != Format::Table; }
  void add(const Record& row);

 private:
  Format m_format;
  Report& m_report;
};

// The end of a command.
struct Ending {
  std::string command;
  int status = 0;
  bool changed = false;
  std::vector<std::string> warnings;
  const Failure* failure = nullptr;
};

// Print a report in a format for programs. `report` may be null if the command has no result.
void printJson(std::ostream& out, const Report* report, const Ending& ending);
void printXml(std::ostream& out, const Report* report, const Ending& ending);
// Prints the rows or, without rows, the name and value of every fact, as records of RFC 4180 that
// end with LF.
void printCsv(std::ostream& out, const Report& report);
// Prints each row or, without rows, all facts as one JSON object in one line. A failure has its own
// line.
void printJsonLines(std::ostream& out, const Report* report, const Ending& ending);

// Each function appends one row to `rows`.
void appendJsonRow(std::string& rows, const Record& row);
void appendJsonLine(std::string& rows, const Record& row);
void appendXmlRow(std::string& rows, const std::string& name, const Record& row);
void appendCsvRow(std::string& rows, const std::vector<std::string>& columns, const Record& row);

// Appends the names of the columns.
void appendCsvHeading(std::string& rows, const std::vector<std::string>& columns);

// Returns the facts of a failure for programs.
Record factsOf(const Failure& failure);
// Returns the row of a list that failed: its name, the exit status and the facts of the failure.
Record failedRow(const std::string& file, const Failure& failure);

// Returns the text of a value, or an empty text for none.
std::string textOf(const Scalar& value);
// Returns a text as a value, or none for an empty text.
Scalar orNull(const std::string& text);

// Returns the value with that name, or null.
const Scalar* find(const Record& record, const std::string& name);
// Returns the printable text of the value with that name, or an empty text.
std::string shownText(const Record& record, const std::string& name);

}  // namespace tool

#endif
