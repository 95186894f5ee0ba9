#include <filesystem>
#include <nlohmann/json.hpp>

#include "host/agent.h"
#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/support/server_password.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

enum class Key { Good, Missing, Damaged, OfAnotherAgent };

constexpr Key c_keys[] = {Key::Good, Key::Missing, Key::Damaged, Key::OfAnotherAgent};
const char* const c_keyNames[] = {"a good key", "no key", "a damaged key", "another agent's key"};

struct Command {
  std::vector<std::string> arguments;  // a word that begins with "@" is a file of the test
  int status[4];                       // for each key
  std::string input = "";
};

constexpr const char* c_vendorSite =
    R"(<HttpSite Type="repository" Name="Vendor" Order="2" Enabled="1" )"
    R"(Server="update.wex.example:80"><Password Encrypted="1">)";

// An agent whose list has passwords, and documents with passwords that its key decrypts. The list
// in its history has others.
class CliLostPasswords : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    own = listWith(protectedText("own"), protectedText("own vendor"));
    setOwnList(own);
    m_old = listWith(protectedText("old"), protectedText("old vendor"));
    const std::string incoming = listWith(protectedText("new"), protectedText("new vendor"));
    write("in/SiteList.xml", incoming);
    write("agent/keystore/server.key", std::string(32, 's'));
    host::AgentSettings settings;
    settings.dataDirectory = file("agent");
    host::setAgent(settings);
    write("server.xml", document(httpSite("depot", "1", sealServerPassword("server"))));
    m_key = readFile(keyFile());
  }

  static std::string listWith(const std::string& password, const std::string& vendorPassword) {
    return document(httpSite("depot", "1", password) + c_vendorSite + vendorPassword +
                    "</Password></HttpSite>");
  }

  std::string keyFile() const { return file("agent/keystore/password.key"); }

  void setKey(Key key) {
    fs::remove(keyFile());
    if (key == Key::Good) write("agent/keystore/password.key", m_key);
    if (key == Key::Damaged) write("agent/keystore/password.key", "too short");
    if (key == Key::OfAnotherAgent) write("agent/keystore/password.key", std::string(32, 'k'));
  }

  void keepInHistory(const std::string& list) {
    fs::remove_all(file("agent/etc/history"));
    write("agent/etc/history/1-20260101T000000Z-import.xml", list);
  }

  // Restores the first state of the agent, but with this key.
  void start(Key key) {
    setOwnList(own);
    keepInHistory(m_old);
    setKey(key);
    for (const char* name : {"agent/ServerSiteList.xml", "agent/mesh/SiteList.xml", "out.xml"}) {
      fs::remove(file(name));
    }
  }

  Output run(const Command& command, bool isLossAllowed = false) {
    std::vector<std::string> arguments;
    for (const std::string& word : command.arguments) {
      arguments.push_back(word[0] == '@' ? file(word.substr(1)) : word);
    }
    if (isLossAllowed) arguments.emplace_back("--allow-lost-passwords");
    return sitelist(arguments, command.input);
  }

  std::string own;

 private:
  std::string m_key;
  std::string m_old;
};

std::string describe(const Command& command, Key key) {
  std::string text = c_keyNames[static_cast<int>(key)] + std::string(":");
  for (const std::string& word : command.arguments) text.append(" ").append(word);
  return text;
}

// Commands that decrypt passwords, or add passwords to the list.
std::vector<Command> losingCommands() {
  return {
      {{"import", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"import", "--dry-run", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"install", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"install", "--dry-run", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"modify", "--repositories", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"modify", "--repositories", "--dry-run", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"policies", "set", "name", "value"}, {0, 5, 5, 5}},
      {{"policies", "set", "--dry-run", "name", "value"}, {0, 5, 5, 5}},
      {{"merge", "--first", "@in/SiteList.xml", "--output", "@agent/etc/SiteList.xml"},
       {0, 5, 5, 5}},
      {{"merge", "--first", "@in/SiteList.xml", "--dry-run"}, {0, 5, 5, 5}},
      {{"rewrite", "@in/SiteList.xml", "@agent/etc/SiteList.xml"}, {0, 5, 5, 5}},
      {{"undo"}, {0, 5, 5, 5}},
      {{"undo", "--dry-run"}, {0, 5, 5, 5}},
  };
}

