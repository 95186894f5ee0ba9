#include "tests/support/test_agent.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>

#include "host/common/encoding.h"
#include "host/log_sink.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::vector<LogLine>& keptLines() {
  static std::vector<LogLine> lines;
  return lines;
}

const std::wstring c_enter = L"Enter: ";
const std::wstring c_leave = L"Leave: ";

}  // namespace

TempDir::TempDir() {
  std::string pattern = (fs::temp_directory_path() / "sitehlp-test-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp");
  m_path = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  // Tests remove permissions. They are restored so that all files can be removed.
  for (fs::recursive_directory_iterator it(m_path, ignored), end; it != end;
       it.increment(ignored)) {
    if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
      fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
  }
  fs::remove_all(m_path, ignored);
}

std::wstring wide(const std::string& utf8) { return host::toWide(utf8.data(), utf8.size()); }
std::string narrow(const std::wstring& text) { return host::toUtf8(text); }

void writeFile(const std::string& path, const std::string& bytes, mode_t mode) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
  ::chmod(path.c_str(), mode);
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

bool exists(const std::string& path) { return fs::exists(fs::symlink_status(path)); }

std::map<std::string, std::string> snapshot(const std::string& directory) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(directory)) {
    if (entry.is_regular_file()) {
      files[fs::relative(entry.path(), directory).string()] = readFile(entry.path().string());
    }
  }
  return files;
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << "[" << static_cast<int>(line.level) << "] " << narrow(line.component) << ": "
             << narrow(line.text);
}

TestAgent::TestAgent(bool managed) {
  fs::create_directories(m_dir.path() + "/etc");
  fs::create_directories(m_dir.path() + "/mesh");
  settings.dataDirectory = m_dir.path();
  settings.managed = managed;
  settings.logLevel = LogLevel::Detail;
  settings.meshLoadCommand = {"/bin/sh", "-c", "exit 0"};
  keptLines().clear();
  host::setLogSink([](LogLevel level, const std::wstring& component, const std::wstring& text) {
    keptLines().push_back({level, component, text});
  });
  apply();
}

TestAgent::~TestAgent() {
  host::setLogSink(nullptr);
  host::setAgent(host::AgentSettings());
}

void TestAgent::apply() { host::setAgent(settings); }

const std::vector<LogLine>& TestAgent::log() const { return keptLines(); }

std::vector<LogLine> TestAgent::messages() const {
  std::vector<LogLine> result;
  for (const LogLine& line : keptLines()) {
    if (line.text.rfind(c_enter, 0) != 0 && line.text.rfind(c_leave, 0) != 0) {
      result.push_back(line);
    }
  }
  return result;
}

std::vector<std::wstring> TestAgent::texts(LogLevel level) const {
  std::vector<std::wstring> result;
  for (const LogLine& line : messages()) {
    if (line.level == level) result.push_back(line.text);
  }
  return result;
}

std::vector<std::wstring> TestAgent::traces() const {
  std::vector<std::wstring> result;
  for (const LogLine& line : keptLines()) {
    if (line.text.rfind(c_enter, 0) == 0) result.push_back(line.text.substr(c_enter.size()));
  }
  return result;
}

void TestAgent::clearLog() { keptLines().clear(); }

}  // namespace test
