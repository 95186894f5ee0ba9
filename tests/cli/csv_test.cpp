#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using nlohmann::json;

// Reads records of RFC 4180.
std::vector<std::vector<std::string>> recordsIn(const std::string& csv) {
  std::vector<std::vector<std::string>> records;
  std::vector<std::string> record(1);
  bool isQuoted = false;
  for (std::size_t i = 0; i < csv.size(); ++i) {
    const char c = csv[i];
    if (c == '"' && isQuoted && csv[i + 1] == '"') {
      record.back() += csv[++i];
    } else if (c == '"') {
      isQuoted = !isQuoted;
    } else if (c == ',' && !isQuoted) {
      record.emplace_back();
    } else if (c == '\n' && !isQuoted) {
      records.push_back(record);
      record.assign(1, "");
    } else {
      record.back() += c;
    }
  }
  return records;
}

std::string textOf(const json& value) {
  if (value.is_string()) return value;
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const json& each : value) text += (text.empty() ? "" : ";") + each.get<std::string>();
  return text;
}

class CliCsv : public CliTest {
 protected:
  // A list with a site of each kind.
  std::string listOfEveryKind() {
    return write("list.xml",
                 document(serverSite() + httpSite("h, &quot;1&quot;", "2") +
                          "<FTPSite Name=\"f\" Order=\"3\" Server=\"f.example:21\"/>"
                          "<UNCSite Name=\"u\" Order=\"4\" Server=\"FILES\"/>"
                          "<LocalSite Name=\"l\" Order=\"5\"/><ProxyConfigList>"
                          "<ProxyConfig Name=\"p\"><ExclusionList><ExclusionHost>a</ExclusionHost>"
                          "<ExclusionHost>b</ExclusionHost></ExclusionList></ProxyConfig>"
                          "</ProxyConfigList>"));
  }

  std::vector<std::vector<std::string>> show(const Arguments& arguments) {
    return recordsIn(sitelist(Arguments{"show", "--format", "csv"} + arguments).out);
  }
};

// A release may add columns at any place, so nothing here depends on a place.
TEST_F(CliCsv, EveryValueIsFoundByTheNameOfItsColumn) {
  const std::string path = listOfEveryKind();
  const auto records = show({path});
  const json sites = json::parse(sitelist({"show", "--json", path}).out)["sites"];
  ASSERT_EQ(sites.size(), 6U);
  ASSERT_EQ(records.size(), sites.size() + 1);
  const std::vector<std::string>& header = records.front();
  EXPECT_EQ(std::set<std::string>(header.begin(), header.end()).size(), header.size());
  for (std::size_t i = 0; i < sites.size(); ++i) {
    ASSERT_EQ(records[i + 1].size(), header.size());
    std::map<std::string, std::string> cells;
    for (std::size_t k = 0; k < header.size(); ++k) cells[header[k]] = records[i + 1][k];
    for (const auto& [name, value] : sites[i].items()) {
      ASSERT_EQ(cells.count(name), 1U) << name;
      EXPECT_EQ(cells[name], textOf(value)) << name;
      cells.erase(name);
    }
    for (const auto& [name, cell] : cells) EXPECT_EQ(cell, "") << name << " of another kind";
  }
}

TEST_F(CliCsv, GivenColumnsKeepTheirOrderAndAreThereOnce) {
  const std::string path = listOfEveryKind();
  const auto firstTwoOf = [&](const std::string& columns) {
    auto records = show({"--columns", columns, path});
    records.resize(2);
    return records;
  };
  using Records = std::vector<std::vector<std::string>>;
  EXPECT_EQ(firstTwoOf("exclusionList,name,kind"),
            (Records{{"exclusionList", "name", "kind"}, {"", "Main", "server"}}));
  EXPECT_EQ(firstTwoOf("kind,exclusionList,name"),
            (Records{{"kind", "exclusionList", "name"}, {"server", "", "Main"}}));
  EXPECT_EQ(firstTwoOf("name,kind,name"),
            (Records{{std::string("name"), "kind"}, {std::string("Main"), "server"}}));
}

}  // namespace
}  // namespace test
