#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

// The content of a document must not break the columns or control the terminal.
namespace test {
namespace {

using testing::HasSubstr;

class CliTerminal : public CliTest {
 protected:
  std::string row(const std::string& name) {
    const std::string path =
        write("list.xml", document(httpSite(name) + httpSite("0123456789", "2")));
    const std::string out = sitelist({"show", path}).out;
    const std::size_t begin = out.find('\n') + 1;
    return out.substr(begin, out.find('\n', begin) - begin);
  }

  // Returns the number of spaces between the name (at most ten columns) and the address.
  std::size_t gapBehind(const std::string& name) {
    const std::string line = row(name);
    const std::size_t begin = line.find(name) + name.size();
    return line.find("depot.example") - begin;
  }
};

TEST_F(CliTerminal, CountsTheColumnsOfEveryScript) {
  EXPECT_EQ(gapBehind("abc"), 12U - 3);
  EXPECT_EQ(gapBehind("Αθήνα"), 12U - 5);
  EXPECT_EQ(gapBehind("東京支社"), 12U - 8) << "wide characters take two columns";
  EXPECT_EQ(gapBehind("서울"), 12U - 4);
  EXPECT_EQ(gapBehind("De\u0301po\u0302t"), 12U - 5) << "combining marks take none";
  EXPECT_EQ(gapBehind("नमस्ते"), 12U - 4);
}

bool isHarmless(const std::string& text) {
  for (const wchar_t c : wide(text)) {
    const bool isControl = (c < 0x20 && c != L'\n') || (c >= 0x7F && c <= 0x9F);
    const bool turnsDirection = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    if (isControl || turnsDirection) return false;
  }
  return true;
}

constexpr const char* c_hostile = "a&#x9;b&#x9B;31m&#x7F;&#x202E;c&#xA;d";
constexpr const char* c_escaped = "a\\u0009b\\u009B31m\\u007F\\u202Ec\\u000Ad";

TEST_F(CliTerminal, EscapesControlCharactersInTheTable) {
  const std::string line = row(c_hostile);
  EXPECT_THAT(line, HasSubstr(c_escaped));
  EXPECT_TRUE(isHarmless(line));
}

TEST_F(CliTerminal, EscapesInvisibleCharactersAndWhatLooksLikeAnEscape) {
  EXPECT_THAT(row("a&#xAD;b&#x200B;c&#x2060;d"), HasSubstr("a\\u00ADb\\u200Bc\\u2060d"));
  EXPECT_THAT(row("a\\u000Ab"), HasSubstr("a\\u005Cu000Ab")) << "a newline is a\\u000Ab";
  EXPECT_THAT(row("\\\\u000a"), HasSubstr("\\\\u005Cu000a"));
  EXPECT_THAT(row("FILES\\users\\u00 \\"), HasSubstr("FILES\\users\\u00 \\"));
}

// A newline, quotation marks and the separator, next to what looks like an escape.
TEST_F(CliTerminal, LeavesCsvAsItIsUnlessOnATerminal) {
  const std::string path =
      write("list.xml", document("",
                                 "<Policies><Setting name=\"a&#10;&quot;b&quot;,\\u000A\">"
                                 "&#x9B;&#xD;&#x200B;</Setting></Policies>"));
  EXPECT_EQ(sitelist({"policies", "--format", "csv", path}).out,
            "name,value\n\"a\n\"\"b\"\",\\u000A\",\"\u009B\r\u200B\"\n");
  const Output terminal = onTerminal(80, {"policies", "--format", "csv", path});
  EXPECT_TRUE(isHarmless(terminal.out)) << terminal.out;
  EXPECT_THAT(terminal.out, HasSubstr("\"a\\u000A\"\"b\"\",\\u005Cu000A\","));
}

TEST_F(CliTerminal, EscapesControlCharactersEverywhereElse) {
  initAgent({"--managed"});
  const std::string hostile = c_hostile;
  const std::string path =
      write("list.xml",
            document(serverSite({{"Name", hostile}, {"Type", hostile}, {"Version", hostile}}) +
                         "<ProxyConfigList><ProxyConfig Name=\"" + hostile +
                         "\" HttpProxyServer=\"" + hostile + "\"><HttpProxyUser>" + hostile +
                         "</HttpProxyUser><ExclusionList><ExclusionHost>" + hostile +
                         "</ExclusionHost></ExclusionList></ProxyConfig></ProxyConfigList>",
                     "<CaBundle><CaCertificate>" + hostile +
                         "</CaCertificate></CaBundle><Policies><Setting name=\"" + hostile + "\">" +
                         hostile + "</Setting></Policies>",
                     "GlobalVersion=\"" + hostile + "\" LocalVersion=\"1\" FipsMode=\"" + hostile +
                         "\""));
  const std::vector<std::vector<std::string>> commands = {
      {"show", path},
      {"show", "--json", path},
      {"versions", path},
      {"certs", path},
      {"policies", path},
      {"validate", path},
      {"import", path},
      {"install", "--dry-run", path},
      {"--verbose", "show", path},
      {"rewrite", path, file("copy.xml")},
  };
  for (const auto& command : commands) {
    const Output output = sitelist(command);
    EXPECT_TRUE(isHarmless(output.out)) << command.front() << '\n' << output.out;
    EXPECT_TRUE(isHarmless(output.err)) << command.front() << '\n' << output.err;
    EXPECT_FALSE(output.out.empty() && output.err.empty()) << command.front();
  }
  setOwnList(readFile(path));
  const Output servers = sitelist({"servers"});
  EXPECT_EQ(servers.status, 0);
  EXPECT_THAT(servers.out, HasSubstr(c_escaped));
  EXPECT_TRUE(isHarmless(servers.out));
}

TEST_F(CliTerminal, EscapesControlCharactersOfFileNames) {
  const Output output = sitelist({"show", file("no\x1b[31mfile")});
  EXPECT_EQ(output.status, 4);
  EXPECT_TRUE(isHarmless(output.err));
  EXPECT_THAT(output.err, HasSubstr("no\\u001B[31mfile"));
}

}  // namespace
}  // namespace test
