#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "host/common/encoding.h"
#include "host/xml/limits.h"
#include "host/xml/text_file.h"
#include "host/xml/tree_edit.h"
#include "host/xml/xml_name.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

constexpr std::size_t c_firstCapacity = 16384;
constexpr std::size_t c_longestPlainName = 64;
constexpr std::size_t c_markup = 8;  // more than the markup around a name or a value
constexpr std::size_t c_nameRoom = c_longestPlainName + c_markup;
// The number of characters that are escaped at a time. No character takes more bytes than "&quot;".
constexpr std::size_t c_piece = 128;
constexpr std::size_t c_pieceRoom = c_piece * 6 + c_markup;

constexpr unsigned int c_inText = 1;
constexpr unsigned int c_inValue = 2;

// Says where a character below 0x80 must be escaped.
constexpr std::array<unsigned char, 0x80> specialPlaces() {
  std::array<unsigned char, 0x80> places{};
  for (std::size_t c = 0; c < 0x20; ++c) places[c] = c_inText | c_inValue;
  places['\t'] = places['\n'] = places['"'] = c_inValue;
  places['>'] = c_inText;
  places['&'] = places['<'] = c_inText | c_inValue;
  return places;
}
constexpr std::array<unsigned char, 0x80> c_specialPlaces = specialPlaces();

const char* escapeOf(std::uint32_t character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\t':
      return "&#09;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return nullptr;
  }
}

char* writeSpecial(wchar_t character, char* out) {
  if (const char* const escape = escapeOf(static_cast<std::uint32_t>(character))) {
    return std::copy_n(escape, std::strlen(escape), out);
  }
  const wchar_t carried =
      host::isXmlCharacter(character) ? character : static_cast<wchar_t>(host::c_replacement);
  return host::writeUtf8(&carried, 1, out);
}

// The text so far, with free space after it. It grows in place if possible; a std::string never
// does.
class Buffer {
 public:
  Buffer() = default;
  ~Buffer() { std::free(m_data); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  const char* data() const { return m_data; }
  std::size_t size() const { return m_size; }

  // Returns space for the next `size` bytes.
  char* room(std::size_t size) {
    if (m_capacity - m_size < size) grow(size);
    return m_data + m_size;
  }
  void setEnd(const char* end) { m_size = static_cast<std::size_t>(end - m_data); }

 private:
  void grow(std::size_t size) {
    const std::size_t capacity = std::max({c_firstCapacity, 2 * m_capacity, m_size + size});
    char* const data = static_cast<char*>(std::realloc(m_data, capacity));
    if (!data) throw std::bad_alloc();
    m_data = data;
    m_capacity = capacity;
  }

  char* m_data = nullptr;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

// Returns the size in UTF-8 that a text has when it is read again.
std::size_t carriedSize(const wchar_t* text, std::size_t length) {
  // A control character that XML does not allow has one byte in UTF-8. It is written as U+FFFD,
  // which has three.
  const auto replaced = std::count_if(text, text + length, [](wchar_t c) {
    return static_cast<std::uint32_t>(c) < 0x80 && !host::isXmlCharacter(c);
  });
  return host::utf8Size(text, length) + 2 * static_cast<std::size_t>(replaced);
}

char* put(const char* text, std::size_t size, char* out) {
  std::memcpy(out, text, size);
  return out + size;
}

}  // namespace

struct DocumentWriter::State {
  // Writes a name to `out`, which must have space for a plain name and `more` bytes. Returns the
  // end, with space for `more` bytes after it.
  char* putName(const wchar_t* name, char* out, std::size_t more) {
    const std::size_t length = host::writePlainName(name, out, c_longestPlainName);
    if (length != 0) return out + length;
    const host::XmlName repaired(name);
    const std::size_t size = std::strlen(repaired.c_str());
    text.setEnd(out);
    return put(repaired.c_str(), size, text.room(size + more));
  }

  // Writes an escaped text to `out`, which must have space for c_pieceRoom bytes. Returns the end,
  // with space for c_markup bytes after it.
  char* putEscaped(const wchar_t* from, std::size_t length, unsigned int place, char* out) {
    for (;;) {
      const wchar_t* const end = from + std::min(c_piece, length);
      length -= static_cast<std::size_t>(end - from);
      for (; from != end; ++from) {
        const auto c = static_cast<std::uint32_t>(*from);
        if (c < c_specialPlaces.size() && (c_specialPlaces[c] & place) == 0) {
          *out++ = static_cast<char>(c);
        } else {
          out = writeSpecial(*from, out);
        }
      }
      if (length == 0) return out;
      text.setEnd(out);
      out = text.room(c_pieceRoom);
    }
  }

