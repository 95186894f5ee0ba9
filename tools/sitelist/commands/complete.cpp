#include "tools/sitelist/commands/complete.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <set>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/completion.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/program.h"
#include "tools/sitelist/model/kinds.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;
using AdvXMLParser::Element;

// Expands "~/", because the shell has not expanded the word.
std::string fromHome(const std::string& path) {
  const char* const home = std::getenv("HOME");
  return home && path.compare(0, 2, "~/") == 0 ? home + path.substr(1) : path;
}

std::vector<const wchar_t*> siteElements() {
  std::vector<const wchar_t*> names;
  for (const NamedKind& kind : c_kinds) names.push_back(*kind.element);
  return names;
}

// Reads only the document. Reading records decrypts passwords and may create a key. No lock is
// needed, because lists are replaced atomically. A name that is too long for a record is omitted,
// because commands cannot find it.
std::vector<std::string> siteNames(const std::string& path) {
  std::wstring text;
  std::unique_ptr<AdvXMLParser::Document> document;
  if (readDocument(path, text, document)) return {};
  const std::vector<const wchar_t*> elements = siteElements();
  std::set<std::string> names;
  for (const Element each : document->GetRoot().GetElement(schema::WX_XML_SITELIST).Elements()) {
    if (each.FindName(elements.data(), elements.size()) == elements.size()) continue;
    const bool isProxy = each.HasName(schema::WX_XML_PROXY_CONFIG_LIST);
    const Element site = isProxy ? each.GetElement(schema::WX_XML_PROXY_CONFIG) : each;
    const std::wstring name = site.GetAttribute(schema::WX_XML_SITE_NAME).GetValue();
    if (name.size() < sitehlp::c_textCapacity) names.insert(narrow(name));
  }
  return {names.begin(), names.end()};
}

const char* lastLine(Further further) {
  switch (further) {
    case Further::Files:
      return ":files";
    case Further::Directories:
      return ":directories";
    case Further::NoSpace:
      return ":nospace";
    case Further::Nothing:
      break;
  }
  return ":nothing";
}

Answer answer(const std::vector<std::string>& words) {
  Context context;
  const CommandInfo program = makeCommandLine(context)->describe();
  recordLog(false);
  return completionsOf(program, words,
                       [&](const std::string& agentDirectory, const std::string& file) {
                         if (!agentDirectory.empty())
                           context.agentDirectory = fromHome(agentDirectory);
                         return siteNames(file.empty() ? ownListPath(context) : fromHome(file));
                       });
}

}  // namespace

void complete(int argc, const char* const* argv) noexcept {
  try {
    const std::vector<std::string> arguments(argv, argv + argc);
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    if (mark == arguments.end()) return;
    std::string text;
    const Answer found = answer(std::vector<std::string>(mark + 1, arguments.end()));
    for (const Candidate& candidate : found.candidates) {
      text += candidate.value;
      if (!candidate.description.empty()) text += '\t' + candidate.description;
      text += '\n';
    }
    std::cout << text << lastLine(found.further) << '\n' << std::flush;
  } catch (const std::exception&) {
    // A message would disturb the line that the user types.
  }
}

}  // namespace tool
