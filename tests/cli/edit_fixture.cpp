#include "tests/cli/edit_fixture.h"

#include <sys/stat.h>

#include <algorithm>

#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct stat statusOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status;
}

}  // namespace

Arguments operator+(Arguments left, const Arguments& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Output CliEdit::edit(const Arguments& arguments, const std::string& input) {
  return sitelist(Arguments{"edit"} + arguments, input);
}

std::string CliEdit::change(const Arguments& arguments, const std::string& input) {
  const std::string before = readFile(ownList());
  const Output output = edit(arguments, input);
  EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << '\n' << output.err;
  EXPECT_EQ(output.out, "");
  EXPECT_NE(readFile(ownList()), before) << testing::PrintToString(arguments);
  return output.err;
}

void CliEdit::changeNothing(const Arguments& arguments, const std::string& input) {
  const std::string before = readFile(ownList());
  const ino_t inode = statusOf(ownList()).st_ino;
  const Output output = edit(arguments, input);
  EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << '\n' << output.err;
  EXPECT_THAT(output.err, HasSubstr("nothing to change")) << testing::PrintToString(arguments);
  EXPECT_EQ(readFile(ownList()), before) << testing::PrintToString(arguments);
  EXPECT_EQ(statusOf(ownList()).st_ino, inode)
      << "written anew: " << testing::PrintToString(arguments);
}

std::string CliEdit::fail(int status, const Arguments& arguments, const std::string& input) {
  const auto before = agentFiles();
  const Output output = edit(arguments, input);
  EXPECT_EQ(output.status, status) << testing::PrintToString(arguments) << '\n' << output.err;
  EXPECT_EQ(output.out, "") << testing::PrintToString(arguments);
  EXPECT_THAT(output.err, HasSubstr("\n  next: ")) << testing::PrintToString(arguments);
  EXPECT_EQ(agentFiles(), before) << testing::PrintToString(arguments);
  return output.err;
}

std::vector<std::map<std::string, std::string>> CliEdit::sites() {
  return readReport(sitelist({"show", "--json", "--show-secrets"}).out).rows;
}

std::map<std::string, std::string> CliEdit::site(const std::string& name) {
  for (const auto& site : sites()) {
    if (site.at("name") == name) return site;
  }
  ADD_FAILURE() << "there is no site " << name;
  return {};
}

std::string CliEdit::orders() {
  auto all = sites();
  std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) {
    return std::stoi(a.at("order")) < std::stoi(b.at("order"));
  });
  std::string text;
  for (const auto& site : all) {
    const bool hasNone = site.at("mirror") == "true" || site.at("order") == "65535";
    if (site.at("kind") == "proxy" || hasNone) continue;
    text += (text.empty() ? "" : " ") + site.at("name") + "=" + site.at("order");
  }
  return text;
}

mode_t modeOf(const std::string& path) { return statusOf(path).st_mode & 07777; }

std::string siteElement(const std::string& element, const std::string& name,
                        const std::string& order, const std::string& attributes,
                        const std::string& children) {
  return "<" + element + " Name=\"" + name + "\"" +
         (order.empty() ? "" : " Order=\"" + order + "\"") +
         (attributes.empty() ? "" : " " + attributes) +
         (children.empty() ? "/>" : ">" + children + "</" + element + ">");
}

std::string sitesWithOrders(const std::vector<std::string>& orders) {
  std::string text;
  char name = 'a';
  for (const std::string& order : orders) {
    text += siteElement("HttpSite", std::string(1, name++), order, "Type=\"repository\"");
  }
  return text;
}

}  // namespace test
