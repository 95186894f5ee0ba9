#include "tools/sitelist/report/context.h"

namespace tool {

Format formatOf(const Context& context) {
  if (context.json || context.format == "json") return Format::Json;
  if (context.format == "csv") return Format::Csv;
  return context.format == "xml" ? Format::Xml : Format::Table;
}

}  // namespace tool
