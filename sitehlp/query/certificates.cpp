#include "sitehlp/query/certificates.h"

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using korvel_com::orb::xmlschema::sitelist::WX_XML_CABUNDLE;
using korvel_com::orb::xmlschema::sitelist::WX_XML_CACERTIFICATE;

bool readCertificates(const Element& root, std::vector<std::wstring>& certificates) {
  const Element bundle = root.GetElement(WX_XML_CABUNDLE);
  for (const Element child : bundle.Elements()) {
    if (child.HasName(WX_XML_CACERTIFICATE)) certificates.push_back(child.GetValue());
  }
  return !bundle.IsNull();
}

int queryCertificates(ListSource& source, std::vector<std::wstring>& certificates) {
  const ADetailTrace trace(c_component, L"Getting Certificates");
  const int readResult = source.read(true);
  if (readResult != c_success) return readResult;
  try {
    const AdvXMLParser::Document* const document = source.document();
    if (document) readCertificates(document->GetRoot(), certificates);
    return c_success;
  } catch (const AdvXMLParser::ParsingException&) {
    return c_errorParse;
  } catch (const AdvXMLParser::ReadWriteException&) {
    return c_errorWrite;
  }
}

int CSitesHelper::GetCaCertificates(const std::wstring& path,
                                    std::vector<std::wstring>& certificates) {
  ListSource source(path.empty() ? m_strSiteListFile : path);
  return queryCertificates(source, certificates);
}

}  // namespace sitehlp
