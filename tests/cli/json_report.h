#ifndef TESTS_CLI_JSON_REPORT_H
#define TESTS_CLI_JSON_REPORT_H

#include <map>
#include <string>
#include <vector>

namespace test {

// What a JSON document of the tool says: texts as they are, numbers in decimal, flags as "true" and
// "false"; what is null is left out.
struct JsonReport {
  using Record = std::map<std::string, std::string>;
  Record facts;
  std::vector<Record> rows;  // of the one array that a document may have

  // The values of one field, row by row.
  std::vector<std::string> column(const std::string& name) const;
};

JsonReport readReport(const std::string& json);

}  // namespace test

#endif
