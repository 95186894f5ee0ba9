#ifndef TOOLS_SITELIST_GENERATOR_MANUAL_PAGE_H
#define TOOLS_SITELIST_GENERATOR_MANUAL_PAGE_H

#include <string>
#include <utility>
#include <vector>

#include "tools/sitelist/generator/help_text.h"

namespace tool {

// A manual page in the mdoc language.
class ManualPage {
 public:
  // `date` is in the form "May 1, 2001". `description` has no full stop.
  ManualPage(const std::string& name, int section, const std::string& date,
             const std::string& description);

  void section(const std::string& title);
  void subsection(const std::string& title);
  // Adds a line of macros without changes.
  void macro(const std::string& line);
  // Continues the current paragraph.
  void text(const std::string& text);
  void paragraph(const std::string& text);
  void literal(const std::vector<std::string>& lines);
  // Adds a list in two columns.
  void definitions(const std::vector<std::pair<std::string, std::string>>& pairs);
  void help(const std::vector<HelpBlock>& blocks);
  void beginList();
  void item(const std::string& head, const std::string& text);
  void endList();

  const std::string& source() const { return m_source; }

 private:
  std::string m_source;
  bool m_isOpening = true;  // there is no text below the heading yet
};

}  // namespace tool

#endif
