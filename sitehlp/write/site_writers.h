#ifndef SITEHLP_WRITE_SITE_WRITERS_H
#define SITEHLP_WRITE_SITE_WRITERS_H

#include "sitehlp/site.h"
#include "sitehlp/write/element_writer.h"

namespace sitehlp {

class CSitesHelper;

// Each function writes the element of a record of its kind and turns expanded macros in the record
// back.
void writeHttpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeFtpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeUncSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeLocalSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);
void writeProxySite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);

// Writes the element of a record by its kind. Returns false and writes nothing if the kind is
// unknown.
bool writeSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);

// Prefetch the memory of a record that writeSite reads: first the head, then the record of its
// kind. Without this, writing a long list takes a quarter longer, because the fields are far apart.
// The set of fields was chosen by measurement. If all fields are prefetched, writing takes a tenth
// longer. A field that is not in the set is read without a prefetch.
void prefetchHead(const tag_Site& site);
void prefetchRecord(const tag_Site& site);

// Writes an element with the encrypted form of a clear password and marks it as encrypted. A
// password that cannot be encrypted is written as an empty element.
void writePassword(ElementWriter& writer, const wchar_t* name, const wchar_t* clear);

// Writes the element with the exclusion hosts of a proxy. Splits the text in the record itself;
// afterwards it has only the first host.
void writeExclusions(CSitesHelper& helper, wchar_t (&hosts)[c_exclusionListCapacity],
                     ElementWriter& writer);

}  // namespace sitehlp

#endif
