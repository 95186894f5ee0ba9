#include "tools/sitelist/diff/diff_text.h"

#include <algorithm>
#include <ostream>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

struct Heading {
  const char* section;
  const char* text;
};
constexpr Heading c_headings[] = {{"version", "Versions"},       {"site", "Sites"},
                                  {"proxy", "Proxy settings"},   {"certificate", "Certificates"},
                                  {"policy", "Policy settings"}, {"file", "Files beside the list"}};

constexpr std::size_t c_fieldColumns = 20;  // smallest width of the name of a field

// The first 12 bytes of a fingerprint are enough to distinguish certificates.
constexpr std::size_t c_fingerprintStart = 35;

bool isNull(const Record& row, const char* name) {
  return std::holds_alternative<std::monostate>(*find(row, name));
}

std::string padded(std::string label, std::size_t width) {
  label.resize(std::max(label.size() + 1, width), ' ');
  return label;
}

std::string fromTo(const Record& row) {
  const auto value = [&](const char* name) {
    const std::string shownValue = shownText(row, name);
    return shownValue.empty() ? std::string("(none)") : shownValue;
  };
  const std::string before = value("before");
  const std::string after = value("after");
  return before + " -> " + (before == after ? "another" : after);
}

bool isSameThing(const Record& a, const Record& b) {
  return *find(a, "section") == *find(b, "section") && *find(a, "kind") == *find(b, "kind") &&
         *find(a, "name") == *find(b, "name") && !isNull(a, "field") && !isNull(b, "field");
}

Style styleOf(const std::string& change) {
  if (change == "added") return Style::Good;
  return change == "removed" ? Style::Bad : Style::Changed;
}

class Printer {
 public:
  Printer(std::ostream& out, const Screen& screen) : m_out(out), m_screen(screen) {}

  void section(const std::string& name, const std::vector<Record>& rows, std::size_t unchanged) {
    const auto heading = std::find_if(std::begin(c_headings), std::end(c_headings),
                                      [&](const Heading& each) { return each.section == name; });
    m_out << '\n' << m_screen.styled(Style::Heading, heading->text) << '\n';
    for (std::size_t i = 0; i < rows.size();) {
      if (shownText(rows[i], "section") != name) {
        ++i;
      } else {
        i = thing(rows, i);
      }
    }
    if (unchanged != 0) m_out << "  " << unchanged << " unchanged\n";
  }

 private:
  // Prints one changed thing, which may have several rows. Returns the index after them.
  std::size_t thing(const std::vector<Record>& rows, std::size_t first) {
    std::size_t end = first + 1;
    while (end < rows.size() && isSameThing(rows[first], rows[end])) ++end;
    const Record& row = rows[first];
    std::string change = shownText(row, "change");
    for (std::size_t i = first; i < end; ++i) {
      if (shownText(rows[i], "change") != change) change = "changed";
    }
    std::string line = padded(change, 11);
    if (!isNull(row, "kind")) line += shownText(row, "kind") + " ";
    const std::string name = shownText(row, "name");
    line += name.empty() ? "(no name)" : name;
    m_out << "  " << m_screen.styled(styleOf(change), line);
    if (shownText(row, "section") == "version") {
      m_out << ": " << fromTo(row) << '\n';
    } else if (isNull(row, "field")) {
      single(row, change);
    } else {
      m_out << '\n';
      std::size_t width = c_fieldColumns;
      for (std::size_t i = first; i < end; ++i) {
        width = std::max(width, shownText(rows[i], "field").size() + 1);
      }
      for (std::size_t i = first; i < end; ++i) {
        m_out << "               " << padded(shownText(rows[i], "field"), width)
              << (shownText(rows[i], "change") == c_incomparable ? "cannot be compared"
                                                                 : fromTo(rows[i]))
              << '\n';
      }
    }
    return end;
  }

  void single(const Record& row, const std::string& change) {
    const std::string section = shownText(row, "section");
    const std::string value = shownText(row, change == "removed" ? "before" : "after");
    if (section == "policy" && change == "changed") {
      m_out << ": " << fromTo(row);
    } else if (section == "policy") {
      m_out << " = " << value;
    } else if (section == "certificate" && !value.empty()) {
      m_out << "\n               SHA-256 " << value.substr(0, c_fingerprintStart) << "...";
    } else if (!value.empty()) {
      m_out << "  (" << value << ")";
    }
    m_out << '\n';
  }

  std::ostream& m_out;
  const Screen& m_screen;
};

}  // namespace

void printDiff(std::ostream& out, const Screen& screen, const std::string& title,
               const std::vector<Record>& rows, const std::vector<DiffSection>& sections) {
  if (!title.empty()) out << title << '\n';
  if (rows.empty()) {
    out << (title.empty() ? "" : "\n") << "Nothing differs.\n";
    return;
  }
  Printer printer(out, screen);
  for (const DiffSection& section : sections) {
    const bool isChanged = std::any_of(rows.begin(), rows.end(), [&](const Record& row) {
      return shownText(row, "section") == section.name;
    });
    if (!isChanged) continue;
    printer.section(section.name, rows, section.unchanged);
  }
}

}  // namespace tool
