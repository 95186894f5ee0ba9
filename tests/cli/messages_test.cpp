#include <filesystem>

#include "tests/cli/edit_fixture.h"

// Messages give the real cause, and the name of a file that the user knows.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class CliMessages : public CliTest {
 protected:
  CliMessages() {
    initAgent();
    setOwnList(document(httpSite("Depot")));
  }

  static Arguments reading(const std::string& command) {
    return command == "get" ? Arguments{"get", "type"} : Arguments{command};
  }
};

TEST_F(CliMessages, AnUnsupportedEncodingIsNotAnInvalidOne) {
  for (const std::string declaration : {"encoding=\"Shift_JIS\"", "encoding = 'Shift_JIS'"}) {
    const std::string path =
        write("list.xml", "<?xml version=\"1.0\" " + declaration + "?><a>\x83\x65</a>");
    const std::string reason =
        "the document declares the encoding \"Shift_JIS\"; only UTF-8, UTF-16 and UTF-32 are "
        "supported";
    for (const char* command : {"show", "get", "versions", "certs", "import", "modify"}) {
      const Output output = sitelist(reading(command) + Arguments{path});
      EXPECT_EQ(output.status, 3) << command;
      EXPECT_THAT(output.err,
                  AllOf(HasSubstr(path + ": the encoding of the document is not "
                                         "supported ("),
                        HasSubstr(")\n  " + reason + "\n  next: "), Not(HasSubstr("not valid"))))
          << command;
    }
    EXPECT_EQ(sitelist({"validate", path}).out, path + ": invalid-encoding: " + reason + "\n");
    const Output input = sitelist({"from-buffer", "-"}, readFile(path));
    EXPECT_EQ(input.status, 3);
    EXPECT_THAT(input.err, HasSubstr(reason));
  }
}

TEST_F(CliMessages, BytesThatAreNotInASupportedEncodingAreInvalid) {
  for (const std::string start : {"", "<?xml version=\"1.0\" encoding=\"utf-8\"?>",
                                  "<?xml version=\"1.0\"?>", "<?xml encoding"}) {
    const std::string path = write("list.xml", start + "<a>\xFF</a>");
    EXPECT_EQ(sitelist({"validate", path}).out,
              path + ": invalid-encoding: the bytes are not valid UTF-8, UTF-16 or UTF-32\n");
  }
}

TEST_F(CliMessages, ALoopOfLinksIsNotAMissingFile) {
  const std::string loop = file("loop");
  fs::create_symlink(loop, loop);
  for (const char* command : {"show", "get", "explain", "versions", "certs", "policies", "import",
                              "install", "modify", "server-list", "from-buffer"}) {
    const Output output = sitelist(reading(command) + Arguments{loop});
    EXPECT_EQ(output.status, 4) << command;
    EXPECT_THAT(output.err, AllOf(HasSubstr(loop + ": "),
                                  HasSubstr("Too many levels of symbolic links\n  next: check "),
                                  Not(HasSubstr("does not exist"))))
        << command;
  }
  const Output edit = sitelist({"edit", "--file", loop, "disable", "Depot"});
  EXPECT_EQ(edit.status, 4);
  EXPECT_THAT(edit.err, HasSubstr("Too many levels of symbolic links"));
  const Output agent = bare({"--agent-dir", loop, "show"});
  EXPECT_EQ(agent.status, 4);
  EXPECT_THAT(agent.err, HasSubstr(loop + ": the agent's data directory cannot be read: Too many "
                                          "levels of symbolic links\n"));
  EXPECT_THAT(sitelist({"show", file("none")}).err, HasSubstr("the file does not exist"));
}

// A file system without room for a byte of the drafts.
TEST_F(CliMessages, NoMessageNamesATemporaryFile) {
  const std::string own = readFile(ownList());
  const std::string incoming = write("in/list.xml", own);
  write("agent/agent.toml", "history = 0\n");
  const auto run = [&](const Arguments& arguments) {
    const Output output = shell(
        "(trap '' XFSZ; ulimit -f 0; exec \"$0\" --agent-dir agent \"$@\" < in/list.xml) 2>&1 | "
        "cat",
        arguments);
    EXPECT_THAT(output.out, AllOf(testing::AnyOf(HasSubstr("written"), HasSubstr("stored")),
                                  Not(HasSubstr("sitelist-")), Not(HasSubstr(file("tmp")))))
        << testing::PrintToString(arguments);
    EXPECT_EQ(readFile(ownList()), own);
  };
  for (const Arguments& arguments : {Arguments{"edit", "disable", "Depot"},
                                     {"edit", "--dry-run", "disable", "Depot"},
                                     {"edit", "--file", incoming, "disable", "Depot"},
                                     {"modify", "--repositories", incoming},
                                     {"modify", "--repositories", "--dry-run", incoming},
                                     {"import", "--dry-run", incoming},
                                     {"import", "-"},
                                     {"merge", "--first", incoming, "--dry-run"},
                                     {"policies", "set", "--dry-run", "Name", "Value"},
                                     {"show", "-"},
                                     {"validate", "-"}}) {
    run(arguments);
    run(Arguments{"--json"} + arguments);
  }
  run({"edit", "--file", "-", "disable", "Depot"});
  run({"merge", "--first", incoming});
  run({"rewrite", incoming, "-"});
}

}  // namespace
}  // namespace test
