#include <iostream>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/root.h"

namespace tool {
namespace {

constexpr const char* c_scratchList = "/Library/Korvel/orb/scratch/etc/SiteList.xml";

struct FromBufferOptions {
  std::string file;
  bool allowLostPasswords = false;
};

int fromBuffer(Context& context, const FromBufferOptions& options) {
  serveAgent(context);
  const Input input = readInput(options.file);
  const ListLock lock(context, "", ListUse::Change);
  const ChangeWatch watch(context, {c_scratchList});
  std::wstring text;
  AdvXMLParser::UTF_ENCODINGS encoding = AdvXMLParser::UTF_8;
  const auto* const data = reinterpret_cast<const unsigned char*>(input.bytes.data());
  if (!AdvXMLParser::ConvertBufferToUnicode(data, input.bytes.size(), text, encoding)) {
    throw libraryFailure(input.name, input.bytes,
                         AdvXMLParser::ReadWriteException::INVALID_ENCODING);
  }
  if (!text.empty()) requireSiteList(input);  // the library reports an empty text
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  passwords.requireEncryptable(input);
  sitehlp::CSitesHelper helper(wide(ownListPath(context)));
  const int result = helper.CreateSiteListFromBuffer(text);
  if (result == sitehlp::c_errorWrite) {
    const LoggedReason logged = takeReasonOfWrite(c_scratchList);
    throw libraryFailure("the scratch directory", result, exitFile, "the list could not be written",
                         "create scratch/etc in the default data directory, and check that you may "
                         "write there",
                         logged.reason.empty() ? "" : "\n  " + logged.reason);
  }
  if (result != 0) throw libraryFailure(input.name, input.bytes, result);
  passwords.warn(false);
  std::cerr << "sitelist: wrote the list from " << shown(input.name)
            << " to the scratch directory\n";
  return exitSuccess;
}

}  // namespace

void addFromBuffer(Command& app, Context& context) {
  Command command =
      app.add_subcommand("from-buffer", "Write a site list to /Library/Korvel/orb/scratch");
  const auto options = std::make_shared<FromBufferOptions>();
  command.add_option("FILE", options->file, "The document; - or no FILE means standard input")
      .type_name("");
  addAllowLostPasswords(command, options->allowLostPasswords);
  command.footer(
      "The list is written to /Library/Korvel/orb/scratch/etc/SiteList.xml, whichever\n"
      "agent --agent-dir names. That directory must exist. The global version and the\n"
      "type are those of the agent's own list, and the local version is the current\n"
      "time. The certificates are those of the document or, if it has no bundle, of the\n"
      "agent's own list.\n"
      "\n"
      "Examples:\n"
      "  sitelist from-buffer received.xml\n"
      "  receive-list | sitelist from-buffer\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return fromBuffer(context, *options); };
  });
}

}  // namespace tool
