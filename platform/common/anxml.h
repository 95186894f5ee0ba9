#ifndef PLATFORM_COMMON_ANXML_H
#define PLATFORM_COMMON_ANXML_H

#include <cstddef>
#include <memory>
#include <string>

#include "platform/common/astring.h"
#include "platform/export.h"

namespace AdvXMLParser {
class Document;
struct DocumentTree;
struct WrittenIn;
}  // namespace AdvXMLParser

// Documents that are edited node by node. All elements, attributes, comments, processing
// instructions, CDATA sections and text that an edit does not touch are unchanged. The encoding,
// line ends, quotes and the white space between attributes may change when the document is written.
//
// Names and values are compared exactly. A null or empty name means that no name is given. A null
// value is an empty text. A character that XML does not allow is stored as U+FFFD, or as "_" in a
// name. An operation that adds to a document may throw std::bad_alloc; nothing else is thrown. One
// document must not be used by two threads at the same time.

// Owns one document. A new object has none.
class PLATFORM_API AnXml {
 public:
  AnXml();
  ~AnXml();
  AnXml(const AnXml&) = delete;
  AnXml& operator=(const AnXml&) = delete;

  // Reads a file. Its root element must have the name `rootName` and, if `namespaceAttribute` is
  // given, that attribute with the value `namespaceValue`. Returns false if the file cannot be
  // read, is not valid in its encoding, or is not well formed. Also returns false if it is over a
  // limit or has another root. The object then keeps its old document. One error line gives the
  // reason, unless the file is missing, has no markup, or has another root. Blocks on the file
  // system. May throw std::bad_alloc.
  bool useExistingFile(const AString& path, const wchar_t* rootName,
                       const wchar_t* namespaceAttribute, const wchar_t* namespaceValue);

  // Does the same as useExistingFile for a text that AdvXMLParser::ReadUtf8FromFile has read from
  // `path`. Does not block.
  bool useText(const AString& path, const std::string& utf8,
               const AdvXMLParser::WrittenIn& writtenIn, const wchar_t* rootName,
               const wchar_t* namespaceAttribute, const wchar_t* namespaceValue);

  // Returns a document with the same tree, so that the text need not be parsed again. An edit of
  // one changes both. The caller owns the result. Returns null when there is no document. May throw
  // std::bad_alloc.
  AdvXMLParser::Document* newDocument() const;

  // Creates or atomically replaces the file with the document as UTF-8, with an XML declaration and
  // without a byte order mark. The mode and owner of an old file are kept. A new file is readable
  // and writable by its owner and readable by its group. Both flags are reserved and must be false.
  // Blocks on the file system.
  //
  // Returns false when there is no document, when the document is over a limit of the readers, or
  // when the file could not be written. The last two are logged as errors. The old file is then
  // unchanged, as with AFile::write.
  bool writeFile(const AString& path, bool reserved1, bool reserved2) const;

 private:
  friend class AnXmlNode;

  std::shared_ptr<AdvXMLParser::DocumentTree> m_tree;
};

// A handle on one element: a small value that may be copied. It is valid while its AnXml exists
// with the same document and the element is in that document. A query on a null handle returns
// false or empty text. A change of a null handle has no effect.
class PLATFORM_API AnXmlNode {
 public:
  AnXmlNode() = default;
  // The root element; a null handle when there is no document.
  explicit AnXmlNode(AnXml* document);

  // Whether the handle refers to nothing.
  bool isNull() const { return m_handle == nullptr; }

  // Finds the first child element that meets both conditions: its name is `name`, and its
  // `keyAttribute` has the value `keyValue`. A condition whose name is not given is always met. If
  // a child is found, sets `out` to it and returns true. If `otherAttribute` is given and
  // `otherValue` is not null, `otherValue` receives the value of that attribute, or an empty text
  // if there is none. Returns false and leaves both outputs unchanged when no child is found. `out`
  // may be this object.
  bool tryGetChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                   const wchar_t* keyValue, const wchar_t* otherAttribute,
                   AString* otherValue) const;

  // Does exactly the same as tryGetChild. Callers use it for a child that every valid document has.
  bool getExistingChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                        const wchar_t* keyValue, const wchar_t* otherAttribute,
                        AString* otherValue) const;

  // Does the same as tryGetChild, and this handle receives the child.
  bool tryGetChildMove(const wchar_t* name, const wchar_t* keyAttribute, const wchar_t* keyValue,
                       const wchar_t* otherAttribute, AString* otherValue);

  // Reads an attribute or, if no name is given, the text directly in the element, including CDATA
  // sections. Returns false and leaves `value` unchanged when the attribute does not exist or the
  // handle is null.
  bool tryGetValue(const wchar_t* name, AString& value) const;

  // Sets an attribute. An existing one keeps its place; a new one is added after the others. If no
  // name is given, sets the text of the element and places it before the child nodes.
  void setValue(const wchar_t* name, const AString& value);

  // Returns the name of the element. May throw std::bad_alloc.
  AString getName() const;

  // Finds a child as tryGetChild does. If there is none, adds one with that name and key as the
  // last child. If `otherAttribute` is given, sets that attribute of the child to `otherValue`.
  // Sets `out` to the child. Returns false and leaves `out` unchanged only for a null handle, or
  // when a child must be added but no name is given. `out` may be this object.
  bool setChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                const wchar_t* keyValue, const wchar_t* otherAttribute, const wchar_t* otherValue);

  // Adds an element as the last child, with `attribute` if it is given, and sets `out` to it.
  // Returns false and leaves `out` unchanged only for a null handle or when no name is given. `out`
  // may be this object.
  bool addChild(AnXmlNode& out, const wchar_t* name, const wchar_t* attribute,
                const wchar_t* value);

  // Removes the element and its content from the document. This handle is null afterwards. Other
  // handles on the element or its content become invalid. Does nothing on the root.
  void remove();

  // Adds a copy of `node` and its content as the last child. `node` may be in another document.
  void copyAsChild(const AnXmlNode& node);

 private:
  friend class AnXmlChildIndex;
  friend class AnXmlValueIndex;
  static AnXmlNode at(void* handle);

  void* m_handle = nullptr;
};

// Walks the child elements of a node in document order: all of them, or those with one name. The
// walk starts before the first child. The document may be changed during the walk, but only the
// current child may be removed, and only by this object. A child that is added during the walk may
// or may not be visited.
class PLATFORM_API AnXmlChildIndex {
 public:
  // Starts a walk over the children with this name, or over all children if no name is given.
  AnXmlChildIndex(const AnXmlNode& node, const wchar_t* name);

  // Moves to the next child. Returns false and leaves `child` unchanged when there is none.
  bool moveNext(AnXmlNode& child);

  // Removes the current child from the document. Every handle on it or its content becomes invalid.
  // Does nothing when there is no current child.
  void remove();

 private:
  std::wstring m_name;
  void* m_next;
  void* m_current = nullptr;
};

// Walks the attributes of an element in document order. The element may be changed during the walk.
class PLATFORM_API AnXmlValueIndex {
 public:
  // Starts a walk before the first attribute.
  explicit AnXmlValueIndex(const AnXmlNode& node);

  // Moves to the next attribute. Returns false and leaves both outputs unchanged when there is
  // none.
  bool moveNext(AString& name, AString& value);

 private:
  void* m_next;
};

#endif
