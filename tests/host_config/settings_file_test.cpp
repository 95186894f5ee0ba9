#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "host/agent.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_agent.h"

namespace {

using korvel_com::ZQ::crypto::KEY_SIZE_2048;
using korvel_com::ZQ::crypto::KEY_SIZE_LEGACY;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t c_maxBytes = 1 << 20;

class SettingsFile : public testing::Test {
 protected:
  test::TempDir dir;
  const std::string file = dir.file("agent.toml");

  host::AgentSettings read(const std::string& text) {
    test::writeFile(file, text);
    return host::readAgentSettings(dir.path());
  }

  std::string fault(const std::string& text) {
    test::writeFile(file, text);
    return fault();
  }

  std::string fault() {
    try {
      host::readAgentSettings(dir.path());
    } catch (const host::SettingsError& error) {
      return error.what();
    }
    return "no fault";
  }
};

void expectDefaults(const host::AgentSettings& settings) {
  const host::AgentSettings defaults;
  EXPECT_EQ(settings.managed, defaults.managed);
  EXPECT_EQ(settings.cryptoKeySize, defaults.cryptoKeySize);
  EXPECT_EQ(settings.meshSiteListPath, defaults.meshSiteListPath);
  EXPECT_EQ(settings.meshLoadCommand, defaults.meshLoadCommand);
  EXPECT_EQ(settings.meshLoadTimeoutSeconds, defaults.meshLoadTimeoutSeconds);
  EXPECT_EQ(settings.maxRecordMegabytes, defaults.maxRecordMegabytes);
  EXPECT_EQ(settings.historyLength, defaults.historyLength);
  EXPECT_EQ(settings.logLevel, defaults.logLevel);
}

TEST_F(SettingsFile, MayBeMissing) {
  const host::AgentSettings settings = host::readAgentSettings(dir.path());
  expectDefaults(settings);
  EXPECT_EQ(settings.dataDirectory, dir.path());
  expectDefaults(host::readAgentSettings(dir.file("missing")));
}

TEST_F(SettingsFile, MayBeEmpty) {
  expectDefaults(read(""));
  expectDefaults(read("# nothing\n[mesh]\n[log]\n"));
}

TEST_F(SettingsFile, NamesEverySetting) {
  const host::AgentSettings settings = read(R"(
managed = true
crypto_key_size = "legacy"
history = 25
[mesh]
site_list_path = "/mesh/list.xml"
load_command = ["/bin/mesh", "load", "two words", ""]
load_timeout_seconds = 5
[limits]
record_megabytes = 16
[log]
level = "detail"
)");
  EXPECT_EQ(settings.dataDirectory, dir.path());
  EXPECT_TRUE(settings.managed);
  EXPECT_EQ(settings.cryptoKeySize, KEY_SIZE_LEGACY);
  EXPECT_EQ(settings.historyLength, 25U);
  EXPECT_EQ(settings.meshSiteListPath, "/mesh/list.xml");
  EXPECT_THAT(settings.meshLoadCommand, ElementsAre("/bin/mesh", "load", "two words", ""));
  EXPECT_EQ(settings.meshLoadTimeoutSeconds, 5U);
  EXPECT_EQ(settings.maxRecordMegabytes, 16U);
  EXPECT_EQ(settings.logLevel, LogLevel::Detail);
}

TEST_F(SettingsFile, KeepsTheDefaultsOfWhatItDoesNotName) {
  const host::AgentSettings settings = read("managed = true\n");
  EXPECT_TRUE(settings.managed);
  EXPECT_EQ(settings.cryptoKeySize, KEY_SIZE_2048);
  EXPECT_EQ(settings.logLevel, LogLevel::Error);
}

TEST_F(SettingsFile, CountsRelativePathsFromTheDataDirectory) {
  const host::AgentSettings settings =
      read("[mesh]\nsite_list_path = \"m/list.xml\"\nload_command = [\"bin/load\", \"m/x\"]\n");
  EXPECT_EQ(settings.meshSiteListPath, dir.file("m/list.xml"));
  EXPECT_THAT(settings.meshLoadCommand, ElementsAre(dir.file("bin/load"), "m/x"));
}

TEST_F(SettingsFile, GivesFullPathsForARelativeDataDirectory) {
  read("[mesh]\nsite_list_path = \"list.xml\"\n");
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(dir.path()).parent_path());
  const host::AgentSettings settings =
      host::readAgentSettings(std::filesystem::path(dir.path()).filename().string() + "//");
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::equivalent(settings.dataDirectory, dir.path()));
  EXPECT_EQ(settings.dataDirectory.front(), '/');
  EXPECT_NE(settings.dataDirectory.back(), '/');
  EXPECT_EQ(settings.meshSiteListPath, settings.dataDirectory + "/list.xml");
}

