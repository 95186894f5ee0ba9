#ifndef SITEHLP_DOCUMENT_READER_H
#define SITEHLP_DOCUMENT_READER_H

#include <boost/scoped_ptr.hpp>
#include <functional>
#include <map>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/list_contents.h"

namespace sitehlp {

// The encoding that site lists are written in, and the hint that they are read with.
constexpr AdvXMLParser::UTF_ENCODINGS c_encoding = AdvXMLParser::UTF_8;

using DocumentPtr = boost::scoped_ptr<AdvXMLParser::Document>;
using PolicySettings = std::map<std::wstring, std::wstring>;

// Reads a file that must exist into `text`, as UTF-8, under the read lock "SiteListLock" when
// `useLock`. Returns 0, or -4 or -10 and then `text` is as it was.
int readDocumentText(const std::wstring& path, bool useLock, std::string& text);

// Parses a text. `document` is null when the text holds no markup. Throws what
// AdvXMLParser::Parser throws.
void parseDocument(const std::string& utf8, DocumentPtr& document);
void parseDocument(const std::wstring& text, DocumentPtr& document);

using Inspect = std::function<void(const AdvXMLParser::Element&)>;

// Reads a file that must exist, under the read lock "SiteListLock", parses it, and turns the
// children of its root, up to and with the first "SiteList", into policy settings and records, each
// of which `take` becomes the owner of. `inspect`, when given, sees the root first. Returns -2 for
// an empty path, what readDocumentText returned when that is not 0, the result of the site element
// decoded last (0 or -1), -5 for a text that is no well-formed document, or the error code of a
// ReadWriteException.
int readSitesOfFile(const std::wstring& path, bool useDecryptData, PolicySettings& policySettings,
                    const TakeSite& take, const Inspect& inspect = nullptr);

// The same for a text, with the records as a list. `*list` holds what was built, also when
// something else is thrown.
int readList(std::string utf8, bool useDecryptData, PolicySettings& policySettings, tag_Site** list,
             const Inspect& inspect = nullptr);
int readList(std::wstring text, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect = nullptr);

// The error line for a list that had to be read and was not, or has no records.
void logFailedRead(int result);

}  // namespace sitehlp

#endif
