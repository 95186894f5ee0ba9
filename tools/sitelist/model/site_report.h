#ifndef TOOLS_SITELIST_MODEL_SITE_REPORT_H
#define TOOLS_SITELIST_MODEL_SITE_REPORT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// Printed instead of a password that is not empty.
constexpr const char* c_mask = "********";

// Returns the kind and fields of a site for the output for programs.
Record recordOf(const sitehlp::tag_Site& site, bool showSecrets);
Scalar scalarOf(const Field& field, bool showSecrets);

// Returns the names of the fields of all kinds, beginning with "kind".
const std::vector<std::string>& siteFieldNames();

// Returns the facts about the list as a whole.
Record listFacts(const SiteList& list);

// Texts for the table format: order, address and path of a site. The order is empty for a mirror
// without an order, and "last" for 65535.
std::wstring orderOf(const sitehlp::tag_Site& site);
std::wstring addressOf(const sitehlp::tag_Site& site);
std::wstring pathOf(const sitehlp::tag_Site& site);
bool hasSecurePort(const sitehlp::tag_Site& site);

// Prints a proxy record as a block of lines.
void printProxy(std::ostream& out, const sitehlp::tag_ProxySite& proxy, bool showSecrets);

}  // namespace tool

#endif
