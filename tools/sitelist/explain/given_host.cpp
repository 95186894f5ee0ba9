#include "tools/sitelist/explain/given_host.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdlib>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

[[noreturn]] void refuse(const std::string& given, const std::string& why) {
  throw Failure(exitUsage, "--host: \"" + shown(given) + "\" is not a host: " + why,
                "give a name such as depot.example, depot.example:8080 or http://depot.example/");
}

bool isIpv6(const std::string& text) {
  in6_addr address = {};
  return ::inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

void checkPort(const std::string& given, const std::string& port) {
  constexpr std::size_t c_maxDigits = 5;
  const bool isNumber = !port.empty() && port.size() <= c_maxDigits &&
                        port.find_first_not_of("0123456789") == std::string::npos;
  const long number = isNumber ? std::strtol(port.c_str(), nullptr, 10) : 0;
  if (number < 1 || number > c_maxPort) refuse(given, "its port is not a number from 1 to 65535");
}

// Returns the host and port of a URL, or any other text unchanged. Fails for an unknown scheme.
std::string authorityOf(const std::string& given, bool& isFtp) {
  const std::size_t mark = given.find("://");
  if (mark == std::string::npos) return given;
  const std::wstring scheme = caseFolded(wide(given.substr(0, mark)));
  if (scheme != L"http" && scheme != L"https" && scheme != L"ftp") {
    refuse(given, "the URL must begin with http, https or ftp");
  }
  isFtp = scheme == L"ftp";
  const std::string rest = given.substr(mark + 3);
  const std::string authority = rest.substr(0, rest.find_first_of("/?#"));
  return authority.substr(authority.rfind('@') + 1);
}

// Returns the host without its port. Checks the port.
std::string hostIn(const std::string& given, const std::string& authority) {
  if (isIpv6(authority)) return "[" + authority + "]";
  const std::size_t bracket = authority.rfind(']');
  const std::size_t colon = authority.find(':', bracket == std::string::npos ? 0 : bracket);
  if (colon != std::string::npos) checkPort(given, authority.substr(colon + 1));
  const std::string host = authority.substr(0, colon);
  if (bracket == std::string::npos) return host;
  if (bracket + 1 == host.size() && host[0] == '[' && isIpv6(host.substr(1, bracket - 1))) {
    return host;
  }
  refuse(given, "brackets must have an IPv6 address in them");
}

}  // namespace

GivenHost parseHost(const std::string& given) {
  GivenHost host;
  const std::string name = hostIn(given, authorityOf(given, host.isFtp));
  if (name.empty()) refuse(given, "the name is empty");
  host.name = wide(name);
  const bool hasOthers = std::any_of(host.name.begin(), host.name.end(), [](wchar_t c) {
    return c <= L' ' || c == L'/' || c == L'?' || c == L'#' || c == L'@' || c == L'\\' ||
           printable(std::wstring(1, c)) != std::wstring(1, c);
  });
  if (hasOthers) refuse(given, "the name has a character that is not allowed in a host name");
  return host;
}

}  // namespace tool
