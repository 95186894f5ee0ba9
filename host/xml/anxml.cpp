#include "platform/common/anxml.h"

#include <cerrno>

#include "host/process/failure_text.h"
#include "host/xml/document_tree.h"
#include "host/xml/readable.h"
#include "host/xml/text_file.h"
#include "host/xml/tree_text.h"
#include "platform/common/log.h"
#include "platform/xml/advxmlparser.h"

namespace {

using AdvXMLParser::DocumentTree;
using AdvXMLParser::ParsingException;
using AdvXMLParser::ReadWriteException;
using AdvXMLParser::WrittenIn;

void logNotRead(const AString& reason) {
  logError(host::c_logComponent, AString(L"Site list not read: ").append(reason));
}

void logNotRead(const AString& path, const std::exception& failure) {
  logNotRead(AString(path).append(L": ").append(AString(failure.what())));
}

std::unique_ptr<DocumentTree> treeOf(const AString& path, const std::string& utf8,
                                     const WrittenIn& writtenIn) {
  try {
    return AdvXMLParser::parseUtf8(utf8.data(), utf8.size(), &writtenIn);
  } catch (const ReadWriteException& failure) {
    logNotRead(path, failure);
  } catch (const ParsingException& failure) {
    logNotRead(path, failure);
  }
  return nullptr;
}

}  // namespace

AnXml::AnXml() = default;

AnXml::~AnXml() = default;

bool AnXml::useExistingFile(const AString& path, const wchar_t* rootName,
                            const wchar_t* namespaceAttribute, const wchar_t* namespaceValue) {
  std::string utf8;
  WrittenIn writtenIn{AdvXMLParser::UTF_8};
  try {
    AdvXMLParser::ReadUtf8FromFile(path.str(), utf8, writtenIn);
  } catch (const ReadWriteException& failure) {
    // The reason of a failed read begins with the path.
    if (failure.GetSystemError() != ENOENT) logNotRead(AString(failure.what()));
    return false;
  }
  return useText(path, utf8, writtenIn, rootName, namespaceAttribute, namespaceValue);
}

bool AnXml::useText(const AString& path, const std::string& utf8, const WrittenIn& writtenIn,
                    const wchar_t* rootName, const wchar_t* namespaceAttribute,
                    const wchar_t* namespaceValue) {
  std::unique_ptr<DocumentTree> tree = treeOf(path, utf8, writtenIn);
  if (!tree || !host::isElement(tree->root(), rootName) ||
      !host::hasAttribute(tree->root(), namespaceAttribute, namespaceValue)) {
    return false;
  }
  m_tree = std::move(tree);
  return true;
}

AdvXMLParser::Document* AnXml::newDocument() const {
  return m_tree ? new AdvXMLParser::Document(m_tree) : nullptr;
}

bool AnXml::writeFile(const AString& path, bool reserved1, bool reserved2) const {
  if (!m_tree || reserved1 || reserved2) return false;
  const std::string text = m_tree->toText(false);
  try {
    host::requireReadable(m_tree->root(), text);
    AdvXMLParser::writeDocumentBytes(path.str(), text.data(), text.size());
    return true;
  } catch (const ReadWriteException& failure) {
    AString line(L"Cannot write the edited list ");
    // The reason of a failed write begins with the path.
    if (failure.GetErrorCode() == ReadWriteException::LIMIT_EXCEEDED) {
      line.append(path).append(L": ");
    }
    logError(host::c_logComponent, line.append(AString(failure.what())));
    return false;
  }
}
