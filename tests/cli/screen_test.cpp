#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

// What the table of `show` looks like on a terminal, and in a pipe.
namespace test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* c_ellipsis = "…";

// Returns the number of columns. Knows only the combining and double-width characters of these
// tests.
std::size_t columnsOf(const std::string& text) {
  std::size_t columns = 0;
  for (const wchar_t c : wide(text)) {
    const bool isMark = c >= 0x300 && c <= 0x36F;
    const bool isWide = (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xD7A3) ||
                        (c >= 0xFF00 && c <= 0xFF60) || c >= 0x1F300;
    if (!isMark) columns += isWide ? 2 : 1;
  }
  return columns;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    lines.push_back(text.substr(begin, end - begin));
  }
  return lines;
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

class CliScreen : public CliTest {
 protected:
  // Writes a list with long names in several scripts. They do not fit in a line of 80 columns.
  void SetUp() override {
    m_path =
        write("list.xml",
              document(serverSite({{"SecurePort", "443"}}) + httpSite(repeated("latin ", 12), "2") +
                       httpSite(repeated("東京", 24), "3") + httpSite(repeated("x東京", 24), "4") +
                       httpSite(repeated("e\u0301", 70), "5") +
                       httpSite(repeated("서울\U0001F600", 14), "6") + httpSite("short", "7")));
  }

  // Returns the table without colours and without the note below it.
  std::vector<std::string> table(int columns, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"show", m_path, "--color=never"});
    const Output output = onTerminal(columns, options);
    EXPECT_EQ(output.status, 0) << output.err;
    std::vector<std::string> lines = linesOf(output.out);
    EXPECT_EQ(lines.size(), 10U) << output.out;
    lines.resize(8);
    return lines;
  }

  std::string m_path;
};

TEST_F(CliScreen, TheTableFitsTheTerminal) {
  for (const int width : {80, 100, 160}) {
    for (const std::string& line : table(width))
      EXPECT_LE(static_cast<int>(columnsOf(line)), width) << line;
  }
}

TEST_F(CliScreen, UsesTheWidthThatThereIs) {
  const std::vector<std::string> narrow = table(80);
  const std::vector<std::string> roomy = table(100);
  EXPECT_EQ(columnsOf(narrow[2]), 80U - 5 + 2) << "the last column, STATE, has \"on\"";
  EXPECT_GT(columnsOf(roomy[2]), columnsOf(narrow[2]));
}

TEST_F(CliScreen, WhatIsCutEndsInAnEllipsisAndWhatFitsDoesNot) {
  const std::vector<std::string> lines = table(80);
  for (std::size_t i = 2; i < 7; ++i) EXPECT_THAT(lines[i], HasSubstr(c_ellipsis)) << i;
  EXPECT_THAT(lines[7], HasSubstr(" short  "));
  EXPECT_THAT(lines[5], Not(HasSubstr(" \u0301"))) << "a combining mark stays with its character";
  for (const std::string& line : table(200)) EXPECT_THAT(line, Not(HasSubstr(c_ellipsis)));
}

TEST_F(CliScreen, ColumnsLineUpInEveryScriptAlsoWhereTextsAreCut) {
  for (const int width : {80, 160}) {
    const std::vector<std::string> lines = table(width);
    const std::size_t expected = columnsOf(lines[0].substr(0, lines[0].find("ADDRESS")));
    for (std::size_t i = 2; i < lines.size(); ++i) {
      const std::size_t at = lines[i].find("depot.");
      ASSERT_NE(at, std::string::npos) << lines[i];
      EXPECT_EQ(columnsOf(lines[i].substr(0, at)), expected) << lines[i];
    }
  }
}

TEST_F(CliScreen, WideCutsNothing) {
  const Output inPipe = sitelist({"show", m_path});
  EXPECT_EQ(onTerminal(80, {"show", m_path, "--wide", "--color=never"}).out, inPipe.out);
  EXPECT_THAT(inPipe.out, AllOf(HasSubstr(repeated("東京", 24)), Not(HasSubstr(c_ellipsis))))
      << "a pipe gets the whole text";
}

TEST_F(CliScreen, ATerminalOfUnknownWidthCutsNothing) {
  EXPECT_EQ(onTerminal(0, {"show", m_path, "--color=never"}).out, sitelist({"show", m_path}).out);
}

class CliColor : public CliTest {
 protected:
  static bool isColored(const Output& output) {
    EXPECT_EQ(output.status, 0) << output.err;
    return output.out.find('\033') != std::string::npos;
  }
  std::vector<std::string> show(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"show", write("list.xml", document(httpSite("depot")))};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  }
};

TEST_F(CliColor, IsOnATerminalOnly) {
  EXPECT_TRUE(isColored(onTerminal(80, show())));
  EXPECT_TRUE(isColored(onTerminal(80, show({"--color=auto"}), {"TERM=xterm-256color"})));
  EXPECT_FALSE(isColored(sitelist(show())));
}

TEST_F(CliColor, IsWhereItIsAskedFor) {
  EXPECT_TRUE(isColored(sitelist(show({"--color=always"}))));
  EXPECT_FALSE(isColored(onTerminal(80, show({"--color=never"}))));
  EXPECT_TRUE(isColored(onTerminal(80, show({"--color=always"}), {"NO_COLOR=1", "TERM=dumb"})));
}

TEST_F(CliColor, IsLeftOutWhereTheEnvironmentAsksForNone) {
  EXPECT_FALSE(isColored(onTerminal(80, show(), {"NO_COLOR=1"})));
  EXPECT_TRUE(isColored(onTerminal(80, show(), {"NO_COLOR="})))
      << "an empty NO_COLOR has no effect";
  EXPECT_FALSE(isColored(onTerminal(80, show(), {"TERM=dumb"})));
}

TEST_F(CliColor, IsNotInFormsForPrograms) {
  for (const char* form : {"json", "csv", "xml"}) {
    EXPECT_FALSE(isColored(onTerminal(80, show({"--color=always", "--format", form})))) << form;
  }
}

TEST_F(CliColor, EveryColorIsEndedInItsLine) {
  for (const std::string& line : linesOf(onTerminal(80, show()).out)) {
    const bool isPlain = line.find('\033') == std::string::npos;
    EXPECT_TRUE(isPlain || testing::Value(line, EndsWith("\033[0m"))) << line;
  }
}

}  // namespace
}  // namespace test
