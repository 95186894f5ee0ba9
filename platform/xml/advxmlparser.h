#ifndef PLATFORM_XML_ADVXMLPARSER_H
#define PLATFORM_XML_ADVXMLPARSER_H

#include <cstddef>
#include <exception>
#include <memory>
#include <string>

#include "platform/export.h"

// The agent's XML parser library. Text is wide (UTF-32). Names and values are compared exactly.
//
// A Document owns its tree. Node, Attribute, NodeContainer and Element are handles: small values
// that are copied freely and refer into the tree. A handle is valid as long as its Document lives
// and the node is in it. A null handle (IsNull) answers every question with nothing: empty text,
// null handles, empty ranges; changing it does nothing. One document is used by one thread at a
// time; different documents are independent. In the names of new elements and attributes, what an
// XML name cannot have becomes "_".
namespace AdvXMLParser {

// The encodings of a file.
enum UTF_ENCODINGS {
  UTF_16LE = 0,  // low byte first
  UTF_16BE = 1,  // high byte first
  UTF_32LE = 2,  // low byte first
  UTF_32BE = 3,  // high byte first
  UTF_8 = 4,     // with an XML declaration and without a byte order mark
};

// A text began as markup but is not well formed, or has a DOCTYPE, which no site list has.
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

// A file could not be read or written, its bytes are not valid in its encoding, or a document is
// over a limit. The error codes are negative and differ from every result code of the site list
// library.
class PLATFORM_API ReadWriteException : public std::exception {
 public:
  // What GetErrorCode answers.
  enum : int {
    READ_FAILED = -101,       // the file could not be read
    WRITE_FAILED = -102,      // the file could not be written
    INVALID_ENCODING = -103,  // the bytes are not valid in their encoding
    LIMIT_EXCEEDED = -104,    // the document is too large, too deep or too rich
  };

  // `systemError` is the errno of a failed system call, else 0. `line` and `column` count from 1
  // and are 0 where no place in a document is meant.
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

// How the bytes of a document were written, as found at their start.
struct WrittenIn {
  // Input: the encoding assumed when the bytes do not show one. Output: the encoding found.
  UTF_ENCODINGS encoding;
  bool hasMark = false;  // whether a byte order mark stood in front
};

// A function from raw narrow text to the narrow text to use in its place.
using TextCallback = std::string (*)(const std::string&);

// Reads a regular file whole and converts it to wide text. `encoding` is a hint for what cannot be
// told from the bytes; it receives the encoding found: UTF-8, UTF-16 or UTF-32 in either byte
// order, with or without a byte order mark (which is not part of the text). `callback`, when not
// null, sees the raw bytes before they are converted. Throws ReadWriteException (READ_FAILED,
// INVALID_ENCODING, LIMIT_EXCEEDED) or std::bad_alloc and then leaves both outputs as they were.
// Blocks on the file system; never waits on a pipe or a device. Any thread.
PLATFORM_API void ReadBufferFromFile(const std::wstring& path, std::wstring& text,
                                     UTF_ENCODINGS& encoding, TextCallback callback);

// The same with the text as UTF-8, for a document that is only parsed: wide text would take four
// times the memory.
PLATFORM_API void ReadUtf8FromFile(const std::wstring& path, std::string& utf8,
                                   WrittenIn& writtenIn);

// Creates or replaces the file with the text in the given encoding; the 16- and 32-bit forms get a
// byte order mark. Another process, and a process that starts after this one died at any moment,
// sees the old file or the new one, never a mixture; the old file's mode and owner are kept, a new
// file is readable and writable by its owner and readable by its group. `before` sees the text as
// UTF-8 before it is encoded, `after` the encoded bytes; null means no change. Returns true. Throws
// ReadWriteException (WRITE_FAILED) or std::bad_alloc and then leaves the old file as it was, with
// no temporary file behind. Any thread.
PLATFORM_API bool WriteBufferToFile(const std::wstring& path, const std::wstring& text,
                                    UTF_ENCODINGS encoding, TextCallback before,
                                    TextCallback after);

// The conversion of ReadBufferFromFile on bytes in memory. True when they were converted; false
// when they are not valid in the encoding found, and then both outputs are as they were. `data` may
// be null when `length` is 0. Throws std::bad_alloc, and ReadWriteException (LIMIT_EXCEEDED).
PLATFORM_API bool ConvertBufferToUnicode(const unsigned char* data, std::size_t length,
                                         std::wstring& text, UTF_ENCODINGS& encoding);

// The same with the text as UTF-8, as in ReadUtf8FromFile.
PLATFORM_API bool ConvertBufferToUtf8(const unsigned char* data, std::size_t length,
                                      std::string& utf8, WrittenIn& writtenIn);

class AttributeRange;
class ElementRange;
class Document;

// What attributes and elements have in common: a name and a value.
class PLATFORM_API Node {
 public:
  bool IsNull() const { return m_handle == nullptr; }  // whether it refers to nothing

