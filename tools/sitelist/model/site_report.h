#ifndef TOOLS_SITELIST_MODEL_SITE_REPORT_H
#define TOOLS_SITELIST_MODEL_SITE_REPORT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// Replaces a password that is not empty.
constexpr const char* c_mask = "********";

// A site's kind and fields, as the output for programs has them.
Record recordOf(const sitehlp::tag_Site& site, bool showSecrets);
Scalar scalarOf(const Field& field, bool showSecrets);

// The names of the fields of all kinds, "kind" first.
const std::vector<std::string>& siteFieldNames();

// What the list as a whole says of itself.
Record listFacts(const SiteList& list);

// Columns of the tables for people that are no fields: where the site is, and whether it is on.
std::wstring orderOf(const sitehlp::tag_Site& site);
std::wstring addressOf(const sitehlp::tag_Site& site);
std::wstring pathOf(const sitehlp::tag_Site& site);
bool hasSecurePort(const sitehlp::tag_Site& site);

// Prints a proxy record as a block of lines.
void printProxy(std::ostream& out, const sitehlp::tag_ProxySite& proxy, bool showSecrets);

}  // namespace tool

#endif
