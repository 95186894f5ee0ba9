#ifndef TOOLS_SITELIST_CLI_SCREEN_H
#define TOOLS_SITELIST_CLI_SCREEN_H

#include <cstddef>
#include <string>

namespace tool {

// Styles that can be read on light and on dark ground.
enum class Style { Plain, Heading, Dim, Good, Bad, Changed };

// Where the form for people goes.
struct Screen {
  std::size_t columns = 0;  // 0: lines may be as long as they like
  bool color = false;

  std::string styled(Style style, const std::string& text) const;
};

enum class ColorChoice { Auto, Always, Never };

// Standard output: lines are bounded on a terminal only, and there is colour on a terminal only
// unless `choice` says otherwise or the environment has a NO_COLOR that is not empty.
Screen standardOutput(ColorChoice choice);

}  // namespace tool

#endif
