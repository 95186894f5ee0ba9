#ifndef TESTS_PROBE_PROBE_FIXTURE_H
#define TESTS_PROBE_PROBE_FIXTURE_H

#include <map>
#include <string>
#include <vector>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/cli/json_report.h"
#include "tests/probe/peer.h"
#include "tests/probe/servers.h"

namespace test {

// A site of a list. Empty values are omitted.
struct Entry {
  std::string element = "HttpSite";
  std::string name = "Depot";
  std::string server;
  std::string path = "Current";
  std::string securePort;
  std::string user;
  std::string password;  // clear
  std::string type = "repository";
  std::string order = "1";
  std::string enabled = "1";
};

class ProbeTest : public CliTest {
 protected:
  ProbeTest();

  // The text of a site in a list, with its password encrypted.
  std::string text(const Entry& entry);
  // Proxy settings. Further child elements are in `more`.
  static std::string proxy(const std::string& attributes, const std::string& more = "");
  std::string httpProxy(int port, const std::string& more = "") const;
  // The same with a login.
  std::string proxyLogin(const std::string& user, const std::string& password,
                         const std::string& prefix = "");

  // Writes a list with these entries and the certificate of an authority.
  std::string list(const std::string& entries, const std::string& authority = "");
  // Probes the list and returns the JSON document. Also checks that no login is in the output.
  JsonReport probe(const std::string& list, const std::vector<std::string>& options = {});
  // Probes one site and returns its row.
  JsonReport::Record probeSite(const Entry& entry, const std::string& authority = "",
                               const std::string& others = "");
  static std::string local(int port) { return "127.0.0.1:" + std::to_string(port); }

  Output output;  // of the last probe
};

// Expects that no login of servers.h is in the text.
void expectNoLogin(const std::string& text);

}  // namespace test

#endif
