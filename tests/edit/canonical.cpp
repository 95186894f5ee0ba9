#include "tests/edit/canonical.h"

#include <map>
#include <pugixml.hpp>
#include <sstream>
#include <stdexcept>

namespace test {
namespace {

void sortAttributes(pugi::xml_node node) {
  std::map<std::string, std::string> attributes;
  for (const pugi::xml_attribute attribute : node.attributes()) {
    attributes[attribute.name()] = attribute.value();
  }
  node.remove_attributes();
  for (const auto& [name, value] : attributes) {
    node.append_attribute(name.c_str()).set_value(value.c_str());
  }
  for (const pugi::xml_node child : node.children()) sortAttributes(child);
}

}  // namespace

std::string canonical(const std::string& text) {
  pugi::xml_document document;
  const pugi::xml_parse_result result =
      document.load_buffer(text.data(), text.size(),
                           (pugi::parse_full & ~pugi::parse_declaration) | pugi::parse_ws_pcdata);
  if (!result) throw std::runtime_error(std::string(result.description()) + ": " + text);
  sortAttributes(document);
  std::ostringstream out;
  document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
  return out.str();
}

}  // namespace test
