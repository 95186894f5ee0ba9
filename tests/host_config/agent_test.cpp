#include "host/agent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "host/log_sink.h"
#include "platform/config/configuration.h"
#include "platform/config/mesh_service.h"
#include "tests/support/child_process.h"
#include "tests/support/rerooted_file_system.h"
#include "tests/support/test_agent.h"

namespace {

using korvel_com::ZQ::crypto::KEY_SIZE_2048;
using korvel_com::ZQ::crypto::KEY_SIZE_LEGACY;
using korvel_com::ZQ::crypto::KeyConf;
using testing::StartsWith;

std::string meshPath() {
  return test::narrow(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath());
}

std::string dataDirectory() {
  return test::narrow(IConfiguration::GetConfiguration()->GetFrameworkDataDirectory());
}

class Agent : public testing::Test {
 protected:
  test::TestAgent agent;
};

TEST_F(Agent, IsWhatTheProcessSays) {
  EXPECT_EQ(dataDirectory(), agent.dataDirectory());
  EXPECT_EQ(host::agent().dataDirectory, agent.dataDirectory());
  EXPECT_EQ(IConfiguration::GetConfiguration(), IConfiguration::GetConfiguration());
}

TEST_F(Agent, IsManagedOrNot) {
  EXPECT_EQ(IConfiguration::GetConfiguration()->IsManaged(), 0);
  agent.settings.managed = true;
  agent.apply();
  EXPECT_EQ(IConfiguration::GetConfiguration()->IsManaged(), 1);
}

TEST_F(Agent, LimitsTheMemoryOfAList) {
  EXPECT_EQ(IConfiguration::GetConfiguration()->GetMaxRecordBytes(), std::size_t{1} << 30);
  agent.settings.maxRecordMegabytes = 1;
  agent.apply();
  EXPECT_EQ(IConfiguration::GetConfiguration()->GetMaxRecordBytes(), std::size_t{1} << 20);
  agent.settings.maxRecordMegabytes = 1048576;
  agent.apply();
  EXPECT_EQ(IConfiguration::GetConfiguration()->GetMaxRecordBytes(), std::size_t{1} << 40);
}

TEST_F(Agent, HasAKeySize) {
  EXPECT_EQ(KeyConf::getCryptoKeySize(), KEY_SIZE_2048);
  agent.settings.cryptoKeySize = KEY_SIZE_LEGACY;
  agent.apply();
  EXPECT_EQ(KeyConf::getCryptoKeySize(), KEY_SIZE_LEGACY);
}

TEST_F(Agent, HasAMeshSiteListInItsDataDirectoryUnlessToldOtherwise) {
  EXPECT_EQ(meshPath(), agent.dataDirectory() + "/mesh/SiteList.xml");
  agent.settings.meshSiteListPath = "/else/list.xml";
  agent.apply();
  EXPECT_EQ(meshPath(), "/else/list.xml");
  agent.settings.meshSiteListPath = "below/list.xml";
  agent.apply();
  EXPECT_EQ(meshPath(), agent.dataDirectory() + "/below/list.xml");
}

TEST_F(Agent, HasAFullDataDirectoryWithoutTrailingSeparator) {
  agent.settings.dataDirectory = agent.dataDirectory() + "///";
  agent.apply();
  EXPECT_EQ(dataDirectory(), agent.dataDirectory());

  const std::string before = std::filesystem::current_path();
  agent.settings.dataDirectory = "relative/";
  agent.apply();
  EXPECT_EQ(dataDirectory(), before + "/relative");
}

// Returns a full path with this number of characters.
std::string longPath(std::size_t length, const std::string& unit) {
  std::string path = "/" + std::string(length % 2 == 0 ? 1 : 2, 'x');
  for (std::size_t characters = path.size(); characters < length; characters += 2) {
    path += "/" + unit;
  }
  return path;
}

TEST_F(Agent, RefusesADataDirectoryThatTheLibraryWouldCut) {
  for (const char* unit : {"a", "\xE2\x82\xAC"}) {
    for (const std::size_t length : {254U, 255U}) {
      agent.settings.dataDirectory = longPath(length, unit);
      agent.apply();
      EXPECT_EQ(dataDirectory(), agent.settings.dataDirectory);
      EXPECT_EQ(host::readAgentSettings(longPath(length, unit)).dataDirectory,
                longPath(length, unit));
    }
    const std::string last = dataDirectory();
    for (const std::size_t length : {256U, 257U, 300U}) {
      agent.settings.dataDirectory = longPath(length, unit);
      EXPECT_THROW(agent.apply(), host::SettingsError) << length;
      EXPECT_EQ(dataDirectory(), last) << "the settings in force stay";
      try {
        host::readAgentSettings(longPath(length, unit));
        ADD_FAILURE() << length;
      } catch (const host::SettingsError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(longPath(length, unit) + " is too long"));
        EXPECT_THAT(error.what(), testing::EndsWith(std::to_string(length + 4) +
                                                    " characters; at most 259 are allowed"));
      }
    }
  }
}

