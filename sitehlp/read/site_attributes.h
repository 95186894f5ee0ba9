#ifndef SITEHLP_READ_SITE_ATTRIBUTES_H
#define SITEHLP_READ_SITE_ATTRIBUTES_H

#include <array>
#include <cstddef>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/fields.h"

namespace sitehlp {

namespace attributes {

using Name = const wchar_t* const*;

// The names of the attributes in the tables, each once.
template <std::size_t Capacity>
struct Names {
  std::array<Name, Capacity> names{};
  std::size_t count = 0;

  constexpr std::size_t find(Name name) const {
    std::size_t at = 0;
    while (at < count && names[at] != name) ++at;
    return at;
  }
  constexpr void add(Name name) {
    if (find(name) == count) names[count++] = name;
  }
  template <typename Table>
  constexpr void addTable(const Table& table) {
    std::apply([this](const auto&... rows) { (this->addRow(rows), ...); }, table);
  }
  template <typename Row>
  constexpr void addRow(const Row& row) {
    if (isInAttribute(row.place)) add(row.xmlName);
  }
};

constexpr auto collectNames() {
  Names<32> names;  // a smaller capacity does not compile
  names.addTable(c_serverFields);
  names.addTable(c_ftpFields);
  names.addTable(c_uncFields);
  names.addTable(c_localFields);
  names.addTable(c_proxyFields);
  // No field has this name. In an agent repository, this attribute replaces "Server".
  names.add(&fields::xml::WX_XML_SITE_SERVER_FQDN);
  return names;
}

inline constexpr auto c_names = collectNames();

}  // namespace attributes

// The attributes of a site or proxy element that are used for records. One pass finds them all.
class SiteAttributes {
 public:
  explicit SiteAttributes(const AdvXMLParser::Element& element);

  // Returns a null handle when the element does not have the attribute.
  template <attributes::Name Name>
  const AdvXMLParser::Attribute& get() const {
    constexpr std::size_t at = attributes::c_names.find(Name);
    static_assert(at < attributes::c_names.count, "no table has such an attribute");
    return m_found[at];
  }

 private:
  AdvXMLParser::Attribute m_found[attributes::c_names.count];
};

}  // namespace sitehlp

#endif
