#ifndef SITEHLP_WRITE_SITE_WRITERS_H
#define SITEHLP_WRITE_SITE_WRITERS_H

#include "sitehlp/site.h"
#include "sitehlp/write/element_writer.h"

namespace sitehlp {

class CSitesHelper;

// Each writes the element of a record of its kind, and turns expanded macros in the record back.
void writeHttpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeFtpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeUncSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeLocalSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeProxySite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);

// Writes the element of a record by its kind. False, with nothing written, when it is of none.
bool writeSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);

// Asks for what writeSite will read of a record, so that the memory is there by then; first for its
// head, then for the record of its kind. The fields lie so far apart that a long list takes a
// quarter longer to write without this. What is asked for was chosen by measurement: with every row
// of the tables, writing takes a tenth longer. A field that is missing there is only read later.
void prefetchHead(const tag_Site& site);
void prefetchRecord(const tag_Site& site);

// An element with the protected form of a clear password, marked as encrypted. A password that
// cannot be protected is written as empty.
void writePassword(ElementWriter& writer, const wchar_t* name, const wchar_t* clear);

// The excluded hosts of a proxy, in an element of their own. Splits the record's own buffer, which
// is left with its first host.
void writeExclusions(CSitesHelper& helper, wchar_t (&hosts)[c_exclusionListCapacity],
                     ElementWriter& writer);

}  // namespace sitehlp

#endif
