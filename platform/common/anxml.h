#ifndef PLATFORM_COMMON_ANXML_H
#define PLATFORM_COMMON_ANXML_H

#include <cstddef>
#include <memory>
#include <string>

#include "platform/common/astring.h"
#include "platform/export.h"

namespace AdvXMLParser {
struct DocumentTree;
struct WrittenIn;
}  // namespace AdvXMLParser

// Documents that are edited node by node. Whatever an edit does not touch stays as it was: unknown
// elements and attributes, comments, processing instructions, CDATA sections, white space.
//
// Names and values are compared exactly. A name that is null or empty is not given; the value that
// belongs to a name that is given counts as empty when it is null. Characters that XML cannot carry
// are stored as U+FFFD, in names as "_". Everything that adds to a document may throw
// std::bad_alloc; nothing else is thrown. One document is used by one thread at a time.

// Owns one document; holds none until a file was opened.
class PLATFORM_API AnXml {
 public:
  AnXml();
  ~AnXml();
  AnXml(const AnXml&) = delete;
  AnXml& operator=(const AnXml&) = delete;

  // Reads a file whose root element has this name and, when `namespaceAttribute` is given, an
  // attribute of that name with the value `namespaceValue`. False when the file cannot be read, is
  // not valid in its encoding, is not well formed, is over a limit, or has another root; the object
  // then holds what it held before. Blocks on the file system. May throw std::bad_alloc.
  bool useExistingFile(const AString& path, const wchar_t* rootName,
                       const wchar_t* namespaceAttribute, const wchar_t* namespaceValue);

  // As useExistingFile, for a text that AdvXMLParser::ReadUtf8FromFile has read. Does not block.
  bool useText(const std::string& utf8, const AdvXMLParser::WrittenIn& writtenIn,
               const wchar_t* rootName, const wchar_t* namespaceAttribute,
               const wchar_t* namespaceValue);

  // Creates or replaces the file with the document as UTF-8, with an XML declaration and without a
  // byte order mark. Another process, and a process that starts after this one died at any moment,
  // sees the old file or the new one, never a mixture; the old file's mode and owner are kept, a
  // new file is readable and writable by its owner and readable by its group. Both flags are
  // reserved: nothing is written unless they are false. False when there is no document, when no
  // reader would accept it because it is over a limit, or when the file could not be written (both
  // logged as an error); the old file is then as it was. Blocks on the file system.
  bool writeFile(const AString& path, bool reserved1, bool reserved2) const;

 private:
  friend class AnXmlNode;

  std::unique_ptr<AdvXMLParser::DocumentTree> m_tree;
};

// A handle on one element: a small value that is copied freely. It is valid as long as its AnXml
// lives and holds the same document, and the element is in it. A null handle answers every question
// with false or empty text, and changing it does nothing.
class PLATFORM_API AnXmlNode {
 public:
  AnXmlNode() = default;
  // The root element; a null handle when there is no document.
  explicit AnXmlNode(AnXml* document);

  // Whether it refers to nothing.
  bool isNull() const { return m_handle == nullptr; }

  // Finds the first child element with that name (any name when none is given) whose `keyAttribute`
  // exists and has the value `keyValue` (any child of that name when no key is given). True when
  // there is one: `out` is then a handle on it, and `otherValue`, when both it and `otherAttribute`
  // are given, has received the value of that attribute, empty when there is none. False leaves
  // both outputs as they were. `out` may be this object.
  bool tryGetChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                   const wchar_t* keyValue, const wchar_t* otherAttribute,
                   AString* otherValue) const;

  // The same for a child that the document must have.
  bool getExistingChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                        const wchar_t* keyValue, const wchar_t* otherAttribute,
                        AString* otherValue) const;

  // The same, and the child goes to this handle.
  bool tryGetChildMove(const wchar_t* name, const wchar_t* keyAttribute, const wchar_t* keyValue,
                       const wchar_t* otherAttribute, AString* otherValue);

  // Reads an attribute; without a name the text directly in the element, CDATA sections
  // included. True when the attribute exists, and always for the text; false leaves `value` as it
  // was.
  bool tryGetValue(const wchar_t* name, AString& value) const;

  // Sets an attribute, which keeps its place or is added behind the others; without a
  // name the text of the element, which then stands before its child nodes.
  void setValue(const wchar_t* name, const AString& value);

  // The name of the element. May throw std::bad_alloc.
  AString getName() const;

  // Finds a child as tryGetChild does, or adds one with that name and key behind the children of
  // this element. Then sets `otherAttribute` of it when one is given. False, with `out` as it was,
  // only for a null handle and when there is no name to add a child with. `out` may be this object.
  bool setChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                const wchar_t* keyValue, const wchar_t* otherAttribute, const wchar_t* otherValue);

  // Adds a child element behind the children of this one, with an attribute when one is given.
  // False, with `out` as it was, only for a null handle and without a name. `out` may be this
  // object.
  bool addChild(AnXmlNode& out, const wchar_t* name, const wchar_t* attribute,
                const wchar_t* value);

  // Takes the element with all it holds out of the document; this handle is null afterwards, and
  // every other one on it or below it is no longer valid. The root stays.
  void remove();

  // Adds a copy of `node` with all it holds, of this or another document, behind the children of
  // this element.
  void copyAsChild(const AnXmlNode& node);

 private:
  friend class AnXmlChildIndex;
  friend class AnXmlValueIndex;
  static AnXmlNode at(void* handle);

  void* m_handle = nullptr;
};

// Walks the child elements of a node in document order, all of them or those with one name. It
// stands before the first child until moveNext is called. The document may be changed meanwhile,
// but of the children only the current one may be removed, and only by this object. Whether a child
// is visited that is added meanwhile is left open.
class PLATFORM_API AnXmlChildIndex {
 public:
  // Without a name it walks all.
  AnXmlChildIndex(const AnXmlNode& node, const wchar_t* name);

  // Moves to the next child. False, with `child` as it was, when there is none.
  bool moveNext(AnXmlNode& child);

  // Takes the current child out of the document, as AnXmlNode::remove; every handle on it is no
  // longer valid. Without a current child it does nothing.
  void remove();

 private:
  std::wstring m_name;
  void* m_next;
  void* m_current = nullptr;
};

// Walks the attributes of an element in document order. The element may be changed meanwhile.
class PLATFORM_API AnXmlValueIndex {
 public:
  // Stands before the first attribute until moveNext is called.
  explicit AnXmlValueIndex(const AnXmlNode& node);

  // Moves to the next attribute. False, with both outputs as they were, when there is none.
  bool moveNext(AString& name, AString& value);

 private:
  void* m_next;
};

#endif
