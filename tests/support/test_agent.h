#ifndef TESTS_SUPPORT_TEST_AGENT_H
#define TESTS_SUPPORT_TEST_AGENT_H

#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

#include "host/agent.h"
#include "platform/common/log.h"

namespace test {

// A new empty directory under the system's temporary directory, removed with all it holds.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return m_path; }
  std::string file(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};

std::wstring wide(const std::string& utf8);
std::string narrow(const std::wstring& text);

void writeFile(const std::string& path, const std::string& bytes, mode_t mode = 0644);
std::string readFile(const std::string& path);  // throws when it cannot be read
bool exists(const std::string& path);
// Every file under the directory, by its path below it, with its bytes.
std::map<std::string, std::string> snapshot(const std::string& directory);

struct LogLine {
  LogLevel level;
  std::wstring component;
  std::wstring text;
  bool operator==(const LogLine& other) const {
    return level == other.level && component == other.component && text == other.text;
  }
};
std::ostream& operator<<(std::ostream& out, const LogLine& line);

// A real agent in a directory of its own, for the life of the object: data directory with etc/,
// lock and key directories as the host makes them, and every log line from detail level on kept in
// order.
class TestAgent {
 public:
  explicit TestAgent(bool managed = false);
  ~TestAgent();

  // Change settings (managed, key size, mesh command, ...) and apply them.
  host::AgentSettings settings;
  void apply();

  const std::string& dataDirectory() const { return m_dir.path(); }
  std::string etc(const std::string& name) const { return m_dir.path() + "/etc/" + name; }

  // What was logged so far. Scope traces are lines that begin with "Enter: " or "Leave: ".
  const std::vector<LogLine>& log() const;
  // The lines that are no scope trace.
  std::vector<LogLine> messages() const;
  // The texts of the messages of one level.
  std::vector<std::wstring> texts(LogLevel level) const;
  // The texts of the scope traces entered, in order.
  std::vector<std::wstring> traces() const;
  void clearLog();

 private:
  TempDir m_dir;
};

}  // namespace test

#endif
