#include <sys/stat.h>

#include <iostream>
#include <memory>

#include "host/agent.h"
#include "host/fs/files.h"
#include "platform/crypto/object_buffer.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct ServerListOptions {
  std::string file;
  bool adjustPasswords = false;
  bool allowLostPasswords = false;
};

// The library does not read such a list, so it cannot adjust the passwords.
void failIfOverLimit(const Input& input) {
  constexpr int overLimit = AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED;
  const ScratchDirectory scratch;
  const std::string copy = scratch.path() + "/SiteList.xml";
  const int error =
      host::replaceFile(copy, input.bytes.data(), input.bytes.size(), S_IRUSR | S_IWUSR);
  if (error != 0 || readSiteList(copy).result != overLimit) return;
  throw libraryFailure(input.name, input.bytes, overLimit);
}

// AdjustPwd does not report a failure, so the file is checked.
void requireRewritten(const std::string& path, const std::string& before, const Input& input) {
  std::string after;
  try {
    after = readInput(path).bytes;
  } catch (const Failure&) {
    after = before;
  }
  if (after == before) {
    failIfOverLimit(input);
    throw writeFailure(path, sitehlp::c_errorWrite, "the list could not be written");
  }
}

int serverList(Context& context, const ServerListOptions& options) {
  serveAgent(context);
  const Input input = readInput(options.file);
  requireSiteList(input);
  const ListLock lock(context, "", ListUse::Change);
  const std::string path = context.agentDirectory + "/ServerSiteList.xml";
  const bool isRewritten = options.adjustPasswords &&
                           host::agent().cryptoKeySize == korvel_com::ZQ::crypto::KEY_SIZE_2048;
  PasswordCheck passwords(context, options.allowLostPasswords);
  if (isRewritten) {
    passwords.requireKeyOfOwnList();
    passwords.requireFromServer(input);
  }
  std::string before;
  try {
    if (isRewritten) before = readInput(path).bytes;
  } catch (const Failure&) {
    before.clear();  // there is no file yet
  }
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(input.bytes.size()),
      reinterpret_cast<const unsigned char*>(input.bytes.data()));
  sitehlp::CSitesHelper helper(wide(ownListPath(context)));
  if (helper.CreateServerSiteList(buffer, options.adjustPasswords) == 0) {
    throw libraryFailure(path, sitehlp::c_errorWrite);
  }
  if (isRewritten) requireRewritten(path, before, input);
  passwords.warn(false);
  if (options.adjustPasswords && !isRewritten) {
    printWarning("the configured key size is not 2048; the passwords are unchanged");
  }
  std::cerr << "sitelist: stored " << shown(input.name) << " as " << shown(path) << '\n';
  return exitSuccess;
}

}  // namespace

void addServerList(Command& app, Context& context) {
  Command command =
      app.add_subcommand("server-list", "Store a site list from the server as ServerSiteList.xml");
  const auto options = std::make_shared<ServerListOptions>();
  command.add_option("FILE", options->file, "The document; - or no FILE means standard input")
      .type_name("");
  command.add_flag(
      "--adjust-passwords", options->adjustPasswords,
      "Decrypt the passwords with the server key and encrypt\nthem with the password key");
  addAllowLostPasswords(command, options->allowLostPasswords);
  command.footer(
      "The list is stored as ServerSiteList.xml in the agent's data directory. Without\n"
      "--adjust-passwords the bytes are stored unchanged. A document whose root is not\n"
      "\"SiteLists\" is refused.\n"
      "\n"
      "Examples:\n"
      "  sitelist server-list received.xml\n"
      "  receive-list | sitelist server-list --adjust-passwords\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return serverList(context, *options); };
  });
}

}  // namespace tool
