#ifndef TOOLS_SITELIST_GENERATOR_HELP_TEXT_H
#define TOOLS_SITELIST_GENERATOR_HELP_TEXT_H

#include <string>
#include <utility>
#include <vector>

namespace tool {

// A piece of a help text, which is plain text for a terminal.
struct HelpBlock {
  enum class Kind { Paragraph, Literal, Definitions };

  Kind kind = Kind::Paragraph;
  bool isApart = false;            // an empty line stands before it
  std::vector<std::string> lines;  // of a literal text; of a paragraph one, not broken
  std::vector<std::pair<std::string, std::string>> definitions;
};

// Takes a help text apart: lines at the margin are paragraphs; indented ones are definitions when
// each has two columns, and are meant as they stand when not.
std::vector<HelpBlock> helpBlocks(const std::string& text);

// The text as one line.
std::string unbroken(const std::string& text);

}  // namespace tool

#endif
