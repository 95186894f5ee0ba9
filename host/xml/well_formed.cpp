#include "host/xml/well_formed.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "host/process/random_bytes.h"
#include "host/xml/limits.h"
#include "host/xml/text_encoding.h"
#include "platform/xml/advxmlparser.h"

namespace host {
namespace {

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<XML_ParserStruct, FreeParser>;

// A random salt, so that nobody can write a document whose names all have the same hash in expat's
// tables. It is drawn once in a process, because expat would draw one for every document. With 0,
// expat draws its own.
std::atomic<unsigned long> g_hashSalt{0};

unsigned long hashSalt() {
  unsigned long salt = g_hashSalt.load(std::memory_order_relaxed);
  if (salt != 0) return salt;
  unsigned long drawn = 0;
  if (drawRandomBytes(&drawn, sizeof drawn) != 0) return 0;
  return g_hashSalt.compare_exchange_strong(salt, drawn) ? drawn : salt;
}

ParserPtr makeParser() {
  ParserPtr parser(XML_ParserCreate("UTF-8"));
  if (!parser) throw std::bad_alloc();
  return parser;
}

// The number of bytes that expat gets at a time. It is so large that most documents fit into one
// piece, because expat reads every piece except the last a second time to count lines. A token over
// the limit is refused after one piece.
constexpr std::size_t c_pieceBytes = 4 * c_maxTokenBytes;

// Counts while expat parses. The handlers are called by expat. An exception must not pass through
// its frames, so the first one is stored and stops the parser. The parser may still call a handler
// once or twice afterwards.
class Checker {
 public:
  Checker() : m_parser(makeParser()) {
    XML_Parser const parser = m_parser.get();
    XML_SetHashSalt(parser, hashSalt());
    XML_SetUserData(parser, this);
    XML_SetXmlDeclHandler(parser, onDeclaration);
    XML_SetStartDoctypeDeclHandler(parser, onDoctype);
    XML_SetElementHandler(parser, onStartElement, onEndElement);
    XML_SetCharacterDataHandler(parser, onText);
    XML_SetCdataSectionHandler(parser, onMarkup, onMarkup);
    XML_SetCommentHandler(parser, onComment);
    XML_SetProcessingInstructionHandler(parser, onInstruction);
    // The other handlers take everything except the white space around the root.
    XML_SetDefaultHandlerExpand(parser, onText);
  }

  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  Standalone check(const char* utf8, std::size_t size, const AdvXMLParser::WrittenIn* writtenIn) {
    m_writtenIn = writtenIn;
    do {
      const std::size_t piece = std::min(size - m_fed, c_pieceBytes);
      feed(utf8 + m_fed, piece, m_fed + piece == size);
    } while (m_fed < size);
    return m_standalone;
  }

 private:
  void feed(const char* utf8, std::size_t size, bool isLast) {
    const XML_Status status =
        XML_Parse(m_parser.get(), utf8, static_cast<int>(size), isLast ? XML_TRUE : XML_FALSE);
    m_fed += size;
    if (m_failure) std::rethrow_exception(m_failure);
    if (status != XML_STATUS_OK) refuseBy(XML_GetErrorCode(m_parser.get()));
    if (!isLast) requireTokenWithin();
  }

  [[noreturn]] void refuseBy(XML_Error error) const {
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    if (error == XML_ERROR_UNCLOSED_TOKEN) requireTokenWithin();
    refuse(XML_ErrorString(error));
  }

  // Checks the length of a token that has begun but not ended in the bytes so far.
  void requireTokenWithin() const {
    // The index is negative if no token precedes this one.
    const XML_Index start = std::max<XML_Index>(0, XML_GetCurrentByteIndex(m_parser.get()));
    if (m_fed - static_cast<std::size_t>(start) > c_maxTokenBytes) {
      refuseAsTooLarge(c_tokenLimit);
    }
  }

