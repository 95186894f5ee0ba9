#ifndef TOOLS_SITELIST_PROBE_RESPONSE_H
#define TOOLS_SITELIST_PROBE_RESPONSE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace tool {

struct Reply;

// Takes what a server sends and keeps only what a reply needs. The bytes are not trusted. The
// functions do not throw, because libcurl calls them.
class Response {
 public:
  // The most bytes of one response. The rest is not received.
  static constexpr std::int64_t c_mostBytes = std::int64_t{64} * 1024;

  explicit Response(bool isFtp) : m_isFtp(isFtp) {}

  // Each function returns whether more bytes are wanted.
  bool addLine(const char* bytes, std::size_t size) noexcept;
  bool addBody(const char* bytes, std::size_t size) noexcept;
  bool isWithinLimit(std::int64_t received) noexcept;

  // Returns whether the response has all that is needed although it was cut.
  bool isEnough() const { return m_isEnough; }
  bool isOverLimit() const { return m_isOverLimit; }
  void describe(Reply& reply) const;

 private:
  void addHttpLine(const char* bytes, std::size_t size) noexcept;
  void addFtpLine(const char* bytes, std::size_t size) noexcept;

  static constexpr std::size_t c_mostText = 512;

  bool m_isFtp;
  std::int64_t m_headBytes = 0;
  char m_line[c_mostText + 1] = {};  // the status line of HTTP or the greeting of FTP
  char m_location[c_mostText + 1] = {};
  int m_status = 0;
  bool m_wasChallenged = false;
  bool m_wasProxyChallenged = false;
  bool m_isLoggedIn = false;
  bool m_hasBody = false;
  std::int64_t m_entries = 0;
  bool m_isLineOpen = false;  // the last line of a listing has no end yet
  bool m_isListingCut = false;
  bool m_isEnough = false;
  bool m_isOverLimit = false;
};

}  // namespace tool

#endif
