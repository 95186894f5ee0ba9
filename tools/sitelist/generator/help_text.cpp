#include "tools/sitelist/generator/help_text.h"

#include <algorithm>
#include <sstream>

namespace tool {
namespace {

using Lines = std::vector<std::string>;

std::size_t indentOf(const std::string& line) { return line.find_first_not_of(' '); }

// Returns the start of a definition's second column, or npos for any other line.
std::size_t secondColumn(const std::string& line) {
  const std::size_t gap = line.find(' ', indentOf(line));
  if (gap == std::string::npos || line.compare(gap, 2, "  ") != 0) return std::string::npos;
  return line.find_first_not_of(' ', gap);
}

HelpBlock indentedBlock(Lines lines) {
  HelpBlock block;
  block.kind = HelpBlock::Kind::Definitions;
  std::size_t column = std::string::npos;
  std::size_t margin = indentOf(lines.front());
  for (const std::string& line : lines) {
    const std::size_t second = secondColumn(line);
    margin = std::min(margin, indentOf(line));
    if (second != std::string::npos && indentOf(line) < column) {
      column = second;
      const std::string term = line.substr(0, line.find_last_not_of(' ', second - 1) + 1);
      block.definitions.emplace_back(term.substr(indentOf(term)), line.substr(second));
    } else if (!block.definitions.empty() && indentOf(line) == column) {
      block.definitions.back().second += ' ' + line.substr(column);
    } else {
      block.kind = HelpBlock::Kind::Literal;
    }
  }
  if (block.kind == HelpBlock::Kind::Definitions) return block;
  block.definitions.clear();
  for (std::string& line : lines) line.erase(0, margin);
  block.lines = std::move(lines);
  return block;
}

HelpBlock blockOf(const Lines& lines) {
  if (indentOf(lines.front()) != 0) return indentedBlock(lines);
  HelpBlock block;
  block.lines.emplace_back();
  for (const std::string& line : lines) {
    block.lines.front() += (block.lines.front().empty() ? "" : " ") + line;
  }
  return block;
}

// Returns whether the last line is a separate sentence that introduces the indented lines below it.
bool isHeadingBehind(const Lines& lines) {
  return lines.size() > 1 && lines.back().back() == ':' && lines[lines.size() - 2].back() == '.';
}

}  // namespace

std::vector<HelpBlock> helpBlocks(const std::string& text) {
  std::vector<HelpBlock> blocks;
  Lines lines;
  bool isApart = false;
  const auto finish = [&] {
    if (lines.empty()) return;
    blocks.push_back(blockOf(lines));
    blocks.back().isApart = isApart;
    isApart = false;
    lines.clear();
  };
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (indentOf(line) == std::string::npos) {
      finish();
      isApart = true;
      continue;
    }
    const bool isIndented = indentOf(line) != 0;
    if (!lines.empty() && isIndented != (indentOf(lines.front()) != 0)) {
      const std::string last = lines.back();
      const bool isHeading = isIndented && isHeadingBehind(lines);
      if (isHeading) lines.pop_back();
      finish();
      if (isHeading) {
        lines = {last};
        isApart = true;
        finish();
      }
    }
    lines.push_back(line);
  }
  finish();
  return blocks;
}

std::string unbroken(const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

}  // namespace tool
