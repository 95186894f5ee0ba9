#ifndef TOOLS_SITELIST_MODEL_SITE_LIST_H
#define TOOLS_SITELIST_MODEL_SITE_LIST_H

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "sitehlp/list_contents.h"
#include "sitehlp/sites_helper.h"

namespace tool {

struct FreeSites {
  void operator()(sitehlp::tag_Site* sites) const {
    sitehlp::CSitesHelper::FreeSiteListMemory(sites);
  }
};
using Sites = std::unique_ptr<sitehlp::tag_Site, FreeSites>;

// All that the library reads from one site list file.
struct SiteList : sitehlp::ListContents {
  std::string path;
  int result = 0;  // of reading the sites
  Sites sites;
};

// Reads what can be read; `result` tells how that went. Takes the lock of the agent that is served.
SiteList readSiteList(const std::string& path);
// The same; fails when the result is not 0.
SiteList readWholeSiteList(const std::string& path);

// Writes the sites with all else that `list` holds. Empty versions are left to the library.
void writeSiteList(SiteList& list, const std::string& path);

// The list as it reads when it has been written, which is not always as it was; `scratch` is where
// that is tried. `path` is kept.
SiteList asWritten(SiteList& list, const std::string& scratch);

// 'there is no site "Depot"'; with a kind: 'there is no site "Depot" of kind http'.
std::string missingSite(const std::string& name, const std::string& kind);

// "1 entry", "2 entries".
std::string countEntries(const sitehlp::tag_Site* sites);

// "server", "agent", "http", "ftp", "unc", "local", "proxy", or "unknown" for an element that the
// library does not know.
const char* kindOf(const sitehlp::tag_Site& site);
const wchar_t* nameOf(const sitehlp::tag_Site& site);

constexpr const wchar_t* c_fallbackType = L"fallback";  // in any case
// What the library reads for the order of a fallback that has none.
constexpr std::int32_t c_orderOfFallback = 65535;

constexpr long c_maxPort = 65535;

struct Field {
  const char* name;
  std::variant<bool, std::int64_t, const wchar_t*> value;  // a text stays in the record
  bool isSecret = false;
};

// The fields of a record under plain names, those common to all kinds first.
std::vector<Field> fieldsOf(const sitehlp::tag_Site& site);
bool isSame(const Field& a, const Field& b);

// Whether the key of the agent served opens the protected form of a password.
bool opensWithAgentKey(const std::wstring& protectedText);

// The names of the sites with a password that the key of the agent served does not open. The reader
// gives such a password as an empty one.
std::vector<std::string> sitesWithLostPasswords(const std::string& path);
// Warns of the passwords of `path` that were just read as empty for that reason, if any were.
void warnOfUnreadPasswords(const std::string& path, bool isOwnList);
// Fails when there are such sites, because writing the list would lose their passwords.
void refuseLostPasswords(const std::string& path);

}  // namespace tool

#endif
