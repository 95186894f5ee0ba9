#ifndef SITEHLP_COMMON_NUMBER_H
#define SITEHLP_COMMON_NUMBER_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>

namespace sitehlp {

constexpr std::size_t c_longestNumber = 11;  // "-2147483648"

// Writes the decimal text of an int or an unsigned int, without a terminator, and returns its end.
template <typename Number>
wchar_t* writeDecimal(Number number, wchar_t* out) {
  char digits[c_longestNumber];
  return std::copy(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr, out);
}

// The decimal text of a number, without a terminator. Allocates nothing.
class Decimal {
 public:
  template <typename Number>
  explicit Decimal(Number number) : m_end(writeDecimal(number, m_text)) {}
  Decimal(const Decimal&) = delete;
  Decimal& operator=(const Decimal&) = delete;

  const wchar_t* data() const { return m_text; }
  std::size_t size() const { return static_cast<std::size_t>(m_end - m_text); }

 private:
  wchar_t m_text[c_longestNumber];
  wchar_t* m_end;
};

// Returns the number at the start of a narrow text. White space and a sign are accepted. Reading
// stops at the first character that is not a digit. A text without a number gives 0. A number out
// of the range of long becomes the nearest long. A number out of the range of int loses its upper
// bits.
int toInt(const char* text);

// Reads the unsigned decimal number at the start of a text, after white space. Returns false and
// leaves `number` unchanged when there is no number, when it has a sign, or when it is too large.
bool toUnsigned(const wchar_t* text, unsigned int& number);

// Returns the position of the last ":" in a text, or null if there is none.
const wchar_t* findPort(const wchar_t* text);

}  // namespace sitehlp

#endif
