#include "tools/sitelist/report/context.h"

namespace tool {

bool wantsProgress(const Context& context) { return !context.quiet && !context.verbose; }

Format formatOf(const Context& context) {
  if (context.json || context.format == "json") return Format::Json;
  if (context.format == "jsonl") return Format::JsonLines;
  if (context.format == "csv") return Format::Csv;
  return context.format == "xml" ? Format::Xml : Format::Table;
}

Screen screenOf(const Context& context) {
  return standardOutput(context.color == "always"  ? ColorChoice::Always
                        : context.color == "never" ? ColorChoice::Never
                                                   : ColorChoice::Auto);
}

}  // namespace tool