TEST_F(SettingsFile, KnowsEveryLevelAndKeySizeByName) {
  EXPECT_EQ(read("log.level = \"detail\"").logLevel, LogLevel::Detail);
  EXPECT_EQ(read("log.level = \"info\"").logLevel, LogLevel::Info);
  EXPECT_EQ(read("log.level = \"error\"").logLevel, LogLevel::Error);
  EXPECT_EQ(read("log.level = \"internal-error\"").logLevel, LogLevel::InternalError);
  EXPECT_EQ(read("log.level = \"off\"").logLevel, LogLevel::Off);
  EXPECT_EQ(read("crypto_key_size = \"legacy\"").cryptoKeySize, KEY_SIZE_LEGACY);
  EXPECT_EQ(read("crypto_key_size = \"2048\"").cryptoKeySize, KEY_SIZE_2048);
}

TEST_F(SettingsFile, RefusesUnknownSettingsAndNamesTheirPlace) {
  EXPECT_EQ(fault("managed = true\nmannaged = true\n"), file + ":2:1: unknown setting mannaged");
  EXPECT_EQ(fault("[mesh]\n  load = []\n"), file + ":2:3: unknown setting mesh.load");
  EXPECT_EQ(fault("[log]\nfile = \"x\"\n"), file + ":2:1: unknown setting log.file");
  EXPECT_THAT(fault("[other]\n"), HasSubstr("unknown setting other"));
  EXPECT_THAT(fault("[mesh.log]\nlevel = \"off\"\n"), HasSubstr("unknown setting mesh.log"));
  EXPECT_EQ(fault("\"log.level\" = \"off\"\n"), file + ":1:1: unknown setting log.level");
  EXPECT_EQ(fault("\"\" = { managed = true }\n"), file + ":1:1: unknown setting ");
}

TEST_F(SettingsFile, RefusesWrongTypes) {
  EXPECT_EQ(fault("managed = 1"), file + ":1:11: managed must be true or false");
  EXPECT_THAT(fault("managed = \"true\""), HasSubstr("managed must be true or false"));
  EXPECT_THAT(fault("crypto_key_size = 2048"), HasSubstr("crypto_key_size must be a string"));
  EXPECT_THAT(fault("mesh = 1"), HasSubstr("mesh must be a table"));
  EXPECT_THAT(fault("log = \"error\""), HasSubstr("log must be a table"));
  EXPECT_THAT(fault("[[mesh]]\n"), HasSubstr("mesh must be a table"));
  EXPECT_THAT(fault("mesh.site_list_path = true"), HasSubstr("mesh.site_list_path must be a str"));
  EXPECT_THAT(fault("mesh.load_command = \"x y\""),
              HasSubstr("mesh.load_command must be an array of strings"));
  EXPECT_THAT(fault("mesh.load_command = [\"/x\", 1]"), HasSubstr("load_command must be a string"));
  EXPECT_THAT(fault("log.level = 1"), HasSubstr("log.level must be a string"));
}

