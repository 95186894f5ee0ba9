#ifndef TOOLS_SITELIST_VALIDATE_FAULT_H
#define TOOLS_SITELIST_VALIDATE_FAULT_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/model/place.h"
#include "tools/sitelist/validate/rules.h"

namespace tool {

// A place where a document breaks a rule.
struct Fault {
  const Rule* rule;
  Place place;
  std::string text;
  std::wstring site = {};  // the name of the site at that place, if there is one
};

// The faults of one document.
class Faults {
 public:
  // There must be a rule with that name.
  void add(const char* rule, const Place& place, const std::string& text);
  bool has(const char* rule) const;
  bool empty() const { return m_faults.empty(); }
  // Removes the faults and returns them in the order of the document.
  std::vector<Fault> take();

 private:
  std::vector<Fault> m_faults;
};

// Returns a text of a document in quotation marks, shortened if it is long.
std::string inQuotes(const std::wstring& text);

// Returns " in line LINE".
std::string inLine(const Place& place);

// Returns "FILE:LINE:COLUMN: RULE: TEXT (site "NAME")", printable.
std::string lineOf(const std::string& file, const Fault& fault, const Screen& screen = Screen());

}  // namespace tool

#endif