TEST_F(Agent, SetsTheLogThreshold) {
  for (const LogLevel level : {LogLevel::Off, LogLevel::Info, LogLevel::InternalError}) {
    agent.settings.logLevel = level;
    agent.apply();
    EXPECT_EQ(g_logThreshold, static_cast<int>(level));
  }
}

// Sends the agent of a process that has not called setAgent. Many threads ask for it at once.
// `args[0]` replaces the default data directory.
CHILD_PROCESS(defaultAgent) {
  const test::RerootedFileSystem files(host::AgentSettings().dataDirectory, args[0]);
  std::vector<std::wstring> errors;
  host::setLogSink([&](LogLevel level, const std::wstring&, const std::wstring& text) {
    if (level == LogLevel::Error) errors.push_back(text);
  });
  std::vector<const host::AgentSettings*> seen(8);
  std::vector<std::thread> threads;
  for (auto& each : seen) threads.emplace_back([&each] { each = &host::agent(); });
  for (std::thread& thread : threads) thread.join();
  for (const auto* each : seen) {
    if (each != &host::agent() || each->dataDirectory.empty()) return 1;
  }
  channel.send(dataDirectory());
  channel.send(std::to_string(IConfiguration::GetConfiguration()->IsManaged()));
  channel.send(std::to_string(g_logThreshold));
  channel.send(std::to_string(errors.size()));
  if (!errors.empty()) channel.send(test::narrow(errors[0]));
  return 0;
}

class DefaultAgent : public testing::Test {
 protected:
  test::TempDir dir;
  const std::string directory = host::AgentSettings().dataDirectory;
};

TEST_F(DefaultAgent, HasTheDefaultSettingsWithoutAFile) {
  test::ChildProcess child("defaultAgent", {dir.path()});
  EXPECT_EQ(child.receive(), "/Library/Korvel/orb");
  EXPECT_EQ(child.receive(), "0");
  EXPECT_EQ(child.receive(), "2");
  EXPECT_EQ(child.receive(), "0");
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(DefaultAgent, HasTheSettingsOfTheFile) {
  test::writeFile(dir.file("agent.toml"), "managed = true\nlog.level = \"info\"\n");
  test::ChildProcess child("defaultAgent", {dir.path()});
  EXPECT_EQ(child.receive(), directory);
  EXPECT_EQ(child.receive(), "1");
  EXPECT_EQ(child.receive(), "1");
  EXPECT_EQ(child.receive(), "0");
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(DefaultAgent, LogsOnceThatTheFileCannotBeUsedAndTakesTheDefaults) {
  test::writeFile(dir.file("agent.toml"), "managed = true\nlog.level = \"loud\"\n");
  test::ChildProcess child("defaultAgent", {dir.path()});
  EXPECT_EQ(child.receive(), directory);
  EXPECT_EQ(child.receive(), "0");
  EXPECT_EQ(child.receive(), "2");
  EXPECT_EQ(child.receive(), "1");
  EXPECT_THAT(child.receive(), StartsWith(directory + "/agent.toml:2:13: log.level must be"));
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
