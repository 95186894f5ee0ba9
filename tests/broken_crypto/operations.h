#ifndef TESTS_BROKEN_CRYPTO_OPERATIONS_H
#define TESTS_BROKEN_CRYPTO_OPERATIONS_H

#include <string>
#include <vector>

namespace test {

// Where an operation finds what it works on, for a process that has no workshop of its own.
struct Places {
  std::string data;
  std::string own;
  std::string incoming;
  std::string plainIncoming;
  std::string keyDirectory;
  std::string scratch;
  std::string serverDocument;
};

struct CryptoOperation {
  const char* name;
  // Whether it reports success.
  bool (*run)(const Places& places);
  // The list that it writes.
  std::string (*written)(const Places& places);
  // How many lists it reads and writes whose passwords are under the agent's key, and how many it
  // reads whose passwords are under the server's.
  unsigned reads;
  unsigned writes;
  unsigned serverReads;
  // The list is there for the first time.
  bool isFirst = false;
};
const std::vector<CryptoOperation>& cryptoOperations();

}  // namespace test

#endif
