#include <algorithm>

#include "host/common/encoding.h"
#include "host/xml/limits.h"
#include "host/xml/tree_builder.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

constexpr std::size_t c_pieceCharacters = std::size_t{64} << 10;
constexpr std::size_t c_maxCharacterBytes = 4;

// A byte that is refused wherever it stands in UTF-8.
constexpr char c_invalidByte = '\xFF';

bool beginsAsMarkup(const wchar_t* text, const wchar_t* end) {
  const wchar_t* const first = std::find_if(
      text, end, [](wchar_t c) { return c != L' ' && c != L'\t' && c != L'\n' && c != L'\r'; });
  return first != end && *first == L'<';
}

}  // namespace

std::unique_ptr<DocumentTree> parseTree(const wchar_t* text, std::size_t length) {
  const wchar_t* const end = text + length;
  if (!beginsAsMarkup(text, end)) return nullptr;
  if (host::utf8Size(text, length) > host::c_maxDocumentBytes) {
    throw ReadWriteException(ReadWriteException::LIMIT_EXCEEDED, 0,
                             "document over the limit: number of bytes");
  }
  host::TreeBuilder builder;
  while (text != end) {
    const wchar_t* const pieceEnd =
        text + std::min(c_pieceCharacters, static_cast<std::size_t>(end - text));
    const wchar_t* const validEnd = std::find_if_not(
        text, pieceEnd, [](wchar_t c) { return host::isScalar(static_cast<std::uint32_t>(c)); });
    const auto validLength = static_cast<std::size_t>(validEnd - text);
    // One byte more than the piece takes, for the one that stands for what is no character. The
    // parser then finds it and says where it is.
    char* const buffer = builder.buffer(validLength * c_maxCharacterBytes + 1);
    char* bufferEnd = host::writeUtf8(text, validLength, buffer);
    if (validEnd != pieceEnd) *bufferEnd++ = c_invalidByte;
    builder.parse(static_cast<std::size_t>(bufferEnd - buffer), pieceEnd == end);
    text = pieceEnd;
  }
  return builder.takeTree();
}

Document* Parser::Parse(const wchar_t* text, std::size_t length) {
  std::unique_ptr<DocumentTree> tree = parseTree(text, length);
  return tree ? new Document(std::move(tree)) : nullptr;
}

}  // namespace AdvXMLParser
