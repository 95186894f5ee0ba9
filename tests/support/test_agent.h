#ifndef TESTS_SUPPORT_TEST_AGENT_H
#define TESTS_SUPPORT_TEST_AGENT_H

#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

#include "host/agent.h"
#include "platform/common/log.h"

namespace test {

// A new empty directory in the system's temporary directory. The destructor removes it with its
// content.
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
// Returns the content of every file below the directory, by its relative path.
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

// A real agent in its own data directory, for the life of the object. The directory has etc/. The
// host library creates the directories for locks and keys. All log lines from detail level on are
// kept in order.
class TestAgent {
 public:
  explicit TestAgent(bool managed = false);
  ~TestAgent();

  // The settings. Call apply() after a change.
  host::AgentSettings settings;
  void apply();

  const std::string& dataDirectory() const { return m_dir.path(); }
  std::string etc(const std::string& name) const { return m_dir.path() + "/etc/" + name; }

  // Returns the log lines so far. Trace lines begin with "Enter: " or "Leave: ".
  const std::vector<LogLine>& log() const;
  // Returns the log lines without trace lines.
  std::vector<LogLine> messages() const;
  // Returns the texts of the messages of one level.
  std::vector<std::wstring> texts(LogLevel level) const;
  // Returns the texts of the "Enter: " lines, in order.
  std::vector<std::wstring> traces() const;
  void clearLog();

 private:
  TempDir m_dir;
};

}  // namespace test

#endif
