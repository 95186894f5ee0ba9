#ifndef TESTS_CANARIES_PASSWORDS_H
#define TESTS_CANARIES_PASSWORDS_H

#include <string>
#include <vector>

#include "tests/resilience/workshop.h"

namespace test {

// Whose key protects a password.
enum class Owner { Agent, Server, OtherAgent };

// The protected form of any bytes. The key files are as before afterwards.
std::string protect(const Workshop& workshop, const std::string& clear, Owner owner);

// Bytes that hold the canary in ways that make a reader leave its usual path, by name.
struct OddPassword {
  std::string name;
  std::string clear;
};
std::vector<OddPassword> oddPasswords();

// Parts of the canary and of the agent's keys, as no freed memory may hold them.
std::vector<std::string> secretsOf(const Workshop& workshop);

}  // namespace test

#endif
