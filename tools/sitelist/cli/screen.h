#ifndef TOOLS_SITELIST_CLI_SCREEN_H
#define TOOLS_SITELIST_CLI_SCREEN_H

#include <cstddef>
#include <string>

namespace tool {

// Styles that are readable on light and dark backgrounds.
enum class Style { Plain, Heading, Dim, Good, Bad, Changed };

// The output device of the table format.
struct Screen {
  std::size_t columns = 0;  // the width; 0: no limit
  bool isTerminal = false;
  bool color = false;

  std::string styled(Style style, const std::string& text) const;
};

// Returns whether standard output is a terminal.
bool isOutputTerminal();

enum class ColorChoice { Auto, Always, Never };

// Returns the properties of standard output. The width is limited only on a terminal. `choice`
// determines the colour. With Auto there is colour only on a terminal, and not if NO_COLOR is set
// and not empty, or if TERM is "dumb".
Screen standardOutput(ColorChoice choice);

}  // namespace tool

#endif
