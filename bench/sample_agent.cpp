#include "bench/sample_agent.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "bench/check.h"
#include "host/agent.h"
#include "sitehlp/sites_helper.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

std::string g_directory;

// If the key file changed a short time ago, the library reads it again for every password, because
// it might not detect a later change. The key of a real agent is older, so this function waits.
void makeKey() {
  if (fs::exists(g_directory + "/keystore/password.key")) return;
  fetchCipher();
  std::this_thread::sleep_for(std::chrono::milliseconds(3500));
}

}  // namespace

void fetchCipher() {
  std::wstring ignored;
  check(sitehlp::CSitesHelper(true).EncryptPassword(L"", ignored) != 0, "cannot encrypt");
}

void serveSampleAgent(const std::string& directory) {
  g_directory = fs::absolute(directory).string();
  fs::create_directories(g_directory + "/etc");
  fs::create_directories(g_directory + "/mesh");
  host::AgentSettings settings;
  settings.dataDirectory = g_directory;
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
  makeKey();
}

const std::string& agentDirectory() {
  check(!g_directory.empty(), "no agent is set");
  return g_directory;
}

std::string inEtc(const std::string& name) { return agentDirectory() + "/etc/" + name; }

std::wstring widePath(const std::string& path) { return std::wstring(path.begin(), path.end()); }

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  check(file.good(), "cannot read a file of the agent");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace bench
