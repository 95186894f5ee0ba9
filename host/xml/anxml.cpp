#include "platform/common/anxml.h"

#include "host/common/encoding.h"
#include "host/fs/files.h"
#include "host/xml/document_tree.h"
#include "host/xml/limits.h"
#include "host/xml/text_encoding.h"
#include "host/xml/text_file.h"
#include "host/xml/tree_text.h"
#include "platform/xml/advxmlparser.h"

namespace {

// Bytes in UTF-8 become a tree as they are; wide text would take four times the memory.
std::unique_ptr<AdvXMLParser::DocumentTree> parseBytes(const std::string& bytes) {
  const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
  const host::FoundEncoding found = host::findEncoding(data, bytes.size(), AdvXMLParser::UTF_8);
  const std::size_t length = bytes.size() - found.markLength;
  if (found.encoding == AdvXMLParser::UTF_8) {
    return AdvXMLParser::parseUtf8(bytes.data() + found.markLength, length);
  }
  std::wstring text;
  if (!host::decodeText(data + found.markLength, length, found.encoding, text)) return nullptr;
  return AdvXMLParser::parseTree(text.data(), text.size());
}

std::unique_ptr<AdvXMLParser::DocumentTree> readTree(const std::wstring& path) {
  std::string bytes;
  if (host::readRegularFile(host::toUtf8(path), host::c_maxDocumentBytes, bytes) != 0) {
    return nullptr;
  }
  try {
    return parseBytes(bytes);
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