TEST_F(SettingsFile, RefusesValuesThatMeanNothing) {
  EXPECT_THAT(fault("crypto_key_size = \"4096\""),
              HasSubstr("crypto_key_size must be \"legacy\" or \"2048\""));
  EXPECT_THAT(fault("log.level = \"Error\""), HasSubstr("log.level must be detail, info, error"));
  EXPECT_THAT(fault("mesh.site_list_path = \"\""), HasSubstr("must not be empty"));
  EXPECT_THAT(fault("mesh.load_command = [\"\"]"), HasSubstr("must not be empty"));
  EXPECT_THAT(fault("mesh.site_list_path = \"a\\u0000b\""), HasSubstr("zero character"));
  EXPECT_THAT(fault("mesh.load_command = [\"/a\", \"b\\u0000\"]"), HasSubstr("zero character"));
}

TEST_F(SettingsFile, TakesNumbersUpToTheirLimit) {
  EXPECT_EQ(read("mesh.load_timeout_seconds = 1").meshLoadTimeoutSeconds, 1U);
  EXPECT_EQ(read("mesh.load_timeout_seconds = 86400").meshLoadTimeoutSeconds, 86400U);
  EXPECT_EQ(read("limits.record_megabytes = 1").maxRecordMegabytes, 1U);
  EXPECT_EQ(read("limits.record_megabytes = 1048576").maxRecordMegabytes, 1048576U);
  EXPECT_EQ(read("history = 0").historyLength, 0U);
  EXPECT_EQ(read("history = 10000").historyLength, 10000U);
  for (const char* value : {"-1", "10001"}) {
    EXPECT_EQ(fault(std::string("history = ") + value),
              file + ":1:11: history must be from 0 to 10000");
  }
  for (const char* value : {"0", "-1", "86401", "9223372036854775807"}) {
    EXPECT_EQ(fault(std::string("mesh.load_timeout_seconds = ") + value),
              file + ":1:29: mesh.load_timeout_seconds must be from 1 to 86400");
  }
  for (const char* value : {"0", "-1", "1048577", "-9223372036854775808"}) {
    EXPECT_EQ(fault(std::string("limits.record_megabytes = ") + value),
              file + ":1:27: limits.record_megabytes must be from 1 to 1048576");
  }
  for (const char* value : {"60.0", "1e3", "\"60\"", "true", "[60]"}) {
    EXPECT_EQ(fault(std::string("limits.record_megabytes = ") + value),
              file + ":1:27: limits.record_megabytes must be a whole number");
  }
}

TEST_F(SettingsFile, RefusesWhatIsNoToml) {
  EXPECT_EQ(fault("managed yes\n"), file + ":1:9: the line is not KEY = VALUE");
  EXPECT_THAT(fault("managed = maybe\n"), StartsWith(file + ":1:11: not valid TOML: value: "));
  EXPECT_THAT(fault("managed = true\nmanaged ="), StartsWith(file + ":2:"));
  EXPECT_THAT(fault("managed = true\nmanaged = true"), StartsWith(file + ":2:"));
  EXPECT_THAT(fault("log.level = \"\xFF\""), StartsWith(file + ":1:"));
  EXPECT_THAT(fault("mesh.load_command = " + std::string(100000, '[')), StartsWith(file + ":1:"));
}

TEST_F(SettingsFile, RefusesKeysThatBeginWithNoKeyCharacter) {
  for (const char* text :
       {"[!]", "[ =", "[\x01]", "[mesh.!]", "mesh.! = 1", "[[!]]", "a = { ! }"}) {
    EXPECT_THAT(fault(text), StartsWith(file + ":1:")) << text;
  }
}

TEST_F(SettingsFile, RefusesCharactersBeyondAsciiInWhatIsNoString) {
  for (const char* text : {"managed\u00E9 = true", "managed = \uFEFE true", "\u3001managed = true",
                           "[m\u05D0]", "managed = true \u2028", "\"\" = 1 \u00E9"}) {
    EXPECT_THAT(fault(text), StartsWith(file + ":1:")) << text;
  }
  EXPECT_THAT(fault("managed = true # \u00E9\nlog.level = '\u00E9'\u00E9"),
              StartsWith(file + ":2:"));
}

