#ifndef TESTS_LINKS_TWO_USERS_H
#define TESTS_LINKS_TWO_USERS_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

// Root, and the unprivileged user that an agent belongs to. A test that is not run as root has one
// user alone, and says so: the agent is then its own.
namespace test {

// Whether there are two. Prints a line the first time that there are not.
bool haveTwoUsers();

// The agent's user and group.
uid_t agentUser();
gid_t agentGroup();

// Makes a directory and all below it the agent's. Links are given away themselves.
void giveToAgent(const std::string& directory);

// What the function returns when the agent's user runs it, in a process of its own. A process that
// does not get to its end is a line, too.
std::vector<std::string> asAgentUser(const std::function<std::vector<std::string>()>& body);

}  // namespace test

#endif
