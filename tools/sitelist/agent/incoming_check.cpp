#include "tools/sitelist/agent/incoming_check.h"

#include <memory>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;

std::wstring withoutPrefix(const std::wstring& name) { return name.substr(name.rfind(L':') + 1); }

}  // namespace

void requireSiteList(const std::string& name, const AdvXMLParser::Document& document) {
  const std::wstring root = document.GetRoot().GetName();
  if (withoutPrefix(root) == withoutPrefix(schema::WX_XML_SITELISTS)) return;
  throw failureAt(name, exitDocument,
                  "the document is not a site list\n  its root is \"" + shown(root) +
                      "\", not \"ns:SiteLists\"",
                  "check that it is the right file");
}

void requireIncomingList(const IncomingOptions& options) {
  std::wstring text;
  std::unique_ptr<AdvXMLParser::Document> document;
  if (readDocument(options.file, text, document)) return;
  requireSiteList(options.file, *document);
  if (options.isChecked || options.allowEmpty) return;
  for ([[maybe_unused]] const AdvXMLParser::Element site :
       document->GetRoot().GetElement(schema::WX_XML_SITELIST).Elements()) {
    return;
  }
  throw failureAt(options.file, exitNegative,
                  "the list has no site\n  Nothing was written, because the agent would be left "
                  "without sites.",
                  "check that it is the right file, or install it with --allow-empty");
}

}  // namespace tool
