#ifndef SITEHLP_WRITE_ELEMENT_WRITER_H
#define SITEHLP_WRITE_ELEMENT_WRITER_H

#include <cstddef>
#include <cwchar>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/common/number.h"

namespace sitehlp {

// Receives the elements of records in document order. All attributes of an element must be added
// before its content.
class ElementWriter {
 public:
  ElementWriter() = default;
  virtual ~ElementWriter() = default;
  ElementWriter(const ElementWriter&) = delete;
  ElementWriter& operator=(const ElementWriter&) = delete;

  virtual void open(const wchar_t* name) = 0;
  virtual void addAttribute(const wchar_t* name, const wchar_t* value, std::size_t length) = 0;
  virtual void addText(const wchar_t* text, std::size_t length) = 0;
  virtual void close() = 0;

  void addAttribute(const wchar_t* name, const wchar_t* value) {
    addAttribute(name, value, std::wcslen(value));
  }
  void addAttribute(const wchar_t* name, const std::wstring& value) {
    addAttribute(name, value.data(), value.size());
  }
  void addAttribute(const wchar_t* name, const Decimal& number) {
    addAttribute(name, number.data(), number.size());
  }

  // Adds an element with only a text.
  void addElement(const wchar_t* name, const wchar_t* text, std::size_t length) {
    open(name);
    addText(text, length);
    close();
  }
  void addElement(const wchar_t* name, const wchar_t* text) {
    addElement(name, text, std::wcslen(text));
  }
  void addElement(const wchar_t* name, const std::wstring& text) {
    addElement(name, text.data(), text.size());
  }
  void addElement(const wchar_t* name, const Decimal& number) {
    addElement(name, number.data(), number.size());
  }
};

// Writes the text of a document.
class TextElementWriter final : public ElementWriter {
 public:
  explicit TextElementWriter(AdvXMLParser::DocumentWriter& document) : m_document(document) {}

  using ElementWriter::addAttribute;
  void open(const wchar_t* name) override { m_document.Open(name); }
  void addAttribute(const wchar_t* name, const wchar_t* value, std::size_t length) override {
    m_document.AddAttribute(name, value, length);
  }
  void addText(const wchar_t* text, std::size_t length) override {
    m_document.AddText(text, length);
  }
  void close() override { m_document.Close(); }

 private:
  AdvXMLParser::DocumentWriter& m_document;
};

// Adds one element and its content to a tree.
class TreeElementWriter final : public ElementWriter {
 public:
  // At position 0 the element becomes the last child of the anchor, otherwise of the anchor's
  // parent.
  TreeElementWriter(const AdvXMLParser::Element& anchor, int position)
      : m_anchor(anchor), m_isInto(position == 0) {}

  using ElementWriter::addAttribute;
  void open(const wchar_t* name) override;
  void addAttribute(const wchar_t* name, const wchar_t* value, std::size_t length) override;
  void addText(const wchar_t* text, std::size_t length) override;
  void close() override { --m_depth; }

  // Returns the element that was opened first.
  const AdvXMLParser::Element& added() const { return m_open[0]; }

 private:
  // The deepest element is ExclusionHost in ExclusionList in ProxyConfig in ProxyConfigList.
  static constexpr std::size_t c_deepest = 4;

  AdvXMLParser::Element m_anchor;
  bool m_isInto;
  AdvXMLParser::Element m_open[c_deepest];
  std::size_t m_depth = 0;
};

}  // namespace sitehlp

#endif
