#include "tests/canaries/passwords.h"

#include <stdexcept>

#include "tests/support/server_password.h"

namespace test {
namespace {

std::string keyPath(const Workshop& workshop, const char* name) {
  return workshop.keystore() + "/" + name;
}

// The bytes of a wide text.
std::string wideBytes(const std::string& text) {
  const std::wstring wideText = wide(text);
  return std::string(reinterpret_cast<const char*>(wideText.data()),
                     wideText.size() * sizeof(wchar_t));
}

}  // namespace

std::string protect(const Workshop& workshop, const std::string& clear, Owner owner) {
  const std::string server = keyPath(workshop, "server.key");
  const std::string usual = readFile(server);
  // Both kinds of passwords have the same form.
  if (owner == Owner::Agent) writeFile(server, readFile(keyPath(workshop, "password.key")), 0600);
  if (owner == Owner::OtherAgent) writeFile(server, std::string(usual.size(), 'o'), 0600);
  const std::string sealed = sealServerPassword(clear);
  writeFile(server, usual, 0600);
  if (sealed.empty()) throw std::runtime_error("the password is not encrypted");
  return sealed;
}

std::vector<OddPassword> oddPasswords() {
  std::string tooLong;
  while (tooLong.size() < 1000) tooLong += c_canary;
  return {
      {"plain", c_canary},
      {"not UTF-8 at the end", c_canary + "\xFF"},
      {"not UTF-8 at the beginning", "\xFF" + c_canary},
      {"not UTF-8 in the middle", c_canary + "\xC3(" + c_canary},
      {"a zero in the middle", c_canary + std::string(1, '\0') + c_canary},
      {"too long", tooLong},
      {"too long and not UTF-8", tooLong + "\xFF"},
      {"of two bytes a character", c_canary + "\xC3\xA9" + c_canary},
  };
}

std::vector<std::string> secretsOf(const Workshop& workshop) {
  constexpr std::size_t c_part = 9;
  constexpr std::size_t c_keyPart = 16;
  std::vector<std::string> secrets;
  for (const std::string& part :
       {c_canary.substr(0, c_part), c_canary.substr(c_canary.size() - c_part)}) {
    secrets.push_back(part);
    secrets.push_back(wideBytes(part));
  }
  for (const char* name : {"password.key", "server.key"}) {
    const std::string key = readFile(keyPath(workshop, name));
    secrets.push_back(key.substr(0, c_keyPart));
    secrets.push_back(key.substr(c_keyPart));
  }
  return secrets;
}

}  // namespace test
