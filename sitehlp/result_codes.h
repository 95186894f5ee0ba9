#ifndef SITEHLP_RESULT_CODES_H
#define SITEHLP_RESULT_CODES_H

// The signed 32-bit results of the site list operations. The comment of each operation lists those
// that it returns. For a document over a limit, ReadSiteList and the operations that use it also
// return -104. This is AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED. A file that is too large
// gives -10 instead. resultText in sitehlp/list.h returns a text for each code.
namespace sitehlp {

constexpr int c_success = 0;             // done
constexpr int c_errorGeneral = -1;       // 0xFFFFFFFF: last site of unknown kind, or a failed step
constexpr int c_errorNoPath = -2;        // 0xFFFFFFFE: no path, null argument, empty input or list
constexpr int c_errorNoMemory = -3;      // 0xFFFFFFFD: a record could not be allocated
constexpr int c_errorFileMissing = -4;   // 0xFFFFFFFC: the file does not exist
constexpr int c_errorParse = -5;         // 0xFFFFFFFB: the document is not well formed
constexpr int c_errorNoServerSite = -8;  // 0xFFFFFFF8: the list has no management server
constexpr int c_errorValidation = -9;    // 0xFFFFFFF7: the list has a fault
constexpr int c_errorRead = -10;         // 0xFFFFFFF6: unreadable, too large or wrongly encoded
constexpr int c_errorWrite = -11;        // 0xFFFFFFF5: could not be written, or over a limit

}  // namespace sitehlp

#endif
