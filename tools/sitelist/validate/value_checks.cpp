#include "tools/sitelist/validate/value_checks.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/common/abase64encode.h"
#include "platform/common/text.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

// The size of an encrypted empty password: version byte, nonce and tag.
constexpr std::size_t c_leastProtectedSize = 1 + 12 + 16;
constexpr unsigned char c_protectedVersion = 1;

bool isSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

std::wstring trimmed(const std::wstring& text) {
  const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
  const auto last = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
  return first < last ? std::wstring(first, last) : std::wstring();
}

// Returns whether the text is only a decimal number within the bounds.
bool isNumber(const std::wstring& text, long least, long most) {
  const std::wstring digits = trimmed(text);
  const std::size_t sign = !digits.empty() && (digits[0] == L'-' || digits[0] == L'+') ? 1 : 0;
  if (digits.size() == sign || digits.find_first_not_of(L"0123456789", sign) != digits.npos) {
    return false;
  }
  const long number = std::strtol(narrow(digits).c_str(), nullptr, 10);
  return number >= least && number <= most;
}

void checkLength(const ValueGrammar& grammar, const std::wstring& text, const Place& place,
                 Faults& faults) {
  if (text.size() < grammar.capacity) return;
  faults.add("text-cut", place,
             "\"" + narrow(grammar.name) + "\" has " + std::to_string(text.size()) +
                 " characters and is cut to " + std::to_string(grammar.capacity - 1));
}

// Several colons are correct only in an IPv6 address in brackets, with a port after it.
bool isAmbiguous(const std::wstring& address) {
  if (std::count(address.begin(), address.end(), L':') < 2) return false;
  const std::wstring host = hostOf(address);
  return host.front() != L'[' || host.back() != L']';
}

void checkPort(const std::wstring& name, const std::wstring& port, const Place& place,
               Faults& faults) {
  if (isNumber(port, 0, c_maxPort)) return;
  faults.add("port-number", place,
             "the port " + inQuotes(port) + " of \"" + narrow(name) +
                 "\" is not a number from 0 to 65535");
}

void checkAddress(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                  Faults& faults) {
  std::wstring host = hostOf(value);
  if (isAmbiguous(value)) {
    faults.add("ambiguous-address", place,
               "\"" + narrow(grammar.name) + "\" is " + inQuotes(value) +
                   ", which is read as the host " + inQuotes(host) + "; write [ADDRESS]:PORT");
  } else if (host.size() != value.size()) {
    checkPort(grammar.name, value.substr(host.size() + 1), place, faults);
  }
  if (grammar.type == ValueType::ComputerName) convertFqdnToNetbios(host);
  checkLength(grammar, host, place, faults);
}

void checkFlag(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
               Faults& faults) {
  if (isNumber(value, 0, 1)) return;
  faults.add("flag-value", place,
             "\"" + narrow(grammar.name) + "\" is " + inQuotes(value) + ", which is read as " +
                 (numberIn(value) != 0 ? "1" : "0"));
}

void checkOrder(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                Faults& faults) {
  using Limits = std::numeric_limits<int>;
  if (isNumber(value, Limits::min(), Limits::max())) return;
  faults.add("order-number", place,
             "\"" + narrow(grammar.name) + "\" is " + inQuotes(value) + ", which is read as " +
                 std::to_string(numberIn(value)));
}

// The message does not repeat the value, because it may be a clear password.
void checkPassword(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                   Faults& faults) {
  const ABuffer bytes = ABase64Encode::decode(value);
  const bool isOneWord = std::none_of(value.begin(), value.end(), isSpace);
  if (isOneWord && bytes.size() >= c_leastProtectedSize && bytes.data()[0] == c_protectedVersion) {
    return;
  }
  faults.add("password-form", place,
             "\"" + narrow(grammar.name) + "\" is not an encrypted password and is read as empty");
}

}  // namespace

// Converts a number in the same way as the library, even if it is out of range.
int numberIn(const std::wstring& text) {
  return static_cast<int>(std::strtol(narrow(text).c_str(), nullptr, 10));
}

std::wstring hostOf(const std::wstring& address) { return address.substr(0, address.rfind(L':')); }

// An empty value is treated as a missing one, except for an order.
void checkValue(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                Faults& faults) {
  if (value.empty() && grammar.type != ValueType::Order) return;
  switch (grammar.type) {
    case ValueType::Text:
      return checkLength(grammar, value, place, faults);
    case ValueType::Address:
    case ValueType::ComputerName:
      return checkAddress(grammar, value, place, faults);
    case ValueType::Flag:
      return checkFlag(grammar, value, place, faults);
    case ValueType::Port:
      return checkPort(grammar.name, value, place, faults);
    case ValueType::Order:
      return checkOrder(grammar, value, place, faults);
    case ValueType::Password:
      return checkPassword(grammar, value, place, faults);
    case ValueType::Elements:
    case ValueType::Any:
    case ValueType::Unread:
      return;
  }
}

}  // namespace tool
