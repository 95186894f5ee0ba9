#ifndef TESTS_CLI_EDIT_FIXTURE_H
#define TESTS_CLI_EDIT_FIXTURE_H

#include <sys/types.h>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {

using Arguments = std::vector<std::string>;
Arguments operator+(Arguments left, const Arguments& right);

// Runs `sitelist edit` on the list of an agent.
class CliEdit : public CliTest {
 protected:
  CliEdit() { initAgent(); }

  Output edit(const Arguments& arguments, const std::string& input = "");
  // Makes an edit that must change the list. Returns its message.
  std::string change(const Arguments& arguments, const std::string& input = "");
  // Makes an edit that must find nothing to change. The file must be unchanged.
  void changeNothing(const Arguments& arguments, const std::string& input = "");
  // Makes an edit that must fail with this status and change nothing. Returns its message.
  std::string fail(int status, const Arguments& arguments, const std::string& input = "");

  // Returns the sites of the agent's list in its order. Each has its fields and its "kind" by name.
  // The values are those of JsonReport. Passwords are clear.
  std::vector<std::map<std::string, std::string>> sites();
  // Returns the first site with that name.
  std::map<std::string, std::string> site(const std::string& name);
  // Returns the sites with a place in the search order, in that order: "a=1 b=2".
  std::string orders();
};

// Returns the permissions of a file or directory.
mode_t modeOf(const std::string& path);

// Returns a site element with these attributes after its name and order.
std::string siteElement(const std::string& element, const std::string& name,
                        const std::string& order, const std::string& attributes = "",
                        const std::string& children = "");

// Returns sites with letters as names and with these orders. An empty order is omitted.
std::string sitesWithOrders(const std::vector<std::string>& orders);

}  // namespace test

#endif
