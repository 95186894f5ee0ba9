#include "host/xml/tree_builder.h"

#include <cstring>
#include <new>

#include "host/xml/limits.h"
#include "host/xml/tree_edit.h"
#include "platform/xml/advxmlparser.h"

namespace host {

// The functions that expat calls. No exception may pass through its frames: the first one is kept
// and stops the parser, which may still make a call or two that are part of the same piece.
struct TreeBuilder::Handlers {
  template <typename Action>
  static void guarded(void* self, Action action) {
    TreeBuilder& builder = *static_cast<TreeBuilder*>(self);
    if (builder.m_failure) return;
    try {
      action(builder);
    } catch (...) {
      builder.m_failure = std::current_exception();
      XML_StopParser(builder.m_parser, XML_FALSE);
    }
  }

  static void declaration(void* self, const char* version, const char*, int standalone) {
    // Without a version it is the declaration of an external entity, of which none is ever read.
    if (version && standalone >= 0) {
      guarded(self, [&](TreeBuilder& builder) { builder.setStandalone(standalone != 0); });
    }
  }
  static void startDoctype(void* self, const char*, const char*, const char*, int) {
    guarded(self, [](TreeBuilder& builder) { builder.refuse("document type declaration"); });
  }
  static void startElement(void* self, const char* name, const char** attributes) {
    guarded(self, [&](TreeBuilder& builder) { builder.startElement(name, attributes); });
  }
  static void endElement(void* self, const char*) {
    guarded(self, [](TreeBuilder& builder) { builder.endElement(); });
  }
  static void text(void* self, const char* text, int size) {
    guarded(self,
            [&](TreeBuilder& builder) { builder.addText(text, static_cast<std::size_t>(size)); });
  }
  static void startCdata(void* self) {
    guarded(self, [](TreeBuilder& builder) { builder.startCdata(); });
  }
  static void endCdata(void* self) {
    guarded(self, [](TreeBuilder& builder) { builder.endCdata(); });
  }
  static void comment(void* self, const char* text) {
    guarded(self, [&](TreeBuilder& builder) { builder.addComment(text); });
  }
  static void instruction(void* self, const char* target, const char* data) {
    guarded(self, [&](TreeBuilder& builder) { builder.addInstruction(target, data); });
  }
};

TreeBuilder::TreeBuilder() : m_parser(XML_ParserCreate("UTF-8")) {
  if (!m_parser) throw std::bad_alloc();
  XML_SetUserData(m_parser, this);
  XML_SetXmlDeclHandler(m_parser, Handlers::declaration);
  XML_SetStartDoctypeDeclHandler(m_parser, Handlers::startDoctype);
  XML_SetElementHandler(m_parser, Handlers::startElement, Handlers::endElement);
  XML_SetCharacterDataHandler(m_parser, Handlers::text);
  XML_SetCdataSectionHandler(m_parser, Handlers::startCdata, Handlers::endCdata);
  XML_SetCommentHandler(m_parser, Handlers::comment);
  XML_SetProcessingInstructionHandler(m_parser, Handlers::instruction);
  // What no other handler takes is the white space around the root.
  XML_SetDefaultHandlerExpand(m_parser, Handlers::text);
  try {
    m_tree = std::make_unique<AdvXMLParser::DocumentTree>();
  } catch (...) {
    XML_ParserFree(m_parser);
    throw;
  }
  m_parent = m_tree->document;
}

TreeBuilder::~TreeBuilder() { XML_ParserFree(m_parser); }

char* TreeBuilder::buffer(std::size_t size) {
  void* const room = XML_GetBuffer(m_parser, static_cast<int>(size));
  if (!room) throw std::bad_alloc();
  return static_cast<char*>(room);
}

void TreeBuilder::parse(std::size_t size, bool last) {
  const XML_Status status = XML_ParseBuffer(m_parser, static_cast<int>(size), last);
  if (m_failure) std::rethrow_exception(m_failure);
  if (status != XML_STATUS_OK) {
    const XML_Error error = XML_GetErrorCode(m_parser);
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    refuse(XML_ErrorString(error));
  }
  if (last) flushText();
}

void TreeBuilder::startElement(const char* name, const char** attributes) {
  checkToken();
  flushText();
  if (++m_depth > c_maxDepth) refuseAsTooLarge("depth");
  if (static_cast<std::size_t>(XML_GetSpecifiedAttributeCount(m_parser)) / 2 > c_maxAttributes) {
    refuseAsTooLarge("number of attributes");
  }
  m_parent = appendNode(m_parent, pugi::node_element, name);
  for (; *attributes; attributes += 2) appendAttribute(m_parent, attributes[0], attributes[1]);
}

void TreeBuilder::endElement() {
  flushText();
  --m_depth;
  m_parent = m_parent.parent();
}

void TreeBuilder::addText(const char* text, std::size_t size) {
  if (size > c_maxTokenBytes - m_text.size()) refuseAsTooLarge("length of a text");
  m_text.append(text, size);
}

void TreeBuilder::startCdata() { flushText(); }

void TreeBuilder::endCdata() {
  appendText(m_parent, pugi::node_cdata, m_text);
  m_text.clear();
}

void TreeBuilder::addComment(const char* text) {
  checkToken();
  flushText();
  appendText(m_parent, pugi::node_comment, text);
}

void TreeBuilder::addInstruction(const char* target, const char* data) {
  checkToken();
  flushText();
  setNodeValue(appendNode(m_parent, pugi::node_pi, target), data, std::strlen(data));
}

void TreeBuilder::setStandalone(bool standalone) {
  appendAttribute(m_tree->document.first_child(), "standalone", standalone ? "yes" : "no");
}

void TreeBuilder::flushText() {
  if (m_text.empty()) return;
  appendText(m_parent, pugi::node_pcdata, m_text);
  m_text.clear();
}

void TreeBuilder::checkToken() const {
  if (static_cast<std::size_t>(XML_GetCurrentByteCount(m_parser)) > c_maxTokenBytes) {
    refuseAsTooLarge("length of a token");
  }
}

void TreeBuilder::refuse(const char* reason) const {
  throw AdvXMLParser::ParsingException(XML_GetCurrentLineNumber(m_parser),
                                       XML_GetCurrentColumnNumber(m_parser) + 1, reason);
}

void TreeBuilder::refuseAsTooLarge(const char* what) const {
  throw AdvXMLParser::ReadWriteException(AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, 0,
                                         std::string("document over the limit: ") + what,
                                         XML_GetCurrentLineNumber(m_parser),
                                         XML_GetCurrentColumnNumber(m_parser) + 1);
}

}  // namespace host
