#include <cerrno>

#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

constexpr const char* c_restore =
    "restore the key from a backup, or set the passwords again with `sitelist edit set`";
constexpr std::size_t c_mostNames = 5;

std::string joined(const std::vector<std::string>& sites) {
  std::string text;
  for (std::size_t i = 0; i < sites.size() && i < c_mostNames; ++i) {
    text.append(i == 0 ? "" : ", ").append(sites[i]);
  }
  if (sites.size() <= c_mostNames) return text;
  return text + " and " + std::to_string(sites.size() - c_mostNames) + " more";
}

// Returns "REASON" of "Key file PATH: REASON".
std::string withoutFile(const std::string& reason, const std::string& path) {
  const std::string mark = shown(path) + ": ";
  const std::size_t at = reason.find(mark);
  return at == std::string::npos ? reason : reason.substr(at + mark.size());
}

}  // namespace

void checkPasswordKey(const ExaminedAgent& agent, Findings& findings) {
  const std::string path = passwordKeyPath(agent.settings.dataDirectory);
  const std::vector<std::string> sites =
      agent.list ? sitesWithPasswords(agent.listPath) : std::vector<std::string>();
  const int error = passwordKeyError(agent.settings.dataDirectory);
  if (error == ENOENT || error == ENOTDIR) {
    if (sites.empty()) {
      findings.warn("the agent has no password key; the first password creates one",
                    "if the agent had a key, restore it from a backup", path);
    } else {
      findings.fail("the password key is missing, and these have passwords: " + joined(sites),
                    c_restore, path);
    }
    return;
  }
  if (error != 0) return addUnchecked(agent, path, error, findings);
  const int unread = canActAs(agent.user) ? 0 : EACCES;
  if (unread != 0) return addUnchecked(agent, path, unread, findings);
  clearLogRecords();
  const std::vector<std::string> lost =
      agent.list ? sitesWithLostPasswords(agent.listPath) : std::vector<std::string>();
  const bool isUsable = canEncryptWithAgentKey();
  const LoggedReason logged = takeReasonOfKeyFile();
  if (!isUsable || !logged.reason.empty()) {
    const std::string reason = withoutFile(logged.reason, path);
    findings.fail("the password key cannot be used" + (reason.empty() ? "" : ": " + reason),
                  c_restore, path);
  } else if (!lost.empty()) {
    findings.fail("the password key does not decrypt the passwords of " + joined(lost), c_restore,
                  path);
  } else if (!agent.list && !agent.hasNoList()) {
    findings.warn("the passwords were not checked, because the list cannot be read", c_listFirst,
                  path);
  } else {
    findings.ok(sites.empty() ? "the password key can be used; the list has no passwords"
                              : "the password key decrypts every password of the list");
  }
}

}  // namespace tool