// Other commands. Those that only encrypt a new password accept the key of another agent.
std::vector<Command> otherCommands() {
  return {
      {{"merge", "--first", "@in/SiteList.xml"}, {0, 5, 5, 5}},
      {{"merge", "--first", "@in/SiteList.xml", "--output", "@out.xml"}, {0, 5, 5, 5}},
      {{"rewrite", "@in/SiteList.xml", "@out.xml"}, {0, 5, 5, 5}},
      {{"server-list", "--adjust-passwords", "@server.xml"}, {0, 5, 5, 0}},
      {{"server-list", "@server.xml"}, {0, 0, 0, 0}},
      {{"derive-server-list", "@in"}, {0, 0, 0, 0}},
      {{"modify", "--servers", "@in/SiteList.xml"}, {0, 5, 0, 0}},
      {{"edit", "disable", "depot"}, {0, 0, 0, 0}},
      {{"edit", "set", "depot", "--password-stdin"}, {0, 5, 5, 0}, "new\n"},
      {{"protect"}, {0, 5, 5, 0}, "new\n"},
      {{"show"}, {0, 0, 0, 0}},
      {{"get", "password", "--site", "depot"}, {0, 0, 0, 0}},
      {{"servers"}, {1, 1, 1, 1}},
  };
}

TEST_F(CliLostPasswords, NoCommandLosesOneOrMakesAKeyBesideThem) {
  std::vector<Command> commands = losingCommands();
  for (const Command& command : otherCommands()) commands.push_back(command);
  for (const Command& command : commands) {
    for (const Key key : c_keys) {
      SCOPED_TRACE(describe(command, key));
      start(key);
      const auto before = agentFiles();
      const Output output = run(command);
      EXPECT_EQ(output.status, command.status[static_cast<int>(key)]) << output.err;
      EXPECT_EQ(exists(keyFile()), key != Key::Missing);
      if (output.status != 5) continue;
      EXPECT_EQ(agentFiles(), before);
      EXPECT_FALSE(exists(file("out.xml")));
      EXPECT_EQ(output.out, "");
      EXPECT_THAT(output.err, testing::AnyOf(HasSubstr("password.key"), HasSubstr("password key")));
    }
  }
}

TEST_F(CliLostPasswords, ALossThatIsAllowedIsNamedSiteBySite) {
  for (const Command& command : losingCommands()) {
    for (const Key key : {Key::Missing, Key::Damaged, Key::OfAnotherAgent}) {
      SCOPED_TRACE(describe(command, key));
      start(key);
      const Output output = run(command, true);
      EXPECT_EQ(output.status, 0) << output.err;
      EXPECT_THAT(output.err, HasSubstr(": a password of site \"Vendor\" cannot be "
                                        "decrypted with the password key; it "));
      const bool isMade = key == Key::Missing && exists(keyFile());
      EXPECT_EQ(output.err.find("a new one was created") != std::string::npos, isMade)
          << output.err;
    }
  }
}

TEST_F(CliLostPasswords, ALossThatIsAllowedIsAWarningInJson) {
  for (Command command : losingCommands()) {
    SCOPED_TRACE(describe(command, Key::Damaged));
    start(Key::Damaged);
    command.arguments.emplace_back("--json");
    const Output output = run(command, true);
    EXPECT_EQ(output.status, 0) << output.err;
    const std::vector<std::string> warnings = nlohmann::json::parse(output.out)["warnings"];
    EXPECT_THAT(warnings,
                testing::Contains(HasSubstr(": a password of site \"Vendor\" cannot be ")));
    for (const std::string& text : warnings) {
      EXPECT_THAT(output.err, HasSubstr("sitelist: warning: " + text + "\n"));
    }
  }
}

