#ifndef TESTS_CLI_JSON_REPORT_H
#define TESTS_CLI_JSON_REPORT_H

#include <map>
#include <string>
#include <vector>

namespace test {

// The content of a JSON document of the tool. Texts are unchanged, numbers are decimal, and flags
// are "true" or "false". Several texts are joined with ";". Null values and empty arrays are
// omitted.
struct JsonReport {
  using Record = std::map<std::string, std::string>;
  Record facts;
  std::vector<Record> rows;  // of the only array of objects that a document may have

  // Returns the values of one field from all rows.
  std::vector<std::string> column(const std::string& name) const;
};

JsonReport readReport(const std::string& json);

}  // namespace test

#endif
