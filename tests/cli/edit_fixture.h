#ifndef TESTS_CLI_EDIT_FIXTURE_H
#define TESTS_CLI_EDIT_FIXTURE_H

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
  // An edit that changes the list. Gives its message.
  std::string change(const Arguments& arguments, const std::string& input = "");
  // An edit that finds nothing to change and leaves the file alone.
  void changeNothing(const Arguments& arguments, const std::string& input = "");
  // An edit that fails with this status and changes nothing. Gives its message.
  std::string fail(int status, const Arguments& arguments, const std::string& input = "");

  // The sites of the agent's list in its order, each with its fields and its "kind" by name; texts
  // as they are, numbers in decimal, flags as "true" and "false". Passwords are clear.
  std::vector<std::map<std::string, std::string>> sites();
  // The first one of that name.
  std::map<std::string, std::string> site(const std::string& name);
  // The sites with a place in the search order, in it: "a=1 b=2".
  std::string orders();
};

// A site element with these attributes behind its name and order.
std::string siteElement(const std::string& element, const std::string& name,
                        const std::string& order, const std::string& attributes = "",
                        const std::string& children = "");

// Sites named by letters, with these orders; an empty one is left out.
std::string sitesWithOrders(const std::vector<std::string>& orders);

}  // namespace test

#endif
