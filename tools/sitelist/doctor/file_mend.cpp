#include "tools/sitelist/doctor/file_mend.h"

#include <algorithm>

#include "host/crypto/sealed_value.h"
#include "host/fs/mend.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/model/root.h"

namespace tool {
namespace {

bool isSiteList(const std::string& bytes) {
  try {
    requireSiteList(Input{"", bytes});
    return true;
  } catch (const Failure&) {
    return false;
  }
}

bool isExpectedIn(Expected content, const std::string& bytes) {
  switch (content) {
    case Expected::List:
      return isSiteList(bytes);
    case Expected::Key:
      return bytes.size() == host::c_keySize;
    case Expected::Nothing:
      return bytes.empty();
    default:
      return false;
  }
}

}  // namespace

bool canBeGiven(const FileRule& rule) {
  return rule.content != Expected::Settings && rule.content != Expected::Opaque;
}

int giveToAgentsUser(const std::string& path, const FileRule& rule,
                     const std::vector<FileRule>& rules, const AgentUser& user) {
  if (!rule.isDirectory) {
    return host::giveFile(
        path, user.id, user.group, c_maxInputBytes,
        [&rule](const std::string& bytes) { return isExpectedIn(rule.content, bytes); });
  }
  return host::giveDirectory(
      path, user.id, user.group, [&rule, &rules](const std::vector<std::string>& names) {
        return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
          return std::any_of(rules.begin(), rules.end(), [&](const FileRule& each) {
            return each.name == rule.name + "/" + name;
          });
        });
      });
}

}  // namespace tool
