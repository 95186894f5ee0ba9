#include "tools/sitelist/doctor/file_table.h"

#include <fcntl.h>

#include <algorithm>

#include "host/fs/descriptor.h"
#include "tools/sitelist/agent/key_files.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

FileRule directory(const char* name, mode_t most) {
  const bool isSecret = (most & (S_IRWXG | S_IRWXO)) == 0;
  return {name, true, isSecret, !isSecret, most, S_IRWXU, Expected::Names};
}

FileRule file(const std::string& name, mode_t most, mode_t least, Expected content) {
  return {name, false, false, true, most, least, content};
}

FileRule secret(const std::string& name, mode_t least, Expected content, bool isLinkAllowed) {
  return {name, false, true, isLinkAllowed, S_IRUSR | S_IWUSR, least, content};
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A directory that cannot be read has no names here.
std::vector<std::string> namesIn(const std::string& path) {
  const host::Descriptor opened(
      host::fileSystem().open(AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW, 0));
  std::vector<std::string> names;
  if (opened.error() == 0) host::fileSystem().list(opened.get(), names);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::vector<FileRule> fileRules(const std::string& dataDirectory) {
  constexpr mode_t list = S_IRUSR | S_IWUSR | S_IRGRP;
  constexpr mode_t used = S_IRUSR;
  constexpr mode_t written = S_IRUSR | S_IWUSR;
  std::vector<FileRule> rules = {
      directory("", 0755),
      file("agent.toml", list, used, Expected::Settings),
      directory("etc", 0755),
      file("etc/SiteList.xml", list, written, Expected::List),
      directory("mesh", 0755),
      file("mesh/SiteList.xml", list, written, Expected::List),
      file("ServerSiteList.xml", list, used, Expected::List),
  };
  rules.push_back(directory("etc/history", 0750));
  for (const std::string& name : namesIn(dataDirectory + "/etc/history")) {
    if (endsWith(name, ".xml")) {
      rules.push_back(file("etc/history/" + name, list, used, Expected::List));
    }
  }
  for (const wchar_t* name : c_keyFiles) {
    rules.push_back(secret("etc/" + narrow(name), written, Expected::Opaque, true));
  }
  rules.push_back(
      file("etc" + narrow(sitehlp::c_fipsMarker), S_IRUSR | S_IWUSR, used, Expected::Opaque));
  rules.push_back(directory("keystore", 0700));
  rules.push_back(secret(passwordKeyPath("").substr(1), used, Expected::Key, false));
  rules.push_back(secret("keystore/server.key", used, Expected::Key, false));
  rules.push_back(directory("locks", 0755));
  for (const std::string& name : namesIn(dataDirectory + "/locks")) {
    if (endsWith(name, ".lock") || endsWith(name, ".gate")) {
      rules.push_back(secret("locks/" + name, used, Expected::Nothing, false));
    }
  }
  return rules;
}

}  // namespace tool
