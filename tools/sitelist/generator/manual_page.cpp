#include "tools/sitelist/generator/manual_page.h"

#include <algorithm>
#include <cctype>

#include "tools/sitelist/generator/roff.h"

namespace tool {

ManualPage::ManualPage(const std::string& name, int section, const std::string& date,
                       const std::string& description) {
  std::string title = name;
  std::transform(title.begin(), title.end(), title.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  macro(".Dd " + date);
  macro(".Dt " + title + ' ' + std::to_string(section));
  macro(".Os sitehlp " SITELIST_VERSION);
  this->section("NAME");
  macro(".Nm " + name);
  macro(".Nd " + description);
}

void ManualPage::section(const std::string& title) {
  macro(".Sh " + title);
  m_isOpening = true;
}

void ManualPage::subsection(const std::string& title) {
  macro(".Ss " + roffLiteral(title));
  m_isOpening = true;
}

void ManualPage::macro(const std::string& line) {
  m_source += line + '\n';
  m_isOpening = false;
}

void ManualPage::text(const std::string& text) {
  m_source += roffText(text);
  m_isOpening = false;
}

void ManualPage::paragraph(const std::string& text) {
  if (!m_isOpening) macro(".Pp");
  this->text(text);
}

void ManualPage::literal(const std::vector<std::string>& lines) {
  macro(".Bd -literal -offset 2n -compact");
  for (const std::string& line : lines) {
    const std::string escapedLine = roffLiteral(line);
    const bool isControl = !line.empty() && (line[0] == '.' || line[0] == '\'');
    m_source += (isControl ? "\\&" : "") + escapedLine + '\n';
  }
  macro(".Ed");
}

void ManualPage::help(const std::vector<HelpBlock>& blocks) {
  for (const HelpBlock& block : blocks) {
    switch (block.kind) {
      case HelpBlock::Kind::Paragraph:
        if (block.isApart) {
          paragraph(block.lines.front());
        } else {
          text(block.lines.front());
        }
        break;
      case HelpBlock::Kind::Literal:
        literal(block.lines);
        break;
      case HelpBlock::Kind::Definitions:
        definitions(block.definitions);
        break;
    }
  }
}

void ManualPage::definitions(const std::vector<std::pair<std::string, std::string>>& pairs) {
  std::size_t width = 0;
  for (const auto& [term, meaning] : pairs) width = std::max(width, term.size());
  macro(".Bl -tag -width " + std::to_string(width) + "n -offset 2n -compact");
  for (const auto& [term, meaning] : pairs) item("Li " + roffLiteral(term), meaning);
  endList();
}

void ManualPage::beginList() { macro(".Bl -tag -width Ds"); }

void ManualPage::item(const std::string& head, const std::string& text) {
  macro(".It " + head);
  this->text(text);
}

void ManualPage::endList() { macro(".El"); }

}  // namespace tool
