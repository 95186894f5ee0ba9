#ifndef HOST_XML_HANDLES_H
#define HOST_XML_HANDLES_H

#include <pugixml.hpp>

// Convert the handles of the public interfaces to nodes of a tree. A null handle becomes a null
// node, and queries on a null node return empty values.
namespace host {

inline pugi::xml_attribute asAttribute(void* handle) {
  return pugi::xml_attribute(static_cast<pugi::xml_attribute_struct*>(handle));
}

inline pugi::xml_node asNode(void* handle) {
  return pugi::xml_node(static_cast<pugi::xml_node_struct*>(handle));
}

}  // namespace host

#endif