 protected:
  Node() = default;                                  // a null handle
  explicit Node(void* handle) : m_handle(handle) {}  // one on a node of a tree

  void* m_handle = nullptr;  // the node, as the library that owns the tree knows it
};

// A handle on an attribute.
class PLATFORM_API Attribute : public Node {
 public:
  Attribute() = default;  // a null handle

  std::wstring GetName() const;             // may throw std::bad_alloc
  bool HasName(const wchar_t* name) const;  // false for a null handle
  std::wstring GetValue() const;            // may throw std::bad_alloc
  bool IsEmpty() const;                     // no attribute, or an empty value
  // The value as UTF-8, for reading numbers. Points into the tree; never null.
  const char* GetNarrowValue() const;
  // Writes the value and a terminator when they fit into `capacity` characters and returns true;
  // otherwise `dest` holds unspecified text and the result is false.
  bool CopyValue(wchar_t* dest, std::size_t capacity) const;

  // Characters that XML cannot carry are stored as U+FFFD. May throw std::bad_alloc.
  void SetValue(const std::wstring& value);

 private:
  friend class Element;
  friend class AttributeRange;
  explicit Attribute(void* handle) : Node(handle) {}
};

// A node that holds other nodes. Its value is the text directly inside it, CDATA sections included,
// without the text of its child elements.
class PLATFORM_API NodeContainer : public Node {
 public:
  std::wstring GetName() const;             // may throw std::bad_alloc
  bool HasName(const wchar_t* name) const;  // false for a null handle
  // The position of the name among `count` others; `count` when it is not there.
  std::size_t FindName(const wchar_t* const* names, std::size_t count) const;

  std::wstring GetValue() const;  // may throw std::bad_alloc
  // The value as UTF-8, for reading numbers. Replaces what `value` held.
  void GetNarrowValue(std::string& value) const;
  // As Attribute::CopyValue.
  bool CopyValue(wchar_t* dest, std::size_t capacity) const;

  // Adds text behind what the node holds. Characters that XML cannot carry become U+FFFD. May throw
  // std::bad_alloc.
  void AddText(const std::wstring& text);

 protected:
  NodeContainer() = default;                              // a null handle
  explicit NodeContainer(void* handle) : Node(handle) {}  // one on a node of a tree
};

// A handle on an element.
class PLATFORM_API Element : public NodeContainer {
 public:
  Element() = default;  // a null handle

  // The attribute of that name; a null handle when there is none.
  Attribute GetAttribute(const wchar_t* name) const;
  // Puts each attribute whose name is among `count` given ones into the same place of `found`; the
  // other places stay as they are.
  void FindAttributes(const wchar_t* const* names, std::size_t count, Attribute* found) const;
  // The attributes in document order.
  AttributeRange Attributes() const;

  // The first child element of that name; a null handle when there is none.
  Element GetElement(const wchar_t* name) const;
  // The child elements in document order.
  ElementRange Elements() const;

  // Adds an attribute behind the others; one of that name keeps its place and loses its value. May
  // throw std::bad_alloc.
  Attribute CreateAttribute(const wchar_t* name);
  // Adds a new element as the last child of this one. May throw std::bad_alloc.
  Element AddElementInto(const std::wstring& name);
  // Adds a new element at the end of this one's parent, behind all its siblings. On the root, and
  // on a null handle, it does nothing and returns a null handle. May throw std::bad_alloc.
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
  // Stands on one attribute, or behind the last.
  class PLATFORM_API iterator {
   public:
    explicit iterator(void* handle) : m_handle(handle) {}        // made by begin and end
    Attribute operator*() const { return Attribute(m_handle); }  // that attribute
    iterator& operator++();                                      // goes to the next
    // Whether the two stand in different places.
    bool operator!=(const iterator& other) const { return m_handle != other.m_handle; }

   private:
    void* m_handle;
  };

