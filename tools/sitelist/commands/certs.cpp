#include <iostream>

#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/certificate.h"
#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/site_list.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

// A SHA-256 fingerprint in two halves, so that it fits a narrow terminal.
std::string inTwoLines(const std::string& fingerprint) {
  constexpr std::size_t half = 48;
  if (fingerprint.size() <= half) return fingerprint;
  return fingerprint.substr(0, half) + "\n               " + fingerprint.substr(half);
}

void print(const Certificate& certificate) {
  std::cout << "  subject      " << certificate.subject << "\n  issuer       " << certificate.issuer
            << "\n  SHA-256      " << inTwoLines(certificate.fingerprint) << "\n  valid from   "
            << certificate.notBefore << "\n  valid until  " << certificate.notAfter
            << "\n  days left    " << certificate.daysLeft
            << (certificate.daysLeft < 0 ? " (expired)" : "") << '\n';
}

int certs(const Context& context, const std::string& file) {
  const AgentForReading agent(context, file);
  std::vector<std::wstring> texts;
  const int result = sitehlp::CSitesHelper(true).GetCaCertificates(wide(agent.path()), texts);
  if (result == sitehlp::c_errorWrite) {
    // The one query that reports a document over a limit in this way.
    const auto fault = findDocumentFault(agent.path());
    throw libraryFailure(agent.path(), result, fault ? fault->status : exitDocument,
                         "the document is over a limit", "find out where it came from");
  }
  if (result != 0) throw libraryFailure(agent.path(), result);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::cout << (i == 0 ? "" : "\n") << "Certificate " << i + 1 << " of " << texts.size() << '\n';
    if (const auto certificate = readCertificate(texts[i])) {
      print(*certificate);
    } else {
      std::cout << "  not readable as a certificate; its text is\n  " << shown(texts[i]) << '\n';
    }
  }
  if (!texts.empty()) return exitSuccess;
  std::cerr << "sitelist: " << shown(agent.path()) << ": the list has no certificates\n";
  return exitNegative;
}

}  // namespace

void addCerts(Command& app, Context& context) {
  Command command = app.add_subcommand("certs", "Print the CA certificates of a list");
  const auto file = std::make_shared<std::string>();
  command.add_option("FILE", *file, "A site list (default: the agent's own)").type_name("");
  command.footer(
      "Examples:\n"
      "  sitelist certs\n"
      "  sitelist certs incoming/SiteList.xml\n");
  command.callback(
      [&context, file] { context.action = [&context, file] { return certs(context, *file); }; });
}

}  // namespace tool
