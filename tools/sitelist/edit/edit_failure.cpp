#include "tools/sitelist/edit/edit_failure.h"

#include <filesystem>

#include "platform/common/anxml.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

void failIfNotEditable(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) {
    throw libraryFailure(path, sitehlp::c_errorFileMissing);
  }
  if (findDocumentFault(path)) throw libraryFailure(path, sitehlp::c_errorParse);
  AnXml document;
  if (!document.useExistingFile(wide(path), WX_XML_SITELISTS, WX_XML_NAMESPACE,
                                WX_XML_SITELISTS_NAMESPACE)) {
    throw failureAt(path, exitDocument,
                    "the document is not a site list\n  its root is not \"ns:SiteLists\" with "
                    "xmlns:ns=\"wxSiteList\"",
                    "check that it is the right file");
  }
  AnXmlNode siteList;
  if (!AnXmlNode(&document).getExistingChild(siteList, WX_XML_SITELIST, nullptr, nullptr, nullptr,
                                             nullptr)) {
    throw failureAt(path, exitDocument, "the document has no \"SiteList\"",
                    "check that it is the right file");
  }
}

}  // namespace tool
