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

// Turns the children of the root of a list, up to and with the first "SiteList", into policy
// settings and records, each of which `take` becomes the owner of. `inspect`, when given, sees the
// root first. Returns the result of the site element decoded last (0 or -1), -5 for a text that is
// no well-formed document, or the error code of a ReadWriteException.
int readSites(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
              const TakeSite& take, const Inspect& inspect = nullptr);

// The same with the records as a list. `*list` holds what was built, also when something else is
// thrown.
int readList(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect = nullptr);
int readList(const std::wstring& text, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect = nullptr);

// What CSitesHelper::MustReadSiteList does with a file, for an instance of which these are members.
int mustReadList(ListSource& source, std::wstring& currentFile, bool useDecryptData,
                 PolicySettings& policySettings, tag_Site** list);

// The error line for a list that had to be read and was not, or has no records.
void logFailedRead(int result);

}  // namespace sitehlp

#endif
