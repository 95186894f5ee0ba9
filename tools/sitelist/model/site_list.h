#ifndef TOOLS_SITELIST_MODEL_SITE_LIST_H
#define TOOLS_SITELIST_MODEL_SITE_LIST_H

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "sitehlp/common/document_values.h"
#include "sitehlp/list_contents.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/failure.h"

namespace tool {

struct FreeSites {
  void operator()(sitehlp::tag_Site* sites) const {
    sitehlp::CSitesHelper::FreeSiteListMemory(sites);
  }
};
using Sites = std::unique_ptr<sitehlp::tag_Site, FreeSites>;

// Everything that the library reads from one site list file.
struct SiteList : sitehlp::ListContents {
  std::string path;
  int result = 0;  // of the read of the sites
  Sites sites;
};

// Reads everything that can be read. `result` has the result code. Takes the lock of the current
// agent.
SiteList readSiteList(const std::string& path);
// Does the same. Fails when the result code is not 0.
SiteList readWholeSiteList(const std::string& path);

// Writes the sites and the other content of `list`. The library replaces empty versions.
void writeSiteList(SiteList& list, const std::string& path);

// Returns 'there is no site "Depot"' or, with a kind, 'there is no site "Depot" of kind http'.
std::string missingSite(const std::string& name, const std::string& kind);

// Returns "; did you mean A or B?" with the sites of the list whose names are similar. Returns an
// empty text if there are none. The text is printable.
std::string similarSites(const SiteList& list, const std::string& name);

// Returns the failure for a policy setting that the list does not have.
Failure missingPolicy(const SiteList& list, const std::string& name);

// Returns, for example, "1 entry" or "2 entries".
std::string countEntries(const sitehlp::tag_Site* sites);

// Returns the name of the kind in c_kinds, or c_unknownKind (tools/sitelist/model/kinds.h).
const char* kindOf(const sitehlp::tag_Site& site);
const wchar_t* nameOf(const sitehlp::tag_Site& site);

using sitehlp::c_fallbackType;
using sitehlp::c_orderOfFallback;

constexpr long c_maxPort = 65535;

struct Field {
  const char* name;
  std::variant<bool, std::int64_t, const wchar_t*> value;  // a text belongs to the record
  bool isSecret = false;
  bool hasHosts = false;  // a text with hosts, separated by ";"
};

// Returns the fields of a record with their names. The fields that every kind has come first.
std::vector<Field> fieldsOf(const sitehlp::tag_Site& site);
bool isSame(const Field& a, const Field& b);

// Returns the hosts of a text in which they are separated by ";", without empty ones.
std::vector<std::wstring> hostsIn(const std::wstring& text);

// Returns whether the password key of the current agent decrypts an encrypted password. Never
// creates a key.
bool opensWithAgentKey(const std::wstring& protectedText);

}  // namespace tool

#endif
