#ifndef PLATFORM_XML_ADVXMLPARSER_H
#define PLATFORM_XML_ADVXMLPARSER_H

#include <cstddef>
#include <exception>
#include <memory>
#include <string>

#include "platform/export.h"

class AnXml;

// The agent's XML parser library. Text is wide (UTF-32). Names and values are compared exactly.
//
// A Document owns its tree. Node, Attribute, NodeContainer and Element are handles: small values
// that refer into the tree and may be copied. A handle is valid while its Document exists and the
// node is in it. A query on a null handle (IsNull) returns an empty text, a null handle or an empty
// range. A change of a null handle has no effect. One document must not be used by two threads at
// the same time. Different documents are independent. A character that an XML name must not have
// becomes "_" in the name of a new element or attribute.
namespace AdvXMLParser {

// The encodings of a file.
enum UTF_ENCODINGS {
  UTF_16LE = 0,  // low byte first
  UTF_16BE = 1,  // high byte first
  UTF_32LE = 2,  // low byte first
  UTF_32BE = 3,  // high byte first
  UTF_8 = 4,     // written without a byte order mark
};

// Thrown for a text that begins as markup but is not well formed, or has a DOCTYPE. No site list
// has a DOCTYPE.
class PLATFORM_API ParsingException : public std::exception {
 public:
  // `line` and `column` count from 1.
  ParsingException(unsigned long line, unsigned long column, std::string reason);
  ParsingException(const ParsingException&);  // may throw std::bad_alloc
  ~ParsingException() override;

  unsigned long GetLine() const { return m_line; }           // of the fault, from 1
  unsigned long GetColumn() const { return m_column; }       // of the fault, from 1
  const std::string& GetReason() const { return m_reason; }  // without the place
  // The reason and the place; valid as long as the exception.
  const char* what() const noexcept override { return m_what.c_str(); }

 private:
  unsigned long m_line;
  unsigned long m_column;
  std::string m_reason;
  std::string m_what;
};

// Thrown if a file could not be read or written, or if its bytes are not valid in its encoding.
// Also thrown if a document is over a limit. The error codes are negative and differ from every
// result code of the site list library.
class PLATFORM_API ReadWriteException : public std::exception {
 public:
  // The results of GetErrorCode.
  enum : int {
    READ_FAILED = -101,       // the file could not be read
    WRITE_FAILED = -102,      // the file could not be written
    INVALID_ENCODING = -103,  // the bytes are not valid in their encoding
    LIMIT_EXCEEDED = -104,    // the document is over a limit, for example of size or depth
  };

  // `systemError` is the errno of a failed system call, else 0. `line` and `column` count from 1;
  // they are 0 if the error has no place in a document.
  ReadWriteException(int errorCode, int systemError, std::string reason, unsigned long line = 0,
                     unsigned long column = 0);
  ReadWriteException(const ReadWriteException&);  // may throw std::bad_alloc
  ~ReadWriteException() override;

  int GetErrorCode() const { return m_errorCode; }      // one of the codes above
  int GetSystemError() const { return m_systemError; }  // an errno, or 0
  unsigned long GetLine() const { return m_line; }      // from 1, or 0
  unsigned long GetColumn() const { return m_column; }  // from 1, or 0
  // The reason; valid as long as the exception.
  const char* what() const noexcept override { return m_reason.c_str(); }

 private:
  int m_errorCode;
  int m_systemError;
  unsigned long m_line;
  unsigned long m_column;
  std::string m_reason;
};

// The encoding of a document, as found at the start of its bytes.
struct WrittenIn {
  // Input: the encoding to assume if it cannot be detected. Output: the encoding found.
  UTF_ENCODINGS encoding;
  bool hasMark = false;  // whether there was a byte order mark
};

// A function that receives narrow text and returns the text to use instead.
using TextCallback = std::string (*)(const std::string&);

// Reads a whole regular file and converts it to wide text, without the byte order mark. The file
// may be UTF-8, UTF-16 or UTF-32 in either byte order. `encoding` is the encoding to assume if it
// cannot be detected; it receives the encoding found. `callback`, when not null, receives the raw
// bytes before they are converted. Throws ReadWriteException (READ_FAILED,
// INVALID_ENCODING, LIMIT_EXCEEDED) or std::bad_alloc and then leaves both outputs unchanged.
// Blocks on the file system; never waits on a pipe or a device. Any thread.
PLATFORM_API void ReadBufferFromFile(const std::wstring& path, std::wstring& text,
                                     UTF_ENCODINGS& encoding, TextCallback callback);

// Does the same with the text as UTF-8, for a document that is only parsed. Wide text would take up
// to four times the memory.
PLATFORM_API void ReadUtf8FromFile(const std::wstring& path, std::string& utf8,
                                   WrittenIn& writtenIn);

// Creates or atomically replaces the file with the text in the given encoding. UTF-16 and UTF-32
// get a byte order mark. The mode and owner of an old file are kept. A new file is readable and
// writable by its owner and readable by its group. `before` receives the text as UTF-8 before it is
// encoded, and `after` receives the encoded bytes; null means no change. Returns true. Throws
// ReadWriteException (WRITE_FAILED, or INVALID_ENCODING if `before` returns bytes that are not
// UTF-8) or std::bad_alloc. The old file is then unchanged, as with AFile::write, and no temporary
// file remains. Any thread.
PLATFORM_API bool WriteBufferToFile(const std::wstring& path, const std::wstring& text,
                                    UTF_ENCODINGS encoding, TextCallback before,
                                    TextCallback after);

// Converts bytes in memory as ReadBufferFromFile does. Returns false and leaves both outputs
// unchanged when the bytes are not valid in the encoding found. `data` may be null when `length` is
// 0. Throws std::bad_alloc or ReadWriteException (LIMIT_EXCEEDED).
PLATFORM_API bool ConvertBufferToUnicode(const unsigned char* data, std::size_t length,
                                         std::wstring& text, UTF_ENCODINGS& encoding);

// Does the same with the text as UTF-8.
PLATFORM_API bool ConvertBufferToUtf8(const unsigned char* data, std::size_t length,
                                      std::string& utf8, WrittenIn& writtenIn);

class AttributeRange;
class ElementRange;
class Document;

// The common base of the handles on attributes and elements.
class PLATFORM_API Node {
 public:
  bool IsNull() const { return m_handle == nullptr; }  // whether the handle refers to nothing

