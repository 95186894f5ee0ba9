#include "tools/sitelist/model/root.h"

#include <expat.h>

#include <memory>
#include <new>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;

struct FreeRootParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Root {
  XML_Parser parser = nullptr;
  std::string name;
  bool isOutOfMemory = false;
};

// No exception may pass through the parser's frames.
void onRoot(void* data, const char* name, const char**) {
  Root& root = *static_cast<Root*>(data);
  try {
    root.name = name;
  } catch (const std::bad_alloc&) {
    root.isOutOfMemory = true;
  }
  XML_StopParser(root.parser, XML_FALSE);
}

// Returns the name of the root element, or an empty text if there is none. Stops at its start tag,
// because the library has already parsed the document.
std::string rootOf(const std::string& utf8) {
  const std::unique_ptr<XML_ParserStruct, FreeRootParser> parser(XML_ParserCreate("UTF-8"));
  if (!parser) throw std::bad_alloc();
  Root root;
  root.parser = parser.get();
  XML_SetUserData(parser.get(), &root);
  XML_SetStartElementHandler(parser.get(), onRoot);
  XML_Parse(parser.get(), utf8.data(), static_cast<int>(utf8.size()), XML_TRUE);
  if (root.isOutOfMemory) throw std::bad_alloc();
  return std::move(root.name);
}

std::wstring withoutPrefix(const std::wstring& name) { return name.substr(name.rfind(L':') + 1); }

void requireRoot(const std::string& name, const std::wstring& root) {
  if (withoutPrefix(root) == withoutPrefix(schema::WX_XML_SITELISTS)) return;
  throw failureAt(name, exitDocument,
                  "the document is not a site list\n  its root is \"" + shown(root) +
                      "\", not \"ns:SiteLists\"",
                  "check that it is the right file");
}

}  // namespace

void requireSiteList(const std::string& name, const AdvXMLParser::Document& document) {
  requireRoot(name, document.GetRoot().GetName());
}

void requireSiteList(const std::string& path) {
  std::string utf8;
  AdvXMLParser::WrittenIn writtenIn{AdvXMLParser::UTF_8};
  try {
    AdvXMLParser::ReadUtf8FromFile(wide(path), utf8, writtenIn);
  } catch (const AdvXMLParser::ReadWriteException& e) {
    throw libraryFailure(path, e.GetErrorCode());
  }
  const std::string root = rootOf(utf8);
  if (root.empty()) throw libraryFailure(path, sitehlp::c_errorParse);
  requireRoot(path, wide(root));
}

void requireSiteList(const Input& input) {
  std::unique_ptr<AdvXMLParser::Document> document;
  if (readDocumentInBytes(input.bytes, document)) {
    throw libraryFailure(input.name, input.bytes, sitehlp::c_errorParse);
  }
  requireSiteList(input.name, *document);
}

}  // namespace tool
