#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <memory>
#include <optional>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/model/certificate.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

const std::vector<std::string> c_columns = {"number",  "readable",  "subject",    "issuer",
                                            "sha256",  "validFrom", "validUntil", "daysLeft",
                                            "expired", "expiring",  "text"};

struct CertsOptions {
  ListArguments lists;
  std::string expiring;
};

// Divides a SHA-256 fingerprint into two lines, so that it fits into a narrow terminal.
std::string inTwoLines(const std::string& fingerprint) {
  constexpr std::size_t half = 48;
  if (fingerprint.size() <= half) return fingerprint;
  return fingerprint.substr(0, half) + "\n               " + fingerprint.substr(half);
}

void printCertificate(std::ostream& out, const Screen& screen, const Record& row, std::size_t count,
                      std::optional<int> days) {
  const auto text = [&](const char* name) { return shownText(row, name); };
  out << screen.styled(Style::Heading,
                       "Certificate " + text("number") + " of " + std::to_string(count))
      << '\n';
  if (text("readable") == "false") {
    out << "  cannot be read as a certificate; its text is\n  " << text("text") << '\n';
    return;
  }
  const bool isExpired = text("expired") == "true";
  const bool isExpiring = text("expiring") == "true";
  const std::string left = text("daysLeft") + (isExpired    ? " (expired)"
                                               : isExpiring ? " (within " + std::to_string(*days) +
                                                                  (*days == 1 ? " day)" : " days)")
                                                            : "");
  out << "  subject      " << text("subject") << "\n  issuer       " << text("issuer")
      << "\n  SHA-256      " << inTwoLines(text("sha256")) << "\n  valid from   "
      << text("validFrom") << "\n  valid until  " << text("validUntil") << "\n  days left    "
      << screen.styled(isExpired || isExpiring ? Style::Bad : Style::Plain, left) << '\n';
}

// Returns nothing without --expiring.
std::optional<int> daysOf(const CertsOptions& options) {
  if (options.expiring.empty()) return std::nullopt;
  int days = 0;
  const char* const end = options.expiring.data() + options.expiring.size();
  const auto [stop, error] = std::from_chars(options.expiring.data(), end, days);
  if (error != std::errc() || stop != end || days < 0) {
    throw Failure(exitUsage,
                  "--expiring: \"" + shown(options.expiring) + "\" is not a number of days",
                  "give a number such as 30");
  }
  return days;
}

Record certificateRow(const std::wstring& text, std::size_t number, std::optional<int> days) {
  Record row = {{"number", static_cast<std::int64_t>(number)}};
  const auto certificate = readCertificate(text);
  row.emplace_back("readable", certificate.has_value());
  if (certificate) {
    row.insert(row.end(), {{"subject", certificate->subject},
                           {"issuer", certificate->issuer},
                           {"sha256", certificate->fingerprint},
                           {"validFrom", certificate->notBefore},
                           {"validUntil", certificate->notAfter},
                           {"daysLeft", std::int64_t{certificate->daysLeft}},
                           {"expired", certificate->isExpired},
                           {"expiring", days && certificate->daysLeft <= *days}});
  }
  row.emplace_back("text", narrow(text));
  return row;
}

// A certificate that cannot be read may have expired.
int statusOf(const std::vector<Record>& rows, const std::string& path) {
  const auto count = [&rows](const char* name, const char* value) {
    return std::count_if(rows.begin(), rows.end(),
                         [=](const Record& row) { return shownText(row, name) == value; });
  };
  const std::ptrdiff_t unreadable = count("readable", "false");
  if (unreadable != 0) {
    printWarning(shown(path) + ": " + std::to_string(unreadable) +
                 (unreadable == 1 ? " certificate cannot be read, so its expiry is unknown"
                                  : " certificates cannot be read, so their expiry is unknown"));
  }
  return unreadable != 0 || count("expiring", "true") != 0 ? exitNegative : exitSuccess;
}

std::vector<std::wstring> readCertificates(const std::string& path) {
  std::vector<std::wstring> texts;
  const int result = sitehlp::CSitesHelper(true).GetCaCertificates(wide(path), texts);
  if (result == sitehlp::c_errorWrite) {
    // Only this query returns c_errorWrite for a document over a limit.
    const auto unread = findReadError(path);
    throw libraryFailure(path, result, unread ? unread->status : exitDocument,
                         "the document is over a limit", "check where the document comes from",
                         unread ? "\n  " + unread->reason : "");
  }
  if (result != 0) throw libraryFailure(path, result);
  requireSiteList(path);
  return texts;
}

int addRows(const std::vector<std::wstring>& texts, std::optional<int> days, ListRows& rows) {
  int status = exitSuccess;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const Record row = certificateRow(texts[i], i + 1, days);
    const bool isBad =
        shownText(row, "readable") == "false" || shownText(row, "expiring") == "true";
    if (days && isBad) status = exitNegative;
    rows.add(row, isBad || shownText(row, "expired") == "true" ? Style::Bad : Style::Plain);
  }
  return status;
}

int certsOfMany(Context& context, const CertsOptions& options, std::optional<int> days) {
  ManyLists many;
  many.layout.rowsName = "certificates";
  many.layout.rowName = "certificate";
  many.layout.columns = c_columns;
  many.layout.tableColumns = {"subject", "validUntil", "daysLeft"};
  many.needsRow = true;
  many.read = [days](const GivenList& list, ListRows& rows) {
    return addRows(readCertificates(list.path), days, rows);
  };
  serveDetachedAgent(context);
  return readManyLists(context, options.lists, many);
}

int certs(Context& context, const CertsOptions& options) {
  const std::optional<int> days = daysOf(options);
  if (areMany(options.lists)) return certsOfMany(context, options, days);
  const AgentForReading agent(context, options.lists.only());
  const std::vector<std::wstring> texts = readCertificates(agent.path());
  Report report;
  report.facts = {{"file", reportedName(agent.path())}};
  report.rowsName = "certificates";
  report.rowName = "certificate";
  report.columns = c_columns;
  for (const std::wstring& text : texts) {
    report.rows.push_back(certificateRow(text, report.rows.size() + 1, days));
  }
  report.table = [rows = report.rows, days](std::ostream& out, const Screen& screen) {
    for (const Record& row : rows) {
      if (&row != rows.data()) out << '\n';
      printCertificate(out, screen, row, rows.size(), days);
    }
  };
  context.report = std::move(report);
  if (texts.empty()) {
    std::cerr << "sitelist: " << shown(agent.path()) << ": the list has no certificates\n";
    return exitNegative;
  }
  return days ? statusOf(context.report->rows, agent.path()) : exitSuccess;
}

}  // namespace

void addCerts(Command& app, Context& context) {
  Command command = app.add_subcommand("certs", "Print the CA certificates of a list");
  const auto options = std::make_shared<CertsOptions>();
  addLists(command, options->lists);
  command
      .add_option("--expiring", options->expiring,
                  "Exit with status 1 if a certificate has expired, has at\n"
                  "most this many days left, or cannot be read")
      .type_name("DAYS")
      .not_empty();
  command.footer(std::string(c_manyListsHelp) +
                 "\n"
                 "Examples:\n"
                 "  sitelist certs\n"
                 "  sitelist certs incoming/SiteList.xml\n"
                 "  sitelist certs --expiring 30 --format csv\n"
                 "  sitelist certs --expiring 30 fleet/\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return certs(context, *options); };
  });
}

}  // namespace tool
