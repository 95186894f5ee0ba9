#ifndef TOOLS_SITELIST_MODEL_KINDS_H
#define TOOLS_SITELIST_MODEL_KINDS_H

#include <cstddef>
#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace tool {

// A kind of site. `name` is its name on the command line and in the output.
struct NamedKind {
  const char* name;
  const wchar_t* const* element;  // in a list
  sitehlp::SiteKind siteKind;     // in a record
};

constexpr std::size_t c_kindCount = 7;

// The kinds, in the order of the help and of messages.
extern const NamedKind c_kinds[c_kindCount];

// The name for a site whose element is none of these.
constexpr const char* c_unknownKind = "unknown";

// Return the names of the kinds, without and with c_unknownKind.
std::vector<std::string> kinds();
std::vector<std::string> kindsInOutput();
std::string kindNames();  // those of kinds(), separated by ","

}  // namespace tool

#endif
