#ifndef TOOLS_SITELIST_PROBE_OUTCOME_H
#define TOOLS_SITELIST_PROBE_OUTCOME_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/sitelist/model/certificate.h"

namespace tool {

enum class ProbeState { Ok, Failed, NotTried };

// Returns the name of a state in the output.
const char* nameOf(ProbeState state);

// A certificate that a server has shown, and why it is not trusted.
struct ShownCertificate {
  Certificate certificate;
  std::vector<std::string> faults;  // empty: it is trusted
};

// What happened on the port for secure connections.
struct SecureOutcome {
  std::optional<std::int64_t> milliseconds;  // until the connection; empty if there was none
  std::optional<ShownCertificate> certificate;
  bool isOk = false;
};

// What happened with one site. Texts may come from the network. They are valid UTF-8 of limited
// length, and the code that prints them must make them printable. An empty text means none.
struct ProbeOutcome {
  ProbeState state = ProbeState::NotTried;
  std::vector<std::string> addresses;  // of the host, or of its proxy
  std::optional<std::int64_t> milliseconds;
  std::string answer;
  std::optional<std::int64_t> entries;  // of a directory
  bool isListingCut = false;
  std::string redirect;
  std::string login;  // accepted, anonymous, refused, unclear, required, unsupported or not-asked
  std::string proxyLogin;
  std::optional<SecureOutcome> secure;
  std::string readAs;  // the user who read a local directory
  std::string note;
  std::string error;
  std::string next;
};

// Cuts a text from the network to 256 bytes and makes it valid UTF-8.
std::string limitedText(const std::string& text);

}  // namespace tool

#endif
