#include <algorithm>
#include <cstring>
#include <new>

#include "host/common/ascii.h"
#include "host/common/encoding.h"
#include "host/xml/document_tree.h"
#include "host/xml/passed_documents.h"
#include "host/xml/readable.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

// A byte that is not valid anywhere in UTF-8.
constexpr char c_invalidByte = '\xFF';

template <typename Char>
bool beginsAsMarkup(const Char* text, const Char* end) {
  const Char* const first = std::find_if(
      text, end, [](Char c) { return c != ' ' && c != '\t' && c != '\n' && c != '\r'; });
  return first != end && *first == '<';
}

// Returns the position of the first character that is not a Unicode scalar value.
std::size_t scalars(const wchar_t* text, std::size_t length) {
  std::size_t done = 0;
  while (done < length) {
    done += host::asciiBlocks(text + done, length - done);
    const std::size_t end = std::min(length, done + host::c_asciiBlock);
    for (; done < end; ++done) {
      if (!host::isScalar(static_cast<std::uint32_t>(text[done]))) return done;
    }
  }
  return done;
}

// Replaces every line end with a line feed. Returns the new end.
char* foldLineEnds(char* text, char* end) {
  char* from = static_cast<char*>(std::memchr(text, '\r', static_cast<std::size_t>(end - text)));
  if (!from) return end;
  char* to = from;
  for (; from != end; ++from) {
    if (*from != '\r') {
      *to++ = *from;
    } else if (from + 1 == end || from[1] != '\n') {
      *to++ = '\n';
    }
  }
  return to;
}

// Checks that the bytes are a well-formed document, and returns its tree.
std::unique_ptr<DocumentTree> checkedTree(TreeText utf8, char* end, const WrittenIn* writtenIn) {
  const host::Standalone standalone = host::checkWellFormedOnce(
      utf8.data(), static_cast<std::size_t>(end - utf8.data()), writtenIn);
  end = foldLineEnds(utf8.data(), end);
  const auto size = static_cast<std::size_t>(end - utf8.data());
  return std::make_unique<DocumentTree>(std::move(utf8), size, standalone);
}

}  // namespace

std::unique_ptr<DocumentTree> parseUtf8(const char* utf8, std::size_t length,
                                        const WrittenIn* writtenIn) {
  if (!beginsAsMarkup(utf8, utf8 + length)) return nullptr;
  host::requireDocumentSize(length);
  TreeText text(length);
  char* const end = std::copy_n(utf8, length, text.data());
  return checkedTree(std::move(text), end, writtenIn);
}

std::unique_ptr<DocumentTree> parseTree(const wchar_t* text, std::size_t length) {
  if (!beginsAsMarkup(text, text + length)) return nullptr;
  const std::size_t size = host::utf8Size(text, length);
  host::requireDocumentSize(size);
  TreeText utf8(size);
  char* end = utf8.data();
  if (size == length) {  // the text is plain ASCII
    end = host::narrowPlain(text, length, end);
  } else {
    const std::size_t validLength = scalars(text, length);
    end = host::writeUtf8(text, validLength, end);
    // Stands for the invalid character, so that the parser reports its place.
    if (validLength != length) *end++ = c_invalidByte;
  }
  return checkedTree(std::move(utf8), end, nullptr);
}

Document* Parser::Parse(const wchar_t* text, std::size_t length) {
  std::unique_ptr<DocumentTree> tree = parseTree(text, length);
  return tree ? new Document(std::move(tree)) : nullptr;
}

Document* Parser::ParseUtf8(const char* utf8, std::size_t length, const WrittenIn* writtenIn) {
  std::unique_ptr<DocumentTree> tree = parseUtf8(utf8, length, writtenIn);
  return tree ? new Document(std::move(tree)) : nullptr;
}

}  // namespace AdvXMLParser
