#include "platform/common/anxml.h"

#include "host/common/encoding.h"
#include "host/fs/files.h"
#include "host/xml/document_tree.h"
#include "host/xml/text_file.h"
#include "host/xml/tree_text.h"
#include "platform/xml/advxmlparser.h"

namespace {

std::unique_ptr<AdvXMLParser::DocumentTree> readTree(const std::wstring& path) {
  std::string utf8;
  AdvXMLParser::UTF_ENCODINGS encoding = AdvXMLParser::UTF_8;
  try {
    AdvXMLParser::ReadUtf8FromFile(path, utf8, encoding);
    return AdvXMLParser::parseUtf8(utf8.data(), utf8.size());
  } catch (const AdvXMLParser::ReadWriteException&) {
    return nullptr;
  } catch (const AdvXMLParser::ParsingException&) {
    return nullptr;
  }
}

}  // namespace

AnXml::AnXml() = default;

AnXml::~AnXml() = default;

bool AnXml::useExistingFile(const AString& path, const wchar_t* rootName,
                            const wchar_t* namespaceAttribute, const wchar_t* namespaceValue) {
  std::unique_ptr<AdvXMLParser::DocumentTree> tree = readTree(path.str());
  if (!tree || !host::isElement(tree->root(), rootName) ||
      !host::hasAttribute(tree->root(), namespaceAttribute, namespaceValue)) {
    return false;
  }
  m_tree = std::move(tree);
  return true;
}

bool AnXml::writeFile(const AString& path, bool reserved1, bool reserved2) const {
  if (!m_tree || reserved1 || reserved2) return false;
  const std::string text = m_tree->toText(false);
  return host::replaceFile(host::toUtf8(path.str()), text.data(), text.size(),
                           host::c_modeOfNewDocument) == 0;
}
