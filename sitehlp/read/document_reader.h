#ifndef SITEHLP_READ_DOCUMENT_READER_H
#define SITEHLP_READ_DOCUMENT_READER_H

#include <functional>
#include <map>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/list_contents.h"
#include "sitehlp/read/list_source.h"

namespace sitehlp {

using PolicySettings = std::map<std::wstring, std::wstring>;
using Inspect = std::function<void(const AdvXMLParser::Element&)>;

// Decodes the children of the root of a list into policy settings and records. Reading ends after
// the first "SiteList". `take` becomes the owner of each record. `inspect`, when given, gets the
// root first.
//
// Returns the result of the last site element: 0 or -1. Returns -5 for a text that is not a
// well-formed document, or the error code of a ReadWriteException.
int readSites(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
              const TakeSite& take, const Inspect& inspect = nullptr);

// Does the same and makes a list of the records. `*list` has the records so far even if an
// exception is thrown.
int readList(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect = nullptr);
int readList(const std::wstring& text, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect = nullptr);

// Does the same as CSitesHelper::MustReadSiteList, for the file of `source` and the members of an
// instance.
int mustReadList(ListSource& source, std::wstring& currentFile, bool useDecryptData,
                 PolicySettings& policySettings, tag_Site** list);

// Logs the error line for a list that must be read but cannot be read or has no records.
void logFailedRead(int result);

}  // namespace sitehlp

#endif
