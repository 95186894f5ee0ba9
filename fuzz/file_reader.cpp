#include <cwchar>

#include "fuzz/stage.h"
#include "sitehlp/sites_helper.h"

using namespace sitehlp;

namespace {

bool isTerminated(const wchar_t* field, std::size_t capacity) {
  return std::wmemchr(field, L'\0', capacity) != nullptr;
}

}  // namespace

// Reads a file of any bytes as a list and with one of the queries.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  files.put(fuzz::c_list, std::string(reinterpret_cast<const char*>(data), size));
  CSitesHelper helper(fuzz::c_widePath);
  tag_Site* list = nullptr;
  const int code = helper.ReadSiteList(fuzz::c_widePath, &list, true);
  fuzz::require(code == 0 || code == c_errorGeneral || code == c_errorParse ||
                    code == c_errorRead || code == AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED,
                "the reader returns a code that its header names");
  for (const tag_Site* site = list; site; site = site->pNext) {
    fuzz::require(isTerminated(site->szType, c_textCapacity),
                  "the text of a type has a terminator");
    fuzz::require(isTerminated(site->proxy.szExclusionList, c_exclusionListCapacity) ||
                      site->eSiteKind != SITE_KIND_PROXY,
                  "the text of an exclusion list has a terminator");
  }
  tag_Site* chain = nullptr;
  if (list) helper.GetVestaSite(list, &chain);
  helper.SourceSiteListCheck(list, true);
  helper.AdjustSitesOrder(list);
  CSitesHelper::FreeSiteListMemory(chain);
  CSitesHelper::FreeSiteListMemory(list);
  // Each query reads the file separately, so one query for each input is sufficient.
  switch (size % 4) {
    case 0: {
      std::wstring global;
      std::wstring local;
      std::wstring type;
      helper.GetSitelistVersions(fuzz::c_widePath, global, local, type);
      break;
    }
    case 1: {
      std::wstring mode;
      helper.GetSitelistFipsMode(fuzz::c_widePath, mode);
      break;
    }
    case 2: {
      std::vector<std::wstring> certificates;
      helper.GetCaCertificates(fuzz::c_widePath, certificates);
      break;
    }
    default: {
      std::wstring text;
      try {
        helper.GetSiteListBuffer(text);
      } catch (const AdvXMLParser::ReadWriteException&) {
        // The header states this exception.
      }
    }
  }
  fuzz::require(files.find(fuzz::c_list)->size() == size, "reading changes nothing");
  return 0;
}