TEST_F(SettingsFile, TakesAnyCharacterInStringsAndComments) {
  for (const char* path : {"'/\u6F22\uFEFE'", "\"/\u6F22\uFEFE\"", "'''/\u6F22\uFEFE'''",
                           "\"\"\"/\u6F22\uFEFE\"\"\""}) {
    EXPECT_EQ(read(std::string("\uFEFF# \u00E9 ' \"\nmesh.site_list_path = ") + path + " # \u00E9")
                  .meshSiteListPath,
              "/\u6F22\uFEFE");
  }
  EXPECT_EQ(read("mesh.site_list_path = \"/a\\\"\u00E9\"").meshSiteListPath, "/a\"\u00E9");
  EXPECT_EQ(read("mesh.site_list_path = '''/a''\u00E9'''").meshSiteListPath, "/a''\u00E9");
}

TEST_F(SettingsFile, MayBeAsLargeAsTheLimitAndNoLarger) {
  const std::string text = "managed = true\n#";
  EXPECT_TRUE(read(text + std::string(c_maxBytes - text.size(), 'x')).managed);
  EXPECT_EQ(fault(text + std::string(c_maxBytes - text.size() + 1, 'x')),
            file + ": File too large");
}

TEST_F(SettingsFile, MustBeAFileThatCanBeRead) {
  std::filesystem::create_directory(file);
  EXPECT_EQ(fault(), file + ": Is a directory");
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(fault(), file + ": Invalid argument");
  std::filesystem::remove(file);
  test::writeFile(file, "managed = true\n");
  test::FaultyFileSystem files;
  files.failEvery(test::FileCall::Read, EIO);
  EXPECT_EQ(fault(), file + ": Input/output error");
}

TEST_F(SettingsFile, SaysWhatTheSettingsSay) {
  host::AgentSettings settings;
  settings.managed = true;
  settings.cryptoKeySize = KEY_SIZE_LEGACY;
  settings.meshSiteListPath = "/a \"quoted\" \\ back/\xC3\xBC'\n.xml";
  settings.meshLoadCommand = {"/bin/x",      "",    "two words", "'single'", "\"double\"",
                              "\t\x01\x7F",  "'''", "\"\"\"",    "C:\\new",  "# no comment",
                              "\xE2\x82\xAC"};
  settings.meshLoadTimeoutSeconds = 7;
  settings.maxRecordMegabytes = 3;
  settings.historyLength = 0;
  settings.logLevel = LogLevel::InternalError;
  const host::AgentSettings back = read(host::formatAgentSettings(settings));
  EXPECT_EQ(back.managed, settings.managed);
  EXPECT_EQ(back.cryptoKeySize, settings.cryptoKeySize);
  EXPECT_EQ(back.meshSiteListPath, settings.meshSiteListPath);
  EXPECT_EQ(back.meshLoadCommand, settings.meshLoadCommand);
  EXPECT_EQ(back.meshLoadTimeoutSeconds, settings.meshLoadTimeoutSeconds);
  EXPECT_EQ(back.maxRecordMegabytes, settings.maxRecordMegabytes);
  EXPECT_EQ(back.historyLength, settings.historyLength);
  EXPECT_EQ(back.logLevel, settings.logLevel);
  EXPECT_EQ(back.dataDirectory, dir.path());
}

TEST_F(SettingsFile, KeepsLineFeedsAndQuotesOfEverySort) {
  host::AgentSettings settings;
  settings.dataDirectory = dir.path();
  settings.meshLoadCommand = {"/bin/load",
                              "\n\n'a",
                              "\nfirst",
                              "a\nb",
                              "\n",
                              "'''\n'''",
                              "\"\"\"\n'''",
                              "a\r\nb",
                              "\n'\xE2\x82\xAC",
                              "''\n''",
                              "\xC3\xA4\n\xC3\xA4"};
  EXPECT_EQ(read(host::formatAgentSettings(settings)).meshLoadCommand, settings.meshLoadCommand);
}

TEST_F(SettingsFile, SaysTheDefaults) {
  expectDefaults(read(host::formatAgentSettings(host::AgentSettings())));
}

}  // namespace
