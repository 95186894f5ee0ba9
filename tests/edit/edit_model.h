#ifndef TESTS_EDIT_EDIT_MODEL_H
#define TESTS_EDIT_EDIT_MODEL_H

#include <optional>
#include <string>
#include <vector>

// What an edit is to give, worked out on plain values.
namespace test {

// A vendor repository of one document.
struct Repository {
  std::optional<std::string> order;  // the "Order" attribute
  std::optional<std::string> type;   // the "Type" attribute
};

// The vendor repositories that a document has.
struct Repositories {
  std::optional<Repository> http;
  std::optional<Repository> ftp;
};

// The order slots that the replaced repositories get; none for one that is not replaced.
struct Replacement {
  std::optional<int> http;
  std::optional<int> ftp;
};
Replacement modelReplacement(const Repositories& target, const Repositories& source);

// Management servers of two lists by their identities; an empty one is incomplete and the same as
// no other. The result holds where each server comes from, in order.
struct Server {
  std::string identity;
  bool fromSource = false;
  bool operator==(const Server& other) const {
    return identity == other.identity && fromSource == other.fromSource;
  }
};
std::vector<Server> modelServers(const std::vector<std::string>& target,
                                 const std::vector<std::string>& source);

}  // namespace test

#endif