  static Checker& from(void* self) { return *static_cast<Checker*>(self); }

  static void onDeclaration(void* self, const char*, const char* encoding, int standalone) {
    Checker& checker = from(self);
    if (standalone >= 0) checker.m_standalone = standalone ? Standalone::Yes : Standalone::No;
    if (!encoding || !checker.m_writtenIn) return;
    checker.stopUnless(agreesWith(encoding, *checker.m_writtenIn), [&] {
      checker.refuse("the declared encoding is not that of the document");
    });
  }
  static void onDoctype(void* self, const char*, const char*, const char*, int) {
    from(self).stopUnless(false,
                          [&] { from(self).refuse("a document type declaration is not allowed"); });
  }
  static void onStartElement(void* self, const char*, const char**) {
    Checker& checker = from(self);
    checker.startMarkup();
    if (checker.m_depth < c_maxDepth) {
      checker.require(++checker.m_children[checker.m_depth] <= c_maxChildren, c_childrenLimit);
      checker.m_children[checker.m_depth + 1] = 0;
    }
    checker.require(++checker.m_depth <= c_maxDepth, c_depthLimit);
    const auto attributes =
        static_cast<std::size_t>(XML_GetSpecifiedAttributeCount(checker.m_parser.get())) / 2;
    checker.require(attributes <= c_maxAttributes, c_attributesLimit);
  }
  static void onEndElement(void* self, const char*) {
    from(self).m_textSize = 0;
    --from(self).m_depth;
  }
  static void onText(void* self, const char*, int size) {
    Checker& checker = from(self);
    checker.m_textSize += static_cast<std::size_t>(size);
    checker.require(checker.m_textSize <= c_maxTokenBytes, c_textLimit);
  }
  static void onMarkup(void* self) { from(self).m_textSize = 0; }
  static void onComment(void* self, const char*) { from(self).startMarkup(); }
  static void onInstruction(void* self, const char*, const char*) { from(self).startMarkup(); }

  void startMarkup() {
    m_textSize = 0;
    const auto size = static_cast<std::size_t>(XML_GetCurrentByteCount(m_parser.get()));
    require(size <= c_maxTokenBytes, c_tokenLimit);
  }

  void require(bool isWithin, const char* what) {
    stopUnless(isWithin, [&] { refuseAsTooLarge(what); });
  }

  template <typename Refuse>
  void stopUnless(bool isGood, Refuse refuseIt) {
    if (isGood || m_failure) return;
    try {
      refuseIt();
    } catch (...) {
      m_failure = std::current_exception();
      XML_StopParser(m_parser.get(), XML_FALSE);
    }
  }

  [[noreturn]] void refuse(const char* reason) const {
    throw AdvXMLParser::ParsingException(XML_GetCurrentLineNumber(m_parser.get()),
                                         XML_GetCurrentColumnNumber(m_parser.get()) + 1, reason);
  }

  [[noreturn]] void refuseAsTooLarge(const char* what) const {
    throw AdvXMLParser::ReadWriteException(AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, 0,
                                           std::string("document over the limit: ") + what,
                                           XML_GetCurrentLineNumber(m_parser.get()),
                                           XML_GetCurrentColumnNumber(m_parser.get()) + 1);
  }

  ParserPtr m_parser;
  const AdvXMLParser::WrittenIn* m_writtenIn = nullptr;
  std::size_t m_fed = 0;  // bytes that expat has received
  std::size_t m_depth = 0;
  std::array<std::size_t, c_maxDepth + 1> m_children{};  // by the depth of the parent
  std::size_t m_textSize = 0;                            // of the current text
  Standalone m_standalone = Standalone::NotSaid;
  std::exception_ptr m_failure;
};

}  // namespace

Standalone checkWellFormed(const char* utf8, std::size_t size,
                           const AdvXMLParser::WrittenIn* writtenIn) {
  return Checker().check(utf8, size, writtenIn);
}

}  // namespace host
