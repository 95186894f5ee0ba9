#ifndef TESTS_LINKS_TWO_USERS_H
#define TESTS_LINKS_TWO_USERS_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

// Root, and the unprivileged user of an agent. A test that does not run as root has only one user.
// It prints this, and the agent then belongs to that user.
namespace test {

// Returns whether there are two users. If not, the first call prints a line.
bool haveTwoUsers();

// The agent's user and group.
uid_t agentUser();
gid_t agentGroup();

// Gives a directory and everything below it to the agent's user. A link is given itself, not its
// target.
void giveToAgent(const std::string& directory);

// Returns the lines that the function returns in a process of the agent's user. If that process
// fails, the result has a line about it.
std::vector<std::string> asAgentUser(const std::function<std::vector<std::string>()>& body);

}  // namespace test

#endif
