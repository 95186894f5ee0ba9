#ifndef SITEHLP_NUMBER_H
#define SITEHLP_NUMBER_H

namespace sitehlp {

// The number at the start of a narrow text: white space and a sign are accepted, reading stops at
// the first character that is no digit, and a text without a number gives 0. What does not fit into
// a long counts as the largest or smallest long, and what does not fit into an int loses its upper
// bits.
int toInt(const char* text);

// The unsigned decimal number at the start of a text, as a wide stream of the classic locale reads
// it. Returns false, with `number` as it was, when there is none or when it does not fit.
bool toUnsigned(const wchar_t* text, unsigned int& number);

// The position of the last ":" in a text; null when there is none.
const wchar_t* findPort(const wchar_t* text);

}  // namespace sitehlp

#endif
