#include "tests/links/two_users.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "tests/resilience/forked.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr uid_t c_user = 65534;
constexpr gid_t c_group = 65533;

void give(const fs::path& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) throw std::runtime_error("lstat " + path.string());
  if (info.st_uid == c_user && info.st_gid == c_group) return;
  if (::lchown(path.c_str(), c_user, c_group) != 0) throw std::runtime_error("lchown");
}

bool becomeAgentUser() {
  return !haveTwoUsers() ||
         (::setgroups(0, nullptr) == 0 && ::setgid(c_group) == 0 && ::setuid(c_user) == 0);
}

}  // namespace

bool haveTwoUsers() {
  static const bool two = [] {
    if (::geteuid() == 0) return true;
    std::cout << "Not run as root: the tests with two users run with one user.\n";
    return false;
  }();
  return two;
}

uid_t agentUser() { return haveTwoUsers() ? c_user : ::geteuid(); }
gid_t agentGroup() { return haveTwoUsers() ? c_group : ::getegid(); }

void giveToAgent(const std::string& directory) {
  if (!haveTwoUsers()) return;
  give(directory);
  for (const auto& entry : fs::recursive_directory_iterator(directory)) give(entry.path());
}

std::vector<std::string> asAgentUser(const std::function<std::vector<std::string>()>& body) {
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("pipe");
  Forked child([&] {
    if (!becomeAgentUser()) return 1;
    std::string text;
    for (const std::string& line : body()) text += line + "\n";
    return ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 2;
  });
  ::close(ends[1]);
  std::string text;
  char buffer[4096];
  for (ssize_t n = 1; n > 0;) {
    n = ::read(ends[0], buffer, sizeof buffer);
    if (n > 0) text.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(ends[0]);
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  const int status = child.wait();
  if (status != 0) lines.push_back("the agent's user ends with " + std::to_string(status));
  return lines;
}

}  // namespace test
