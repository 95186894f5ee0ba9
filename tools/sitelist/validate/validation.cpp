#include "tools/sitelist/validate/validation.h"

#include <unistd.h>

#include <cerrno>
#include <cwchar>
#include <utility>

#include "sitehlp/common/log_texts.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/validate/checks.h"

namespace tool {
namespace {

namespace log_texts = sitehlp::log_texts;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

// The text of a log line for a fault: its beginning and its end. If `isWhole` is not set and `end`
// is empty, the line ends with a value. The message also has this value in quotation marks if
// `text` ends with "not ".
struct Wording {
  const char* rule;
  const wchar_t* begin;
  const wchar_t* end;
  bool isWhole;
  const char* text;
};

constexpr Wording c_wordings[] = {
    {"no-sites", log_texts::c_noSites, L"", true, "the list has no sites"},
    {"no-server", log_texts::c_noServer, L"", false, "the list has no management server"},
    {"server-not-local", log_texts::c_serverLocal, L"", true,
     "the management server must not be local"},
    {"server-kind-http", log_texts::c_serverKind, L"", false,
     "the management server must be of the HTTP kind"},
    {"server-type-master", log_texts::c_serverType, L"", false,
     "the type of the management server must be \"master\", not "},
    {"server-element", log_texts::c_serverElement, L"", false,
     "the element of the management server must be \"VestaSite\", not "},
    {"server-name", log_texts::c_noServerName, L"", true, "the management server has no \"Name\""},
    {"server-address", log_texts::c_noServerAddress, L"", true,
     "the management server has no \"Server\""},
    {"server-ip-address", log_texts::c_noServerIp, L"", true,
     "the management server has no \"ServerIP\""},
    {"server-computer-name", log_texts::c_noComputerName, L"", true,
     "the management server has no \"ServerName\""},
    {"server-path", log_texts::c_noServerPath, L"", true,
     "the management server has no \"RelativePath\""},
    {"server-request-key", L"", L"req2048seckey.bin is invalid", false,
     "the directory of the list has neither reqseckey.bin nor req2048seckey.bin, or both are "
     "empty"},
    {"server-public-key", L"", L"sr2048pubkey.bin is invalid", false,
     "the directory of the list has neither srpubkey.bin nor sr2048pubkey.bin, or both are empty"},
};

bool endsWith(const std::wstring& text, const std::wstring& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isWordedAs(const std::wstring& text, const Wording& wording) {
  if (wording.isWhole) return text == wording.begin;
  return text.rfind(wording.begin, 0) == 0 && endsWith(text, wording.end);
}

std::string ruleText(const std::wstring& logged, const Wording& wording) {
  const std::string text = wording.text;
  const std::string beforeValue = "not ";
  if (text.compare(text.size() - beforeValue.size(), beforeValue.size(), beforeValue) != 0) {
    return text;
  }
  return text + inQuotes(logged.substr(std::wcslen(wording.begin)));
}

// Returns the place of a fault: the server, or the place where a missing thing should be.
Place placeOf(const std::string& rule, const PlacedElement& root) {
  const PlacedElement* const list = root.child(WX_XML_SITELIST);
  if (!list) return root.place;
  const PlacedElement* const server = list->child(WX_XML_SITELIST_VESTA_SITE);
  return server && rule.rfind("server-", 0) == 0 ? server->place : list->place;
}

void addLoggedFaults(const PlacedElement& root, bool isBesideKeys, Faults& faults) {
  for (const LogRecord& record : logRecords()) {
    for (const Wording& wording : c_wordings) {
      if (!isWordedAs(record.text, wording)) continue;
      const Place place = placeOf(wording.rule, root);
      const bool isKeyRule = endsWith(wording.end, L"key.bin is invalid");
      if (!isKeyRule || isBesideKeys) {
        faults.add(wording.rule, place, ruleText(record.text, wording));
      } else if (!faults.has("key-files-unchecked")) {
        faults.add("key-files-unchecked", place,
                   "the server has a version, but there is no directory in which to look for its "
                   "key files");
      }
      break;
    }
  }
}

// Sets the sites of faults, which must be in the order of the document.
void setSites(const PlacedElement& root, std::vector<Fault>& faults) {
  const PlacedElement* const list = root.child(WX_XML_SITELIST);
  if (!list) return;
  std::vector<std::pair<Place, std::wstring>> starts;
  const auto addStart = [&](const PlacedElement& site) {
    starts.emplace_back(site.place, site.attribute(WX_XML_SITE_NAME));
  };
  for (const PlacedElement& site : list->children) {
    addStart(site);
    if (!site.element.HasName(WX_XML_PROXY_CONFIG_LIST)) continue;
    for (const PlacedElement& proxy : site.children) addStart(proxy);
  }
  // An element after the list does not belong to the last site of the list.
  for (const PlacedElement& child : root.children) {
    if (list->place < child.place) starts.emplace_back(child.place, std::wstring());
  }
  auto next = starts.begin();
  std::wstring name;
  for (Fault& fault : faults) {
    for (; next != starts.end() && !(fault.place < next->first); ++next) name = next->second;
    fault.site = name;
  }
}

std::vector<Fault> takeWithSites(const PlacedElement& root, Faults& faults) {
  std::vector<Fault> found = faults.take();
  setSites(root, found);
  return found;
}

}  // namespace

Fault faultOfReading(const ReadError& error) {
  return {findRule(error.rule), {error.line, error.column}, error.reason, {}};
}

std::vector<Fault> validateList(const ListSource& source, bool checkServer) {
  Faults faults;
  if (::access(source.path.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
    faults.add("missing-file", {}, "the file does not exist");
    return faults.take();
  }
  PlacedDocument document;
  if (const auto error = document.read(source.path)) return {faultOfReading(*error)};
  clearLogRecords();
  sitehlp::CSitesHelper helper(true);
  sitehlp::tag_Site* list = nullptr;
  const int read = helper.ReadSiteList(wide(source.path), &list, false);
  const Sites sites(list);
  const PlacedElement* const unknownSite = findUnknownSite(document.root());
  if (read == sitehlp::c_errorGeneral && unknownSite) {
    faults.add("unknown-site", unknownSite->place, "the last site of the list is of unknown kind");
  } else if (read != 0) {
    if (const auto error = findReadError(source.path, read)) return {faultOfReading(*error)};
    throw libraryFailure(source.path, read);
  }
  const int checked = helper.SourceSiteListCheck(sites.get(), checkServer);
  addLoggedFaults(document.root(), source.isBesideKeys, faults);
  if (checked != 0 && faults.empty()) throw libraryFailure(source.path, checked);
  checkDocument(document.root(), checkServer, faults);
  return takeWithSites(document.root(), faults);
}

Failure lastSiteFailure(const std::string& path) {
  constexpr int code = sitehlp::c_errorGeneral;
  PlacedDocument document;
  if (document.read(path)) return libraryFailure(path, code);
  const PlacedElement* const site = findUnknownSite(document.root());
  if (!site) return libraryFailure(path, code);
  const Place& place = site->place;
  return Failure(exitDocument,
                 shown(path) + ": the last site of the list is of unknown kind (" +
                     formatCode(code) + ")\n  line " + std::to_string(place.line) + ", column " +
                     std::to_string(place.column) + ": unknown site element " +
                     shown(inQuotes(site->element.GetName())),
                 "correct the name of the element", {path, code, place.line, place.column});
}

std::vector<Fault> loggedFaults(const std::string& path) {
  Faults faults;
  PlacedDocument document;
  if (document.read(path)) return {};
  addLoggedFaults(document.root(), true, faults);
  return takeWithSites(document.root(), faults);
}

}  // namespace tool
