#include "tools/sitelist/agent/password_check.h"

#include <cerrno>
#include <memory>

#include "platform/xml/advxmlparser.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr const char* c_notDecrypted = "cannot be decrypted with the password key";
constexpr const char* c_notDecryptedFromServer = "cannot be decrypted with the server key";
constexpr const char* c_notEncrypted = "cannot be encrypted with the password key";

std::string linesOf(const std::vector<std::string>& sites) {
  std::string text;
  for (const std::string& site : sites) text += "\n  " + site;
  return text;
}

}  // namespace

void addAllowLostPasswords(Command& command, bool& isAllowed) {
  command.add_flag("--allow-lost-passwords", isAllowed,
                   "Write the list although passwords are lost, and warn of\neach site");
}

PasswordCheck::PasswordCheck(const Context& context, bool isLossAllowed)
    : m_context(context),
      m_isLossAllowed(isLossAllowed),
      m_keyError(passwordKeyError(context.agentDirectory)) {}

void PasswordCheck::requireKeyOfOwnList(const std::string& advice) const {
  if (m_isLossAllowed || m_keyError != ENOENT) return;
  const std::vector<std::string> sites = sitesWithPasswords(ownListPath(m_context));
  if (sites.empty()) return;
  throw failureAt(
      passwordKeyPath(m_context.agentDirectory), exitCrypto,
      "the password key is missing, but the agent's own list has passwords:" + linesOf(sites) +
          "\n  Nothing was written, because a new key could not decrypt them.",
      advice);
}

void PasswordCheck::requireEncryptable(const std::string& path) {
  add(path, sitesWithLostPasswords(path), c_notDecrypted, false);
}

void PasswordCheck::requireEncryptable(const Input& input) {
  std::unique_ptr<AdvXMLParser::Document> document;
  if (readDocumentInBytes(input.bytes, document)) return;
  add(input.name, sitesWithLostPasswords(*document), c_notDecrypted, false);
}

void PasswordCheck::requireFromServer(const Input& input) {
  std::unique_ptr<AdvXMLParser::Document> document;
  if (readDocumentInBytes(input.bytes, document)) return;
  add(input.name, sitesWithLostServerPasswords(*document), c_notDecryptedFromServer, false);
  if (m_keyError == 0 && !canEncryptWithAgentKey()) {
    add(input.name, sitesWithPasswords(*document), c_notEncrypted, false);
  }
}

void PasswordCheck::requireCopied(const std::string& path, const std::string& before,
                                  const std::string& name) {
  add(name, sitesWithNewLostPasswords(path, before), c_notDecrypted, true);
}

void PasswordCheck::add(const std::string& file, const std::vector<std::string>& sites,
                        const char* what, bool isKept) {
  if (!sites.empty() && !m_isLossAllowed) fail(file, sites, what);
  for (const std::string& site : sites) m_lost.push_back({file, site, what, isKept});
}

void PasswordCheck::fail(const std::string& file, const std::vector<std::string>& sites,
                         const char* what) const {
  std::string text = std::string("passwords ") + what + ":" + linesOf(sites);
  std::string advice = "name the agent that the list belongs to with --agent-dir";
  const LoggedReason logged = takeReasonOfKeyFile();
  if (!logged.reason.empty()) {
    text += "\n  " + logged.reason;
    advice = logged.advice.empty() ? "restore the agent's key file" : logged.advice;
  } else if (m_keyError != 0) {
    text += "\n  Key file " + shown(passwordKeyPath(m_context.agentDirectory)) + ": " +
            (m_keyError == ENOENT ? "it is missing" : readFailureReason(m_keyError));
    advice = "restore the agent's key file";
  }
  throw failureAt(
      file, exitCrypto,
      text + "\n  Nothing was written, because the new list would have lost them.",
      advice + ",\n  or write the list without these passwords with --allow-lost-passwords");
}

void PasswordCheck::warn(bool isDryRun) const {
  for (const Lost& lost : m_lost) {
    std::string text = shown(lost.file);
    text.append(": a password of ").append(lost.site).append(" ").append(lost.what);
    text.append(isDryRun ? "; it would be " : "; it is now ");
    printWarning(text.append(lost.isKept ? "read as empty" : "empty"));
  }
  if (m_keyError == ENOENT && !isDryRun && passwordKeyError(m_context.agentDirectory) == 0) {
    printWarning(shown(passwordKeyPath(m_context.agentDirectory)) +
                 ": the password key was missing, and a new one was created");
  }
}

}  // namespace tool
