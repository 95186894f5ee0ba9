#include "tests/resilience/updates.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/resilience/workshop.h"
#include "tests/support/test_agent.h"

extern char** environ;

namespace test {
namespace {

constexpr unsigned int c_processes = 16;
// The list is reset after this number of changes, because changes of a long list take longer.
constexpr unsigned long c_changesOfRound = 64;
constexpr int c_killed = 128 + SIGKILL;

using Words = std::vector<std::string>;

// The start tag of the site with this name; empty when there is none.
std::string tagOf(const std::string& list, const std::string& name) {
  const std::size_t found = list.find(" Name=\"" + name + "\"");
  if (found == std::string::npos) return std::string();
  const std::size_t begin = list.rfind('<', found);
  return list.substr(begin, list.find('>', found) - begin);
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// A change that no other change reverts, and a check that it is in the list. `number` makes the
// names of its site or setting.
struct Change {
  Words (*words)(const std::string& number);
  bool (*isIn)(const std::string& list, const std::string& number);
};

constexpr Change c_edits[] = {
    {[](const std::string& n) {
       return Words{"edit", "add", "http", "a" + n, "server=h.example"};
     },
     [](const std::string& list, const std::string& n) { return !tagOf(list, "a" + n).empty(); }},
    {[](const std::string& n) {
       return Words{"edit", "disable", "b" + n};
     },
     [](const std::string& list, const std::string& n) {
       return contains(tagOf(list, "b" + n), "Enabled=\"0\"");
     }},
    {[](const std::string& n) {
       return Words{"edit", "set", "b" + n, "server=s" + n + ".example"};
     },
     [](const std::string& list, const std::string& n) {
       return contains(tagOf(list, "b" + n), "s" + n + ".example");
     }},
    {[](const std::string& n) {
       return Words{"edit", "rename", "b" + n, "r" + n};
     },
     [](const std::string& list, const std::string& n) {
       return !tagOf(list, "r" + n).empty() && tagOf(list, "b" + n).empty();
     }},
    {[](const std::string& n) {
       return Words{"edit", "remove", "b" + n};
     },
     [](const std::string& list, const std::string& n) { return tagOf(list, "b" + n).empty(); }},
};

constexpr Change c_setting = {
    [](const std::string& n) {
      return Words{"policies", "set", "S" + n, "v"};
    },
    [](const std::string& list, const std::string& n) { return contains(list, "\"S" + n + "\""); }};

bool always(const std::string&, const std::string&) { return true; }

// The result of a process.
struct Answer {
  int status = -1;
  std::string message;
};

// One process of the tool.
class Tool {
 public:
  // Starts the process. Its messages go to the file `messages`.
  Tool(Words words, const Words& environment, const std::string& messages) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 2, messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                       0600);
    Words variables = environment;
    const int error = ::posix_spawn(&m_pid, words[0].c_str(), &actions, nullptr,
                                    pointersTo(words).data(), pointersTo(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("posix_spawn " + words[0]);
  }

  void kill() const { ::kill(m_pid, SIGKILL); }
  // The exit status, or 128 + the number of the signal that ended it.
  int wait() const {
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0) {
      if (errno != EINTR) return -1;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  static std::vector<char*> pointersTo(Words& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
  }

  pid_t m_pid = -1;
};

// The agent, the list and the requested changes.
class Updates {
 public:
  Updates(const std::string& tool, UpdatedList which, UpdateKills kills)
      : m_tool(tool),
        m_which(which),
        m_kills(kills),
        m_agent((useMemoryDisk(), false)),
        m_list(which == UpdatedList::OfAgent ? m_agent.etc("SiteList.xml")
                                             : m_work.file("list.xml")) {
    for (char** entry = environ; *entry; ++entry) {
      if (std::string(*entry).rfind("TMPDIR=", 0) != 0) m_environment.emplace_back(*entry);
    }
    // Removing the directory also removes the files of killed processes.
    m_environment.push_back("TMPDIR=" + m_work.path());
    const Answer answer = run({"init"}, "0", nullptr);
    if (answer.status != 0) throw std::runtime_error("the tool fails: " + answer.message);
  }

  // Makes changes of these numbers at once, and looks at the list that is left.
  void round(unsigned long first, unsigned long end, UpdateFigures& figures) {
    writeFile(m_list, listOf(end - first));
    m_answers.assign(end - first, {});
    std::atomic<unsigned long> next{0};
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < c_processes; ++i) {
      threads.emplace_back([&, i] {
        std::mt19937 random(static_cast<unsigned int>(first) + i);
        for (unsigned long n = next++; n < m_answers.size(); n = next++) {
          m_answers[n] = make(n, std::to_string(i), random);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    check(first, figures);
  }

 private:
  std::string messages(const std::string& worker) const { return m_work.file("err" + worker); }

  // A list with a site for each change that needs one.
  static std::string listOf(unsigned long sites) {
    std::string text = R"(<ns:SiteLists xmlns:ns="wxSiteList" Type="Client" )"
                       R"(GlobalVersion="20260101000000" LocalVersion="20260101000000">)"
                       "<SiteList Default=\"1\" Name=\"SomeGUID\">";
    for (unsigned long n = 0; n < sites; ++n) {
      text += "<HttpSite Type=\"repository\" Name=\"b" + std::to_string(n) + "\" Order=\"" +
              std::to_string(n + 1) + "\" Enabled=\"1\" Local=\"1\" Server=\"old.example:80\"/>";
    }
    return text + "</SiteList></ns:SiteLists>\n";
  }

  // Every third change is a policy of the agent's list or a rewrite. Both write the whole list.
  const Change& changeOf(unsigned long n) const {
    static constexpr Change rewrite = {nullptr, always};
    if (n % 3 != 0) return c_edits[n % std::size(c_edits)];
    return m_which == UpdatedList::OfAgent && n % 2 == 0 ? c_setting : rewrite;
  }

  Answer make(unsigned long n, const std::string& worker, std::mt19937& random) {
    const Change& change = changeOf(n);
    Words words = change.words ? change.words(std::to_string(n)) : Words{"rewrite", m_list, m_list};
    if (words[0] == "edit" && m_which == UpdatedList::Named) {
      words.insert(words.begin() + 1, {"--file", m_list});
    }
    return run(std::move(words), worker,
               m_kills == UpdateKills::OneInTen && n % 10 == 7 ? &random : nullptr);
  }

  // If there is a generator, kills the process at a random moment.
  Answer run(Words words, const std::string& worker, std::mt19937* moment) {
    const bool needsNoAgent = words[0] == "edit" && m_which == UpdatedList::Named;
    const bool hasAgent = !needsNoAgent || worker.back() % 2 == 0;
    const std::string directory = hasAgent ? m_agent.dataDirectory() : m_work.file("none");
    words.insert(words.begin(), {m_tool, "--agent-dir", directory, "--wait", "600"});
    const Tool tool(std::move(words), m_environment, messages(worker));
    if (moment) {
      // Any moment is suitable, because no result depends on it.
      std::this_thread::sleep_for(
          std::chrono::microseconds(std::uniform_int_distribution<long>(0, 40000)(*moment)));
      tool.kill();
    }
    const int status = tool.wait();
    return {status, readFile(messages(worker))};
  }

  void check(unsigned long first, UpdateFigures& figures) {
    const std::string list = readFile(m_list);
    for (unsigned long n = 0; n < m_answers.size(); ++n) {
      const Answer& answer = m_answers[n];
      const std::string where = "change " + std::to_string(first + n);
      const bool mayBeKilled = m_kills == UpdateKills::OneInTen && n % 10 == 7;
      figures.changes += answer.status == 0;
      figures.kills += answer.status == c_killed;
      if (answer.status == 0) {
        if (!changeOf(n).isIn(list, std::to_string(n))) {
          figures.faults.add(where, "the tool returned 0, but the change is lost");
        }
      } else if (answer.status != c_killed || !mayBeKilled) {
        figures.faults.add(where,
                           "status " + std::to_string(answer.status) + ": " + answer.message);
      }
    }
  }

  std::string m_tool;
  UpdatedList m_which;
  UpdateKills m_kills;
  TestAgent m_agent;
  TempDir m_work;
  std::string m_list;
  Words m_environment;
  std::vector<Answer> m_answers;
};

}  // namespace

UpdateFigures updateAtOnce(const std::string& tool, UpdatedList which, UpdateKills kills,
                           unsigned long changes, const Progress& progress) {
  UpdateFigures figures;
  Updates updates(tool, which, kills);
  for (unsigned long first = 0; first < changes; first += c_changesOfRound) {
    updates.round(first, std::min(changes, first + c_changesOfRound), figures);
    if (progress) progress(figures.changes + figures.kills);
  }
  return figures;
}

}  // namespace test
