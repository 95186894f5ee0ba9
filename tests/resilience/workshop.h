#ifndef TESTS_RESILIENCE_WORKSHOP_H
#define TESTS_RESILIENCE_WORKSHOP_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/rerooted_file_system.h"
#include "tests/support/test_agent.h"

namespace test {

// The clear password in every password field. No output may contain it.
extern const std::string c_canary;

constexpr const char* c_keyFileNames[] = {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin",
                                          "req2048seckey.bin"};

// Puts the temporary files of this process and its children into a memory file system, if the
// system has one. Must be called before the first file is created. Returns true.
bool useMemoryDisk();

// The files that operations write, by their path. Encrypted passwords and time stamps are replaced,
// because they differ between two runs of an operation.
using State = std::map<std::string, std::string>;

struct Operation;

// An agent with its own list and key files, and an incoming list with its key files. It can be
// reset to its first state. It is in a memory file system if possible, because the tests run
// thousands of operations.
class Workshop {
 public:
  Workshop();

  TestAgent agent;

  // Restores every file and removes all others.
  void reset();

  // Restores every file and prepares this operation.
  void reset(const Operation& operation);

  std::string own() const { return agent.etc("SiteList.xml"); }
  std::string etcDirectory() const { return agent.dataDirectory() + "/etc"; }
  std::string incoming() const { return m_work.file("in/SiteList.xml"); }
  // Returns the content of a key file next to incoming().
  static std::string incomingKey(const std::string& name) { return "new " + name; }
  // A list without a management server. Its public key comes from keyDirectory().
  std::string plainIncoming() const { return m_work.file("plain/SiteList.xml"); }
  // A list of the agent in directories that do not exist yet.
  std::string newOwn() const { return agent.dataDirectory() + "/fresh/etc/SiteList.xml"; }
  std::string serverList() const { return agent.dataDirectory() + "/ServerSiteList.xml"; }
  std::string scratchList() const { return scratchRoot() + "/etc/SiteList.xml"; }
  std::string keystore() const { return agent.dataDirectory() + "/keystore"; }
  std::string keyDirectory() const { return m_work.file("keys"); }
  std::string scratchRoot() const { return m_work.file("scratch"); }
  // The document that a server hands over. Its passwords are encrypted with the server key.
  const std::string& serverBuffer() const { return m_serverBuffer; }
  // The incoming list as text.
  const std::wstring& incomingText() const { return m_incomingText; }

  State state() const;
  // Returns the files that a killed writer may leave.
  std::vector<std::string> temporaryFiles() const;
  // Returns the directories of all files.
  std::vector<std::string> roots() const { return {agent.dataDirectory(), m_work.path()}; }
  // Returns the mode of every file and directory, by its path.
  std::map<std::string, mode_t> modes() const;
  // Returns the number of open descriptors of this process, without those of the lock files that
  // are kept open.
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

// One public operation that writes files. Its result is 0 for success.
struct Operation {
  const char* name;
  int (*run)(const Workshop& workshop);
  // The results that the library's header documents for failures.
  std::set<int> failures;
  // Returns the file that has the new bytes if and only if the operation reports success. Null if
  // the operation does not report whether it wrote the file.
  std::string (*result)(const Workshop& workshop) = nullptr;
  // Called before each run, after Workshop::reset.
  void (*prepare)(const Workshop& workshop) = nullptr;
};
const std::vector<Operation>& writingOperations();
const Operation& writingOperation(const std::string& name);

// Returns the operations that only read.
const std::vector<Operation>& readingOperations();

// Returns the entry of one file in a State.
std::string normalForm(const std::string& path, const std::string& bytes);
bool isTemporaryFile(const std::string& path);
bool isLockFile(const std::string& path);

// Returns a file that is neither as in `before` nor as in `after`, or an empty text. A list may
// have lost its certificates, because a failure to read them is not reported.
std::string mixture(const State& now, const State& before, const State& after,
                    bool certificatesMayBeMissing = false);

// The agent's file system. The fixed directory for a list from a buffer is in the workshop.
class WorkshopFileSystem : public RerootedFileSystem {
 public:
  explicit WorkshopFileSystem(const Workshop& workshop)
      : RerootedFileSystem("/Library/Korvel/orb/scratch", workshop.scratchRoot()) {}
};

}  // namespace test

#endif
