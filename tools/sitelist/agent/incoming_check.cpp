#include "tools/sitelist/agent/incoming_check.h"

#include <memory>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/model/root.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;

}  // namespace

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
