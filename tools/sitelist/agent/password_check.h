#ifndef TOOLS_SITELIST_AGENT_PASSWORD_CHECK_H
#define TOOLS_SITELIST_AGENT_PASSWORD_CHECK_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// Advice for a missing password key.
constexpr const char* c_restoreKey =
    "restore the key file from a backup; `sitelist import --allow-lost-passwords`\n"
    "  creates a new key";

void addAllowLostPasswords(Command& command, bool& isAllowed);

// Checks whether a command would lose passwords. The library writes a password as an empty one if
// it cannot decrypt or encrypt it. Each function fails with exitCrypto before such a write, unless
// --allow-lost-passwords is given. The caller must hold the lock of the list until it has written.
// A document that cannot be parsed counts as one without passwords.
class PasswordCheck {
 public:
  PasswordCheck(const Context& context, bool isLossAllowed);

  // For a command that creates the password key if it is missing. Fails if the key is missing and
  // the agent's own list has passwords: the new key would not decrypt them.
  void requireKeyOfOwnList(const std::string& advice = c_restoreKey) const;
  // For a list whose passwords are decrypted and then encrypted again. Fails if one cannot be
  // decrypted.
  void requireEncryptable(const std::string& path);
  void requireEncryptable(const Input& input);
  // The same for passwords that the management server has encrypted.
  void requireFromServer(const Input& input);
  // For a file that replaces `before` and keeps the encrypted passwords unchanged. Fails if it has
  // a password that `before` does not have and that cannot be decrypted. `name` is the file that
  // the passwords come from.
  void requireCopied(const std::string& path, const std::string& before, const std::string& name);

  // Warns of each lost password, and of a new password key. Passwords can be lost only with
  // --allow-lost-passwords.
  void warn(bool isDryRun) const;

 private:
  struct Lost {
    std::string file;
    std::string site;
    const char* what;
    bool isKept;  // as encrypted text
  };

  void add(const std::string& file, const std::vector<std::string>& sites, const char* what,
           bool isKept);
  [[noreturn]] void fail(const std::string& file, const std::vector<std::string>& sites,
                         const char* what) const;

  const Context& m_context;
  bool m_isLossAllowed;
  int m_keyError;  // 0 or an errno
  std::vector<Lost> m_lost;
};

}  // namespace tool

#endif
