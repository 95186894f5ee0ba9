#ifndef SITEHLP_EDIT_EDIT_DOCUMENT_H
#define SITEHLP_EDIT_EDIT_DOCUMENT_H

#include <string>

#include "platform/common/anxml.h"
#include "platform/common/astring.h"
#include "sitehlp/read/list_source.h"

namespace sitehlp {

// The component of document editing in log lines and traces.
constexpr const wchar_t* c_editComponent = L"StSHlp";

// Parses the text of `source` and opens it as a site list document. `source` has the same document
// afterwards.
bool openSiteListText(AnXml& document, ListSource& source);

// Opens a file as a site list document, under the read lock "SiteListLock".
bool openLocked(AnXml& document, const AString& path);

// Returns whether a reader accepts the number of records of a "SiteList" element. If not, logs why
// the list is not written to `path`. AnXml::writeFile checks the other limits.
bool isWithinRecordLimits(const AnXmlNode& siteList, const std::wstring& path);

// Writes a document under the write lock "SiteListLock".
bool writeLocked(const AnXml& document, const AString& path);

// Finds the "SiteList" element directly below a root.
bool findSiteList(const AnXmlNode& root, AnXmlNode& siteList);

}  // namespace sitehlp

#endif
