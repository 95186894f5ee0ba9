#include "sitehlp/list_contents.h"

#include <utility>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/query/certificates.h"
#include "sitehlp/query/versions.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {

using AdvXMLParser::Element;

int CSitesHelper::ReadListContents(const std::wstring& path, ListContents& contents,
                                   const TakeSite& take) {
  const ADetailTrace trace(c_component, L"Reading Sitelist");
  contents = ListContents();
  if (path.empty()) return c_errorNoPath;
  ListSource source(path);
  const int readResult = source.read(true);
  if (readResult != c_success) return readResult;
  return readSites(source, false, contents.policySettings, take, [&](const Element& root) {
    readVersions(root, contents.globalVersion, contents.localVersion, contents.type);
    std::wstring fipsMode;
    if (readFipsMode(root, fipsMode)) contents.fipsMode = std::move(fipsMode);
    readCertificates(root, contents.certificates);
  });
}

}  // namespace sitehlp
