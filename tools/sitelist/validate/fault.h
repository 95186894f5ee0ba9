#ifndef TOOLS_SITELIST_VALIDATE_FAULT_H
#define TOOLS_SITELIST_VALIDATE_FAULT_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/model/place.h"
#include "tools/sitelist/validate/rules.h"

namespace tool {

// A rule that a document breaks.
struct Fault {
  const Rule* rule;
  Place place;
  std::string text;
};

// The faults of one document.
class Faults {
 public:
  // There has to be a rule of that name.
  void add(const char* rule, const Place& place, const std::string& text);
  bool has(const char* rule) const;
  bool empty() const { return m_faults.empty(); }
  // Hands them out in the order of the document.
  std::vector<Fault> take();

 private:
  std::vector<Fault> m_faults;
};

// A text of a document, in quotation marks and of bearable length.
std::string inQuotes(const std::wstring& text);

// " in line LINE"
std::string inLine(const Place& place);

// "FILE:LINE:COLUMN: RULE: TEXT", printable.
std::string lineOf(const std::string& file, const Fault& fault, const Screen& screen = Screen());

}  // namespace tool

#endif