TEST_F(CliLostPasswords, TheServersPasswordsNeedTheServersKey) {
  const Command adjust = {{"server-list", "--adjust-passwords", "@server.xml"}, {}};
  for (const char* key : {"", "too short", "another key of 32 bytes .........."}) {
    SCOPED_TRACE(key);
    start(Key::Good);
    fs::remove(file("agent/keystore/server.key"));
    if (*key) write("agent/keystore/server.key", std::string(key).substr(0, 32));
    const auto before = agentFiles();
    const Output refused = run(adjust);
    EXPECT_EQ(refused.status, 5);
    EXPECT_THAT(refused.err, HasSubstr(file("server.xml") +
                                       ": passwords cannot be decrypted with the server key:\n"
                                       "  site \"depot\"\n"));
    EXPECT_EQ(agentFiles(), before);
    const Output allowed = run(adjust, true);
    EXPECT_EQ(allowed.status, 0) << allowed.err;
    EXPECT_THAT(allowed.err, HasSubstr("cannot be decrypted with the server key; it is now empty"));
  }
}

// The command writes to a fixed directory outside the agent, so only its failures are tested.
TEST_F(CliLostPasswords, FromBufferRefusesToo) {
  for (const Key key : {Key::Missing, Key::Damaged, Key::OfAnotherAgent}) {
    start(key);
    const auto before = agentFiles();
    const Output output = run({{"from-buffer", "@in/SiteList.xml"}, {}});
    EXPECT_EQ(output.status, 5) << output.err;
    EXPECT_EQ(agentFiles(), before);
  }
}

TEST_F(CliLostPasswords, TheReasonOfAKeyThatCannotBeUsedIsSaid) {
  const Command import = {{"import", "@in/SiteList.xml"}, {}};
  start(Key::Damaged);
  EXPECT_THAT(run(import).err, HasSubstr(file("in/SiteList.xml") +
                                         ": passwords cannot be decrypted with the password key:\n"
                                         "  site \"depot\"\n  site \"Vendor\"\n  Key file " +
                                         keyFile() + ": the file has 9 bytes, but a key has 32\n"));
  start(Key::Missing);
  const Output missing = run(import);
  EXPECT_THAT(missing.err, HasSubstr(keyFile() + ": the password key is missing, but the agent's "
                                                 "own list has passwords:\n  site \"depot\"\n"));
  fs::remove(ownList());
  EXPECT_THAT(run(import).err, HasSubstr("\n  Key file " + keyFile() + ": it is missing\n"));
  start(Key::OfAnotherAgent);
  EXPECT_THAT(run(import).err, HasSubstr("  next: name the agent that the list belongs to"));
}

TEST_F(CliLostPasswords, InitMakesNoKeyBesideThem) {
  start(Key::Missing);
  fs::remove(file("agent/agent.toml"));
  const auto before = agentFiles();
  const Output refused = sitelist({"init"});
  EXPECT_EQ(refused.status, 5);
  EXPECT_THAT(refused.err, HasSubstr("the password key is missing, but the agent's own list has "
                                     "passwords:\n  site \"depot\""));
  EXPECT_THAT(refused.err, HasSubstr("\n  next: restore the key file from a backup, or move the "
                                     "list to another place\n"));
  EXPECT_EQ(agentFiles(), before);
  start(Key::Good);
  EXPECT_EQ(sitelist({"init"}).status, 0) << "with their key";
}

TEST_F(CliLostPasswords, AnAgentWithoutPasswordsMayMakeItsKey) {
  start(Key::Missing);
  setOwnList(document(httpSite("depot")));
  EXPECT_EQ(sitelist({"policies", "set", "name", "value"}).status, 0);
  EXPECT_TRUE(exists(keyFile()));
  start(Key::Missing);
  fs::remove(ownList());
  EXPECT_EQ(sitelist({"import", write("plain.xml", document(httpSite("depot")))}).status, 0);
  EXPECT_TRUE(exists(keyFile()));
}

TEST_F(CliLostPasswords, AnUntouchedPasswordKeepsItsText) {
  const std::string text = own.substr(own.find("<Password"), 60);
  start(Key::OfAnotherAgent);
  EXPECT_EQ(sitelist({"edit", "disable", "depot"}).status, 0);
  EXPECT_THAT(readFile(ownList()), HasSubstr(text));
  keepInHistory(own);
  const Output restored = sitelist({"undo"});
  EXPECT_EQ(restored.status, 0) << "the list has these passwords: " << restored.err;
  EXPECT_EQ(readFile(ownList()), own);
}

}  // namespace
}  // namespace test
