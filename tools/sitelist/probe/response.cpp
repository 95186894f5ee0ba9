#include "tools/sitelist/probe/response.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "tools/sitelist/probe/transfer.h"

namespace tool {
namespace {

constexpr int c_loginAsked = 401;
constexpr int c_proxyLoginAsked = 407;

// Returns the number of three digits at the start of the text, or 0.
int replyCodeAt(std::string_view text) {
  int code = 0;
  if (text.size() < 3) return 0;
  for (const char c : text.substr(0, 3)) {
    if (c < '0' || c > '9') return 0;
    code = code * 10 + (c - '0');
  }
  return code;
}

// Returns whether a line of a header has this name in any case. `name` has lower case.
bool hasName(std::string_view line, std::string_view name) {
  return line.size() >= name.size() &&
         std::equal(name.begin(), name.end(), line.begin(), [](char a, char b) {
           return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b + 32) : b);
         });
}

template <std::size_t Size>
void keep(std::string_view text, char (&kept)[Size]) {
  const std::size_t length = std::min(text.size(), Size - 1);
  std::memcpy(kept, text.data(), length);
  kept[length] = '\0';
}

}  // namespace

bool Response::addLine(const char* bytes, std::size_t size) noexcept {
  m_headBytes += static_cast<std::int64_t>(size);
  if (m_headBytes > c_mostBytes) {
    m_isOverLimit = true;
    return false;
  }
  m_isFtp ? addFtpLine(bytes, size) : addHttpLine(bytes, size);
  return true;
}

void Response::addHttpLine(const char* bytes, std::size_t size) noexcept {
  const std::string_view line(bytes, size);
  if (hasName(line, "location:")) {
    const std::size_t start = line.find_first_not_of(" \t", std::strlen("location:"));
    keep(start == std::string_view::npos ? "" : line.substr(start), m_location);
  }
  const std::size_t space = line.find(' ');
  if (line.compare(0, 5, "HTTP/") != 0 || space == std::string_view::npos) return;
  const std::string_view rest = line.substr(space + 1);
  m_location[0] = '\0';
  m_status = replyCodeAt(rest);
  m_wasChallenged = m_wasChallenged || m_status == c_loginAsked;
  m_wasProxyChallenged = m_wasProxyChallenged || m_status == c_proxyLoginAsked;
  keep(rest, m_line);
}

// Only the greeting is kept, because a later line may repeat the login.
void Response::addFtpLine(const char* bytes, std::size_t size) noexcept {
  constexpr int c_greeting = 220;
  constexpr int c_loggedIn = 230;
  const std::string_view line(bytes, size);
  const int code = replyCodeAt(line);
  m_isLoggedIn = m_isLoggedIn || code == c_loggedIn;
  if (code != c_greeting || m_line[0] != '\0') return;
  keep(line, m_line);
}

// The body of an HTTP answer is not needed.
bool Response::addBody(const char* bytes, std::size_t size) noexcept {
  m_hasBody = true;
  if (!m_isFtp) {
    m_isEnough = m_status != 0;
    return false;
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (!m_isLineOpen) ++m_entries;
    m_isLineOpen = bytes[i] != '\n';
  }
  return true;
}

bool Response::isWithinLimit(std::int64_t received) noexcept {
  if (received <= c_mostBytes) return true;
  m_isListingCut = m_isFtp && m_hasBody;
  m_isEnough = m_isListingCut;
  m_isOverLimit = !m_isListingCut;
  return false;
}

void Response::describe(Reply& reply) const {
  reply.status = m_status;
  reply.answer = limitedText(m_line);
  if (m_status >= 300 && m_status < 400) reply.redirect = limitedText(m_location);
  reply.wasChallenged = m_wasChallenged;
  reply.wasProxyChallenged = m_wasProxyChallenged;
  reply.isLoggedIn = m_isLoggedIn;
  if (m_isFtp && m_isLoggedIn) reply.entries = m_entries;
  reply.isListingCut = m_isListingCut;
}

}  // namespace tool
