#ifndef TESTS_RESILIENCE_WORKSHOP_H
#define TESTS_RESILIENCE_WORKSHOP_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/rerooted_file_system.h"
#include "tests/support/test_agent.h"

namespace test {

// The clear password that stands in every password field. Nothing may ever show it.
extern const std::string c_canary;

// Puts the temporary files of this process and its children into memory, where the system has a
// memory file system. Must be called before the first one is made. Always true.
bool useMemoryDisk();

// The files that operations write, by their path, with what makes two runs of one operation differ
// taken out: protected passwords and time stamps.
using State = std::map<std::string, std::string>;

struct Operation;

// An agent with a list and key files of its own, and an incoming list with its key files: all that
// the writing operations need, and a way back to how it was. Lies in memory where the system has a
// memory file system, because what is tried here is tried thousands of times.
class Workshop {
 public:
  Workshop();

  TestAgent agent;

  // Puts every file back to how it was at the beginning and removes every other.
  void reset();

  // How it was at the beginning, and ready for this operation.
  void reset(const Operation& operation);

  std::string own() const { return agent.etc("SiteList.xml"); }
  std::string etcDirectory() const { return agent.dataDirectory() + "/etc"; }
  std::string incoming() const { return m_work.file("in/SiteList.xml"); }
  // A list without a management server, whose public key comes from keyDirectory().
  std::string plainIncoming() const { return m_work.file("plain/SiteList.xml"); }
  // A list of the agent in directories that are not there yet.
  std::string newOwn() const { return agent.dataDirectory() + "/fresh/etc/SiteList.xml"; }
  std::string serverList() const { return agent.dataDirectory() + "/ServerSiteList.xml"; }
  std::string scratchList() const { return scratchRoot() + "/etc/SiteList.xml"; }
  std::string keystore() const { return agent.dataDirectory() + "/keystore"; }
  std::string keyDirectory() const { return m_work.file("keys"); }
  std::string scratchRoot() const { return m_work.file("scratch"); }
  // The document that a server hands over, its passwords under the server's key.
  const std::string& serverBuffer() const { return m_serverBuffer; }
  // The incoming list as text.
  const std::wstring& incomingText() const { return m_incomingText; }

  State state() const;
  // What a writer may leave behind when it dies.
  std::vector<std::string> temporaryFiles() const;
  // The directories under which all of this lies.
  std::vector<std::string> roots() const { return {agent.dataDirectory(), m_work.path()}; }
  // The mode of every file and directory, by its path.
  std::map<std::string, mode_t> modes() const;
  // Open descriptors of this process, without the lock files that are kept for the next use.
  std::ptrdiff_t openDescriptors();

 private:
  struct File {
    std::string bytes;
    mode_t mode;
  };
  void add(const std::string& path, const std::string& bytes, mode_t mode = 0600);

  TempDir m_work;
  std::map<std::string, File> m_initial;
  std::string m_serverBuffer;
  std::wstring m_incomingText;
};

// One public operation that writes files, with a result of 0 for success.
struct Operation {
  const char* name;
  int (*run)(const Workshop& workshop);
  // What the library's header says it may return when it fails.
  std::set<int> failures;
  // The file that holds the new bytes exactly when the operation reports success; null when the
  // operation does not report on it.
  std::string (*result)(const Workshop& workshop) = nullptr;
  // Called before each run, behind Workshop::reset.
  void (*prepare)(const Workshop& workshop) = nullptr;
};
const std::vector<Operation>& writingOperations();
const Operation& writingOperation(const std::string& name);

// One that reads only.
const std::vector<Operation>& readingOperations();

// One file's entry in a State.
std::string normalForm(const std::string& path, const std::string& bytes);
bool isTemporaryFile(const std::string& path);
bool isLockFile(const std::string& path);

// Says which file is neither as in `before` nor as in `after`; empty when there is none. A list may
// have lost its certificates, whose reading is allowed to fail without a word.
std::string mixture(const State& now, const State& before, const State& after,
                    bool certificatesMayBeMissing = false);

// The agent's file system with the fixed place of a list from a buffer moved into the workshop.
class WorkshopFileSystem : public RerootedFileSystem {
 public:
  explicit WorkshopFileSystem(const Workshop& workshop)
      : RerootedFileSystem("/Library/Korvel/orb/scratch", workshop.scratchRoot()) {}
};

}  // namespace test

#endif
