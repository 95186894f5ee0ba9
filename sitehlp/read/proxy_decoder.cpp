#include "sitehlp/read/proxy_decoder.h"

#include <cwchar>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/read/field_reader.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

const ChildReader<c_proxyFields> c_children;

}  // namespace

void readExclusions(const Element& element, tag_ProxySite& site) {
  std::size_t length = std::wcslen(site.szExclusionList);
  for (const Element child : element.Elements()) {
    if (!child.HasName(WX_XML_PROXY_EXCLUSIONHOST)) continue;
    // A delimiter is counted even for the first host, which has none.
    const std::size_t room = c_exclusionLimit - length;
    const std::size_t start = site.iExclusionCount != 0 ? length + 1 : length;
    if (room > 1 && child.CopyValue(site.szExclusionList + start, room - 1)) {
      if (start != length) site.szExclusionList[length] = c_proxyParamDelimiter[0];
      length = start + std::wcslen(site.szExclusionList + start);
      ++site.iExclusionCount;
      continue;
    }
    std::wmemset(site.szExclusionList + length, L'\0', c_exclusionListCapacity - length);
    if (!logEnabled(LogLevel::Detail)) continue;
    logDetail(c_component, AString(L"Exclusion list of proxy settings is truncated to ")
                               .append(site.szExclusionList)
                               .append(L" in ReadSiteFromSiteList"));
  }
}

void decodeProxy(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
                 tag_ProxySite& site) {
  setField(site.szName, attributes.get<&WX_XML_SITE_NAME>());
  readAttributes<c_proxyFields>(attributes, site);
  const bool http = site.szHttpProxyServer[0] != L'\0';
  const bool ftp = site.szFtpProxyServer[0] != L'\0';
  // A port is used only with its server.
  if (!http) site.iHttpProxyPort = 0;
  if (!ftp) site.iFtpProxyPort = 0;
  const wchar_t* const which = http && ftp ? WX_XML_SITELIST_FTPHTTP_SITE
                               : http      ? WX_XML_SITELIST_HTTP_SITE
                               : ftp       ? WX_XML_SITELIST_FTP_SITE
                                           : L"";
  setField(site.szElement, which, std::wcslen(which));
  for (const Element child : element.Elements()) {
    // Only this password is always encrypted with the password key.
    const bool isOwn = useDecryptData && child.HasName(WX_XML_HTTP_PROXY_PROXYPASSWORD);
    c_children.read(child, useDecryptData && !isOwn, site);
  }
}

}  // namespace sitehlp
