#ifndef TESTS_CANARIES_PASSWORDS_H
#define TESTS_CANARIES_PASSWORDS_H

#include <string>
#include <vector>

#include "tests/resilience/workshop.h"

namespace test {

// The owner of the key for a password.
enum class Owner { Agent, Server, OtherAgent };

// Returns the encrypted form of any bytes. The key files are unchanged afterwards.
std::string protect(const Workshop& workshop, const std::string& clear, Owner owner);

// Passwords that contain the canary and that a reader processes on an unusual code path. Each has a
// name.
struct OddPassword {
  std::string name;
  std::string clear;
};
std::vector<OddPassword> oddPasswords();

// Returns parts of the canary and of the agent's keys. Freed memory must not contain them.
std::vector<std::string> secretsOf(const Workshop& workshop);

}  // namespace test

#endif
