#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "host/fs/file_system.h"
#include "host/fs/mend.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"
#include "tools/sitelist/doctor/file_mend.h"
#include "tools/sitelist/doctor/file_table.h"

namespace tool {
namespace {

constexpr mode_t c_forOthersToWrite = S_IWGRP | S_IWOTH;
constexpr mode_t c_special = S_ISUID | S_ISGID | S_ISVTX;
constexpr mode_t c_permissions = S_IRWXU | S_IRWXG | S_IRWXO;

std::string octal(mode_t mode) {
  char text[8];
  std::snprintf(text, sizeof text, "%04o", static_cast<unsigned int>(mode));
  return text;
}

// One file or directory that exists.
class FileCheck {
 public:
  FileCheck(const ExaminedAgent& agent, const FileRule& rule, const std::vector<FileRule>& rules,
            const struct stat& status, Findings& findings)
      : m_agent(agent),
        m_rule(rule),
        m_rules(rules),
        m_status(status),
        m_findings(findings),
        m_path(rule.name.empty() ? agent.settings.dataDirectory : agent.path(rule.name)),
        m_name(rule.name.empty() ? "the data directory" : agent.nameOf(m_path)) {}

  void run() {
    if (S_ISLNK(m_status.st_mode)) return checkLink();
    if (m_rule.isDirectory ? !S_ISDIR(m_status.st_mode) : !S_ISREG(m_status.st_mode)) {
      m_findings.fail(
          m_name + (m_rule.isDirectory ? " is not a directory" : " is not a regular file"),
          "remove it, or move it to another place", m_path);
      return;
    }
    checkOwner();
    checkGroup();
    checkExcess();
    checkLack();
  }

 private:
  bool isOfUser() const { return m_status.st_uid == m_agent.user.id; }

  void checkLink() {
    if (!m_rule.isLinkAllowed) {
      m_findings.fail(m_name + " is a symbolic link, so the agent does not use it",
                      "remove the link", m_path);
    } else if (!isOfUser() && m_status.st_uid != 0) {
      m_findings.fail(m_name + " is a symbolic link of " + userName(m_status.st_uid) +
                          ", which is not followed",
                      "remove the link", m_path);
    }
  }

  // A file with several hard links may also belong to something else.
  bool hasOneName() const { return m_rule.isDirectory || m_status.st_nlink == 1; }

  void checkOwner() {
    const bool isSettingsOfRoot = m_rule.content == Expected::Settings && m_status.st_uid == 0;
    if (isOfUser() || isSettingsOfRoot || m_rule.name.empty()) return;
    const std::string user = userName(m_agent.user.id);
    Finding finding{State::Failure,
                    m_name + " belongs to " + userName(m_status.st_uid) + " instead of " + user};
    finding.file = m_path;
    const bool isSafe = m_status.st_uid == 0 && hasOneName() && canBeGiven(m_rule);
    if (!isSafe) {
      finding.next =
          "check where it comes from, then run as root: chown " + user + " " + shown(m_path);
    } else if (::geteuid() != 0) {
      finding.next = std::string(c_runFix) + " as root";
    } else {
      finding.next = c_runFix;
      addGift(finding, m_name + " belonged to root and belongs to " + user + " now");
    }
    m_findings.add(finding);
  }

  // The group matters only if the mode gives it permissions that other users do not have.
  void checkGroup() {
    const mode_t ofGroup = (m_status.st_mode & S_IRWXG) >> 3;
    const mode_t ofOthers = m_status.st_mode & S_IRWXO;
    if (!isOfUser() || m_status.st_gid == m_agent.user.group || (ofGroup & ~ofOthers) == 0) return;
    const std::string group = groupName(m_agent.user.group);
    Finding finding{State::Warning, m_name + " belongs to the group " + groupName(m_status.st_gid) +
                                        " instead of " + group};
    finding.file = m_path;
    finding.next = std::string(c_runFix) + (::geteuid() == 0 ? "" : " as root");
    if (::geteuid() == 0 && hasOneName()) {
      addGift(finding, "the group of " + m_name + " was " + groupName(m_status.st_gid) +
                           " and is " + group + " now");
    }
    m_findings.add(finding);
  }

  void addGift(Finding& finding, const std::string& mended) {
    finding.mended = mended;
    finding.mend = [path = m_path, rule = m_rule, rules = m_rules, user = m_agent.user] {
      return giveToAgentsUser(path, rule, rules, user);
    };
  }

  void checkExcess() {
    const mode_t known = m_rule.isDirectory ? c_permissions : c_permissions | c_special;
    const mode_t mode = m_status.st_mode & known;
    const mode_t excess = mode & ~m_rule.most;
    if (excess == 0) return;
    const bool isGrave = m_rule.isSecret || (excess & c_forOthersToWrite) != 0;
    Finding finding{isGrave ? State::Failure : State::Warning,
                    m_name + " has mode " + octal(mode) + "; " + reasonOf(excess)};
    finding.file = m_path;
    const std::string most = octal(mode & m_rule.most);
    const bool isOwn = isOfUser() || m_status.st_uid == 0;
    if (!hasOneName() || !isOwn) {
      finding.next = "check where it comes from, then run: chmod " + most + " " + shown(m_path);
    } else if (!canActAs(m_agent.user) || (::geteuid() != 0 && !isOfUser())) {
      finding.next = runAs(m_agent.user) + " with --fix";
    } else {
      finding.next = c_runFix;
      finding.mended = "the mode of " + m_name + " was " + octal(mode) + " and is " + most + " now";
      finding.mend = [path = m_path, excess, user = m_agent.user] {
        return textOfError(host::removePermissions(path, excess, user.id));
      };
    }
    m_findings.add(finding);
  }

  std::string reasonOf(mode_t excess) const {
    if ((excess & S_IWOTH) != 0) return "all users can change it";
    if ((excess & S_IWGRP) != 0) return "its group can change it";
    if ((excess & S_IROTH) != 0) return "all users can read it";
    return "it may have at most " + octal(m_rule.most);
  }

  void checkLack() {
    const mode_t lack = m_rule.least & ~m_status.st_mode;
    if (lack == 0 || !isOfUser()) return;
    m_findings.fail(m_name + " has mode " + octal(m_status.st_mode & c_permissions) +
                        "; its owner needs " + octal(m_rule.least),
                    "run: chmod u+" + std::string((lack & S_IRUSR) != 0 ? "r" : "") +
                        ((lack & S_IWUSR) != 0 ? "w" : "") + ((lack & S_IXUSR) != 0 ? "x" : "") +
                        " " + shown(m_path),
                    m_path);
  }

  const ExaminedAgent& m_agent;
  const FileRule& m_rule;
  const std::vector<FileRule>& m_rules;
  const struct stat& m_status;
  Findings& m_findings;
  std::string m_path;
  std::string m_name;
};

}  // namespace

void checkFiles(const ExaminedAgent& agent, Findings& findings) {
  const std::vector<FileRule> rules = fileRules(agent.settings.dataDirectory);
  for (const FileRule& rule : rules) {
    const std::string path = agent.path(rule.name);
    struct stat status;
    const int failed = host::fileSystem().stat(AT_FDCWD, path, rule.name.empty(), status);
    if (failed == -ENOENT || failed == -ENOTDIR) continue;
    if (failed != 0) {
      addUnchecked(agent, path, -failed, findings);
      continue;
    }
    FileCheck(agent, rule, rules, status, findings).run();
  }
  findings.okIfNone("the agent's known files and directories have the right owner and mode");
}

}  // namespace tool
