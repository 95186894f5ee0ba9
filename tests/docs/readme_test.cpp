#include <algorithm>
#include <stdexcept>

#include "tests/cli/cli_fixture.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string fromSource(const std::string& name) {
  return readFile(std::string(TEST_SOURCE_DIR) + '/' + name);
}

// The output that README.md shows for a command line, cut at the lines "...".
std::vector<std::string> shownOutput(const std::string& commandLine) {
  const std::string readme = fromSource("README.md");
  const std::string head = "\n```\n$ " + commandLine + '\n';
  const std::size_t at = readme.find(head);
  if (at == std::string::npos) throw std::runtime_error("README.md does not show " + commandLine);
  std::size_t begin = at + head.size();
  const std::size_t end = readme.find("```\n", begin);
  std::vector<std::string> parts;
  for (const std::string cut = "...\n"; begin < end;) {
    const std::size_t stop = std::min(readme.find('\n' + cut, begin), end - 1) + 1;
    parts.push_back(readme.substr(begin, stop - begin));
    begin = stop == end ? end : stop + cut.size();
  }
  return parts;
}

class Readme : public CliTest {};

TEST_F(Readme, ShowsWhatExplainPrintsForTheExampleList) {
  initAgent({"--managed"});
  const Output imported =
      sitelist({"import", "--allow-lost-passwords",
                std::string(TEST_SOURCE_DIR) + "/examples/incoming/SiteList.xml"});
  ASSERT_EQ(imported.status, 0) << imported.err;
  const Output explained = sitelist({"explain"});
  ASSERT_EQ(explained.status, 0) << explained.err;

  const std::vector<std::string> parts = shownOutput("sitelist --agent-dir agent explain");
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_THAT(explained.out, StartsWith(parts[0]));
  EXPECT_THAT(explained.out.substr(parts[0].size()), HasSubstr('\n' + parts[1]));
}

// The output of `probe` depends on servers, so the expected output of another test is compared.
TEST_F(Readme, ShowsWhatProbePrints) {
  const std::string probed = fromSource("tests/formats/probe/all/table");
  const std::vector<std::string> parts =
      shownOutput("sitelist probe --file lists/network.xml --all");
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_THAT(probed, StartsWith(parts[0]));
  EXPECT_THAT(probed, HasSubstr('\n' + parts[1]));
  EXPECT_THAT(probed, HasSubstr('\n' + parts[2]));
}

TEST_F(Readme, ShowsASiteOfTheExampleList) {
  const std::string readme = fromSource("README.md");
  const std::string fence = "```xml\n";
  const std::size_t begin = readme.find(fence) + fence.size();
  ASSERT_GE(begin, fence.size());
  std::string site = readme.substr(begin, readme.find("```\n", begin) - begin);
  // The list indents its sites.
  for (std::size_t at = 0; at < site.size(); at = site.find('\n', at) + 1) site.insert(at, "    ");
  EXPECT_THAT(fromSource("examples/incoming/SiteList.xml"), HasSubstr('\n' + site));
}

}  // namespace
}  // namespace test
