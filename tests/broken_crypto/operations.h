#ifndef TESTS_BROKEN_CRYPTO_OPERATIONS_H
#define TESTS_BROKEN_CRYPTO_OPERATIONS_H

#include <string>
#include <vector>

namespace test {

// The paths and the document for an operation in a process without its own Workshop.
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
  // Runs the operation. Returns whether it reports success.
  bool (*run)(const Places& places);
  // Returns the list that the operation writes.
  std::string (*written)(const Places& places);
  // Numbers of lists. `reads` and `writes`: lists whose passwords have the password key.
  // `serverReads`: lists whose passwords have the server key.
  unsigned reads;
  unsigned writes;
  unsigned serverReads;
  // The operation creates the list.
  bool isFirst = false;
};
const std::vector<CryptoOperation>& cryptoOperations();

}  // namespace test

#endif