 protected:
  Node() = default;                                  // a null handle
  explicit Node(void* handle) : m_handle(handle) {}  // a handle on this node

  void* m_handle = nullptr;  // the node, in the form of the library that owns the tree
};

// A handle on an attribute.
class PLATFORM_API Attribute : public Node {
 public:
  Attribute() = default;  // a null handle

  std::wstring GetName() const;             // may throw std::bad_alloc
  bool HasName(const wchar_t* name) const;  // false for a null handle
  std::wstring GetValue() const;            // may throw std::bad_alloc
  // Returns the value as UTF-8, for reading numbers. The pointer refers into the tree; never null.
  const char* GetNarrowValue() const;
  // Writes the value and a terminator if they fit into `capacity` characters, and returns true.
  // Otherwise returns false, and the content of `dest` is unspecified.
  bool CopyValue(wchar_t* dest, std::size_t capacity) const;

  // Sets the value. A character that XML does not allow becomes U+FFFD. May throw std::bad_alloc.
  void SetValue(const std::wstring& value);

 private:
  friend class Element;
  friend class AttributeRange;
  explicit Attribute(void* handle) : Node(handle) {}
};

// A node that contains other nodes. Its value is the text directly in it, including CDATA sections
// but not the text of its child elements.
class PLATFORM_API NodeContainer : public Node {
 public:
  std::wstring GetName() const;             // may throw std::bad_alloc
  bool HasName(const wchar_t* name) const;  // false for a null handle
  // Returns the index of the node's name in the `count` names of `names`, or `count` if it is not
  // among them.
  std::size_t FindName(const wchar_t* const* names, std::size_t count) const;

  std::wstring GetValue() const;  // may throw std::bad_alloc
  // Replaces `value` with the value as UTF-8, for reading numbers.
  void GetNarrowValue(std::string& value) const;
  // As Attribute::CopyValue.
  bool CopyValue(wchar_t* dest, std::size_t capacity) const;

  // Adds text after the content of the node. A character that XML does not allow becomes U+FFFD.
  // May throw std::bad_alloc.
  void AddText(const std::wstring& text);

 protected:
  NodeContainer() = default;                              // a null handle
  explicit NodeContainer(void* handle) : Node(handle) {}  // a handle on this node
};

// A handle on an element.
class PLATFORM_API Element : public NodeContainer {
 public:
  Element() = default;  // a null handle

  // Returns the attribute with that name, or a null handle.
  Attribute GetAttribute(const wchar_t* name) const;
  // Finds several attributes at once. If the element has the attribute `names[i]`, sets `found[i]`
  // to it; otherwise leaves `found[i]` unchanged. Both arrays have `count` entries.
  void FindAttributes(const wchar_t* const* names, std::size_t count, Attribute* found) const;
  // Returns the attributes in document order.
  AttributeRange Attributes() const;

  // Returns the first child element with that name, or a null handle.
  Element GetElement(const wchar_t* name) const;
  // Returns the child elements in document order.
  ElementRange Elements() const;

  // Adds an attribute after the others, with an empty value. An existing attribute of that name
  // keeps its place, and its value becomes empty. May throw std::bad_alloc.
  Attribute CreateAttribute(const wchar_t* name);
  // Adds a new element as the last child of this one. May throw std::bad_alloc.
  Element AddElementInto(const std::wstring& name);
  // Adds a new element as the last child of this one's parent. On the root and on a null handle it
  // does nothing and returns a null handle. May throw std::bad_alloc.
  Element AppendElement(const std::wstring& name);

