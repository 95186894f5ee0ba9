#ifndef TOOLS_SITELIST_GENERATOR_HELP_TEXT_H
#define TOOLS_SITELIST_GENERATOR_HELP_TEXT_H

#include <string>
#include <utility>
#include <vector>

namespace tool {

// A part of a help text. Help texts are plain text for a terminal.
struct HelpBlock {
  enum class Kind { Paragraph, Literal, Definitions };

  Kind kind = Kind::Paragraph;
  bool isApart = false;            // there is an empty line before it
  std::vector<std::string> lines;  // all lines of a literal text, or one long line of a paragraph
  std::vector<std::pair<std::string, std::string>> definitions;
};

// Divides a help text into parts. Lines without an indent are paragraphs. Indented lines are
// definitions if each has two columns; otherwise they are literal text.
std::vector<HelpBlock> helpBlocks(const std::string& text);

// Returns the text as one line.
std::string unbroken(const std::string& text);

}  // namespace tool

#endif
