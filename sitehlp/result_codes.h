#ifndef SITEHLP_RESULT_CODES_H
#define SITEHLP_RESULT_CODES_H

// The signed 32-bit results of the site list operations. Each operation says which it returns. A
// document over a limit gives a reader -104, which is AdvXMLParser::ReadWriteException's
// LIMIT_EXCEEDED. sitehlp/list.h has a text for each code.
namespace sitehlp {

constexpr int c_success = 0;             // done
constexpr int c_errorGeneral = -1;       // 0xFFFFFFFF: last element unknown, or a failed step
constexpr int c_errorNoPath = -2;        // 0xFFFFFFFE: no path, null argument, empty input
constexpr int c_errorNoMemory = -3;      // 0xFFFFFFFD: a record could not be allocated
constexpr int c_errorFileMissing = -4;   // 0xFFFFFFFC: the file does not exist
constexpr int c_errorParse = -5;         // 0xFFFFFFFB: the document is not well formed
constexpr int c_errorNoServerSite = -8;  // 0xFFFFFFF8: the list has no management server
constexpr int c_errorValidation = -9;    // 0xFFFFFFF7: a validation rule failed
constexpr int c_errorRead = -10;         // 0xFFFFFFF6: the file could not be read
constexpr int c_errorWrite = -11;        // 0xFFFFFFF5: could not be written, or is over a limit

}  // namespace sitehlp

#endif
