#include "tools/sitelist/doctor/file_mend.h"

#include <algorithm>

#include "host/crypto/sealed_value.h"
#include "host/fs/mend.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/doctor/finding.h"
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

bool areExpectedIn(const FileRule& directory, const std::vector<std::string>& names,
                   const std::vector<FileRule>& rules) {
  return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
    return std::any_of(rules.begin(), rules.end(), [&](const FileRule& each) {
      return each.name == directory.name + "/" + name;
    });
  });
}

}  // namespace

bool canBeGiven(const FileRule& rule) {
  return rule.content != Expected::Settings && rule.content != Expected::Opaque;
}

std::string giveToAgentsUser(const std::string& path, const FileRule& rule,
                             const std::vector<FileRule>& rules, const AgentUser& user) {
  bool isExpected = true;
  int error = 0;
  if (rule.isDirectory) {
    const auto check = [&](const std::vector<std::string>& names) {
      isExpected = areExpectedIn(rule, names, rules);
      return isExpected;
    };
    error = host::giveDirectory(path, user.id, user.group, check);
  } else {
    const auto check = [&](const std::string& bytes) {
      isExpected = isExpectedIn(rule.content, bytes);
      return isExpected;
    };
    error = host::giveFile(path, user.id, user.group, c_maxInputBytes, check);
  }
  return isExpected ? textOfError(error) : "its content is not the expected one";
}

}  // namespace tool