  char* endStartTag(char* out) {
    if (!isInStartTag) return out;
    *out++ = '>';
    leaveStartTag(out);
    return out;
  }

  void leaveStartTag(const char* end) {
    isInStartTag = false;
    const auto size = static_cast<std::size_t>(end - text.data()) - tagStart;
    require(size <= host::c_maxTokenBytes, host::c_tokenLimit);
  }

  // A parser counts the characters for which the escapes stand.
  void countText(const wchar_t* from, std::size_t length, std::size_t written) {
    textSize += written == length ? length : carriedSize(from, length);
    require(textSize <= host::c_maxTokenBytes, host::c_textLimit);
  }

  void require(bool isWithin, const char* what) {
    if (!isWithin && overLimit.empty()) overLimit = what;
  }

  struct OpenElement {
    const wchar_t* name;
    std::size_t children = 0;
  };

  Buffer text;
  std::vector<OpenElement> open;
  bool isInStartTag = false;  // of the innermost element
  std::size_t tagStart = 0;
  std::size_t attributes = 0;  // of the element opened last
  std::size_t textSize = 0;    // of the current text
  std::string overLimit;       // empty while the document is within the limits
};

DocumentWriter::DocumentWriter(const wchar_t* rootName) : m_state(std::make_unique<State>()) {
  constexpr char c_declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
  constexpr std::size_t c_size = sizeof c_declaration - 1;
  m_state->text.setEnd(put(c_declaration, c_size, m_state->text.room(c_size)));
  Open(rootName);
}

DocumentWriter::~DocumentWriter() = default;

void DocumentWriter::Open(const wchar_t* name) {
  State& state = *m_state;
  if (!state.open.empty()) {
    state.require(++state.open.back().children <= host::c_maxChildren, host::c_childrenLimit);
  }
  state.open.push_back({name});
  state.require(state.open.size() <= host::c_maxDepth, host::c_depthLimit);
  state.attributes = 0;
  state.textSize = 0;
  char* out = state.endStartTag(state.text.room(c_nameRoom));
  state.tagStart = static_cast<std::size_t>(out - state.text.data());
  *out++ = '<';
  state.text.setEnd(state.putName(name, out, 0));
  state.isInStartTag = true;
}

void DocumentWriter::AddAttribute(const wchar_t* name, const wchar_t* value, std::size_t length) {
  State& state = *m_state;
  state.require(++state.attributes <= host::c_maxAttributes, host::c_attributesLimit);
  char* out = state.text.room(c_nameRoom + c_pieceRoom);
  *out++ = ' ';
  out = put("=\"", 2, state.putName(name, out, c_pieceRoom));
  out = state.putEscaped(value, length, c_inValue, out);
  *out++ = '"';
  state.text.setEnd(out);
}

void DocumentWriter::AddText(const wchar_t* text, std::size_t length) {
  State& state = *m_state;
  char* const out = state.endStartTag(state.text.room(c_pieceRoom));
  const auto start = static_cast<std::size_t>(out - state.text.data());
  state.text.setEnd(state.putEscaped(text, length, c_inText, out));
  state.countText(text, length, state.text.size() - start);
}

// The name is converted again, because it is short and reading back what was just written is slow.
void DocumentWriter::Close() {
  State& state = *m_state;
  char* out = state.text.room(c_nameRoom);
  if (state.isInStartTag) {
    out = put("/>", 2, out);
    state.leaveStartTag(out);
  } else {
    out = state.putName(state.open.back().name, put("</", 2, out), 1);
    *out++ = '>';
  }
  state.textSize = 0;
  state.text.setEnd(out);
  state.open.pop_back();
}

void DocumentWriter::Finish() {
  while (!m_state->open.empty()) Close();
}

void DocumentWriter::Refuse(const char* what) { m_state->require(false, what); }

bool WriteDocumentToFile(const std::wstring& path, const DocumentWriter& document) {
  DocumentWriter::State& state = *document.m_state;
  state.require(state.text.size() <= host::c_maxDocumentBytes, host::c_bytesLimit);
  if (!state.overLimit.empty()) {
    throw ReadWriteException(
        ReadWriteException::LIMIT_EXCEEDED, 0,
        host::toUtf8(path) + ": the new list is over the limit: " + state.overLimit);
  }
  writeDocumentBytes(path, state.text.data(), state.text.size());
  return true;
}

}  // namespace AdvXMLParser