  explicit AttributeRange(void* first) : m_first(first) {}  // made by Element alone
  iterator begin() const { return iterator(m_first); }      // on the first attribute
  iterator end() const { return iterator(nullptr); }        // behind the last attribute

 private:
  void* m_first;
};

// The child elements of an element: `for (Element child : element.Elements())`. Valid as long as
// the element is not changed.
class PLATFORM_API ElementRange {
 public:
  // Stands on one element, or behind the last.
  class PLATFORM_API iterator {
   public:
    explicit iterator(void* handle) : m_handle(handle) {}    // made by begin and end
    Element operator*() const { return Element(m_handle); }  // that element
    iterator& operator++();                                  // goes to the next
    // Whether the two stand in different places.
    bool operator!=(const iterator& other) const { return m_handle != other.m_handle; }

   private:
    void* m_handle;
  };

  explicit ElementRange(void* first) : m_first(first) {}  // made by Element alone
  iterator begin() const { return iterator(m_first); }    // on the first element
  iterator end() const { return iterator(nullptr); }      // behind the last element

 private:
  void* m_first;
};

struct DocumentTree;

// Owns a document.
class PLATFORM_API Document {
 public:
  // A new document with an XML declaration and this root. May throw std::bad_alloc.
  explicit Document(const std::wstring& rootName);
  virtual ~Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // The root element; valid as long as the document.
  Element GetRoot() const;

  // The whole document as text. `indent` puts each element on a line of its own; without it nothing
  // is added. May throw std::bad_alloc.
  std::wstring GenerateXML(bool indent) const;

 private:
  friend class Parser;
  explicit Document(std::unique_ptr<DocumentTree> tree);

  std::unique_ptr<DocumentTree> m_tree;
};

// Writes a new document straight to text, element by element, where a tree would only be made to be
// turned into text once. The text is that of a Document with the same content, without indentation,
// in UTF-8. One object is used by one thread at a time. Adding may throw std::bad_alloc; the text
// is then of no use.
class PLATFORM_API DocumentWriter {
 public:
  // Begins with an XML declaration and this root, which is open. Names of elements are not copied:
  // each stays as it is until its element is closed.
  explicit DocumentWriter(const wchar_t* rootName);
  ~DocumentWriter();
  DocumentWriter(const DocumentWriter&) = delete;
  DocumentWriter& operator=(const DocumentWriter&) = delete;

  // Opens a new element at the end of the one that is open.
  void Open(const wchar_t* name);
  // Adds an attribute to the element that was opened last, before anything is put into it. It has
  // no other of that name.
  void AddAttribute(const wchar_t* name, const wchar_t* value, std::size_t length);
  // Adds text at the end of the open element.
  void AddText(const wchar_t* text, std::size_t length);
  // Closes the open element; the one around it is open then.
  void Close();
  // Closes all that is open. Nothing may be added afterwards.
  void Finish();
  // Marks the document as one that no reader accepts, because it is over the limit `what`.
  // WriteDocumentToFile then refuses it. The writer does so itself for the limits of the parser.
  void Refuse(const char* what);

 private:
  friend PLATFORM_API bool WriteDocumentToFile(const std::wstring& path,
                                               const DocumentWriter& document);
  struct State;
  std::unique_ptr<State> m_state;
};

// As WriteBufferToFile, with a finished document, as UTF-8. Also throws ReadWriteException
// (LIMIT_EXCEEDED) when no reader would accept the document, and then leaves the old file as it
// was.
PLATFORM_API bool WriteDocumentToFile(const std::wstring& path, const DocumentWriter& document);

// Makes documents of text. It has no state.
class PLATFORM_API Parser {
 public:
  // Parses `length` characters. The caller owns the result. Null when the text holds no markup at
  // all: it is empty, or its first character that is not white space is not "<". Throws
  // ParsingException when the text is not well formed, ReadWriteException (LIMIT_EXCEEDED) when the
  // document is over a limit, or std::bad_alloc. Never opens a file or a connection, whatever the
  // document says. Any thread.
  Document* Parse(const wchar_t* text, std::size_t length);
  // The same for `length` bytes of UTF-8; bytes that are not UTF-8 are not well formed. With
  // `writtenIn`, a document that declares an encoding in which its bytes cannot have been written
  // is not well formed either.
  Document* ParseUtf8(const char* utf8, std::size_t length, const WrittenIn* writtenIn = nullptr);
};

}  // namespace AdvXMLParser

#endif
