#ifndef TESTS_EDIT_EDIT_MODEL_H
#define TESTS_EDIT_EDIT_MODEL_H

#include <optional>
#include <string>
#include <vector>

// A model of the edits: their results, computed from plain values.
namespace test {

// A vendor repository of one document.
struct Repository {
  std::optional<std::string> order;  // the "Order" attribute
  std::optional<std::string> type;   // the "Type" attribute
};

// The vendor repositories of a document.
struct Repositories {
  std::optional<Repository> http;
  std::optional<Repository> ftp;
};

// The orders of the replaced repositories; none for a repository that is not replaced.
struct Replacement {
  std::optional<int> http;
  std::optional<int> ftp;
};
Replacement modelReplacement(const Repositories& target, const Repositories& source);

// A management server of a list. One with an empty identity is incomplete and differs from every
// other.
struct Server {
  std::string identity;
  bool fromSource = false;
  bool operator==(const Server& other) const {
    return identity == other.identity && fromSource == other.fromSource;
  }
};

// Merges the management servers of two lists. Returns each server with its origin, in order.
std::vector<Server> modelServers(const std::vector<std::string>& target,
                                 const std::vector<std::string>& source);

}  // namespace test

#endif
