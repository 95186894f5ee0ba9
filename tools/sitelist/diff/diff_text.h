#ifndef TOOLS_SITELIST_DIFF_DIFF_TEXT_H
#define TOOLS_SITELIST_DIFF_DIFF_TEXT_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "tools/sitelist/report/report.h"

namespace tool {

// The change of a password that cannot be compared.
constexpr const char* c_incomparable = "incomparable";

// A section of a diff that is printed, with the number of unchanged things in it.
struct DiffSection {
  std::string name;
  std::size_t unchanged;
};

// Prints the rows of a diff for people.
void printDiff(std::ostream& out, const Screen& screen, const std::string& title,
               const std::vector<Record>& rows, const std::vector<DiffSection>& sections);

}  // namespace tool

#endif
