#include "sitehlp/write/element_writer.h"

#include <string>

namespace sitehlp {

using AdvXMLParser::Attribute;
using AdvXMLParser::Element;

void TreeElementWriter::open(const wchar_t* name) {
  Element& place = m_open[m_depth];
  if (m_depth > 0) {
    place = m_open[m_depth - 1].AddElementInto(name);
  } else {
    place = m_isInto ? m_anchor.AddElementInto(name) : m_anchor.AppendElement(name);
  }
  ++m_depth;
}

void TreeElementWriter::addAttribute(const wchar_t* name, const wchar_t* value,
                                     std::size_t length) {
  Attribute attribute = m_open[m_depth - 1].CreateAttribute(name);
  if (!attribute.IsNull()) attribute.SetValue(std::wstring(value, length));
}

void TreeElementWriter::addText(const wchar_t* text, std::size_t length) {
  m_open[m_depth - 1].AddText(std::wstring(text, length));
}

}  // namespace sitehlp