 private:
  friend class Document;
  friend class ElementRange;
  explicit Element(void* handle) : NodeContainer(handle) {}
};

// The attributes of an element: `for (Attribute a : element.Attributes())`. Valid as long as the
// element is not changed.
class PLATFORM_API AttributeRange {
 public:
  // Refers to one attribute, or to the end.
  class PLATFORM_API iterator {
   public:
    explicit iterator(void* handle) : m_handle(handle) {}        // for begin and end
    Attribute operator*() const { return Attribute(m_handle); }  // the attribute
    iterator& operator++();                                      // moves to the next one
    // Whether they refer to different attributes.
    bool operator!=(const iterator& other) const { return m_handle != other.m_handle; }

   private:
    void* m_handle;
  };

  explicit AttributeRange(void* first) : m_first(first) {}  // for Element only
  iterator begin() const { return iterator(m_first); }      // the first attribute
  iterator end() const { return iterator(nullptr); }        // the end

 private:
  void* m_first;
};

// The child elements of an element: `for (Element child : element.Elements())`. Valid as long as
// the element is not changed.
class PLATFORM_API ElementRange {
 public:
  // Refers to one element, or to the end.
  class PLATFORM_API iterator {
   public:
    explicit iterator(void* handle) : m_handle(handle) {}    // for begin and end
    Element operator*() const { return Element(m_handle); }  // the element
    iterator& operator++();                                  // moves to the next one
    // Whether they refer to different elements.
    bool operator!=(const iterator& other) const { return m_handle != other.m_handle; }

   private:
    void* m_handle;
  };

  explicit ElementRange(void* first) : m_first(first) {}  // for Element only
  iterator begin() const { return iterator(m_first); }    // the first element
  iterator end() const { return iterator(nullptr); }      // the end

 private:
  void* m_first;
};

struct DocumentTree;

// Owns a document.
class PLATFORM_API Document {
 public:
  // Creates a document with an XML declaration and this root. May throw std::bad_alloc.
  explicit Document(const std::wstring& rootName);
  virtual ~Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Returns the root element, which is valid while the document exists.
  Element GetRoot() const;

  // Returns the whole document as text. If `indent` is set, each element is on a line of its own;
  // otherwise no white space is added. May throw std::bad_alloc.
  std::wstring GenerateXML(bool indent) const;

 private:
  friend class ::AnXml;
  friend class Parser;
  explicit Document(std::shared_ptr<DocumentTree> tree);

  std::shared_ptr<DocumentTree> m_tree;
};

// Writes a new document as text, element by element and without a tree. The text is the same as
// that of a Document with this content, in UTF-8 and without indentation. One object must not be
// used by two threads at the same time. Adding may throw std::bad_alloc. After that
// exception the object must not be used.
class PLATFORM_API DocumentWriter {
 public:
  // Begins with an XML declaration and opens this root. The name of an element is not copied: the
  // caller must keep it unchanged until the element is closed.
  explicit DocumentWriter(const wchar_t* rootName);
  ~DocumentWriter();
  DocumentWriter(const DocumentWriter&) = delete;
  DocumentWriter& operator=(const DocumentWriter&) = delete;

  // Opens a new element as the last child of the open element.
  void Open(const wchar_t* name);
  // Adds an attribute to the element that was opened last. The element must have no content yet,
  // and no attribute of that name.
  void AddAttribute(const wchar_t* name, const wchar_t* value, std::size_t length);
  // Adds text at the end of the open element.
  void AddText(const wchar_t* text, std::size_t length);
  // Closes the open element. Its parent is then the open element.
  void Close();
  // Closes all open elements. Nothing may be added afterwards.
  void Finish();
  // Marks the document as over the limit `what`. WriteDocumentToFile then refuses it. The writer
  // itself marks a document that is over a limit of the parser.
  void Refuse(const char* what);

 private:
  friend PLATFORM_API bool WriteDocumentToFile(const std::wstring& path,
                                               const DocumentWriter& document);
  struct State;
  std::unique_ptr<State> m_state;
};

// Writes a finished document as UTF-8, as WriteBufferToFile does. Also throws ReadWriteException
// (LIMIT_EXCEEDED) when the document is over a limit, and then leaves the old file unchanged.
PLATFORM_API bool WriteDocumentToFile(const std::wstring& path, const DocumentWriter& document);

// Parses text into documents. It has no state.
class PLATFORM_API Parser {
 public:
  // Parses `length` characters. The caller owns the result. Returns null when the text is not
  // markup: it has only white space, or its first other character is not "<". Throws
  // ParsingException when the text is not well formed, ReadWriteException (LIMIT_EXCEEDED) when the
  // document is over a limit, or std::bad_alloc. Never opens a file or a connection, whatever the
  // document contains. Any thread.
  Document* Parse(const wchar_t* text, std::size_t length);
  // Does the same for `length` bytes of UTF-8. Bytes that are not UTF-8 are not well formed. If
  // `writtenIn` is given, a document whose declared encoding contradicts it is not well formed
  // either.
  Document* ParseUtf8(const char* utf8, std::size_t length, const WrittenIn* writtenIn = nullptr);
};

}  // namespace AdvXMLParser

#endif
