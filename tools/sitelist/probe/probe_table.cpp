#include "tools/sitelist/probe/probe_table.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/cli/wrap.h"

namespace tool {
namespace {

constexpr std::size_t c_blockIndent = 5;
constexpr std::size_t c_labelColumns = 11;
constexpr std::size_t c_blockColumns = 80;

class SiteBlock {
 public:
  SiteBlock(std::ostream& out, const Screen& screen, const Record& row)
      : m_out(out), m_screen(screen), m_row(row) {
    m_columns = screen.columns == 0 ? c_blockColumns : screen.columns;
  }

  std::string text(const char* name) const { return shownText(m_row, name); }
  bool has(const char* name) const { return !text(name).empty(); }
  bool is(const char* name, const char* value) const { return text(name) == value; }

  void heading() {
    const bool isTried = is("tried", "true");
    const std::string start = isTried ? text("place") + ". " : "-  ";
    const std::string name =
        text("kind") + "  " + (has("name") ? text("name") : std::string("(no name)"));
    std::string where = text("address");
    if (has("path")) where += (where.empty() ? "" : "  ") + text("path");
    m_out << start << m_screen.styled(isTried ? Style::Heading : Style::Dim, name);
    const std::size_t used = columnsOf(wide(start + name));
    if (where.empty()) {
      m_out << '\n';
    } else if (used + 2 + columnsOf(wide(where)) <= m_columns) {
      m_out << "  " << where << '\n';
    } else {
      m_out << '\n' << std::string(c_blockIndent, ' ') << where << '\n';
    }
  }

  void line(const std::string& label, const std::string& value, Style style = Style::Plain) {
    if (value.empty()) return;
    std::string start = std::string(c_blockIndent, ' ') + label;
    const std::size_t indent = c_blockIndent + c_labelColumns;
    start.resize(std::max(indent, start.size() + 1), ' ');
    m_out << start << m_screen.styled(style, wrapped(value, indent, m_columns)) << '\n';
  }

  void field(const std::string& label, const char* name) { line(label, text(name)); }

 private:
  std::ostream& m_out;
  const Screen& m_screen;
  const Record& m_row;
  std::size_t m_columns;
};

std::string loginText(const std::string& login) {
  if (login == "not-asked") return "not asked for";
  if (login == "anonymous") return "accepted without a user";
  return login;
}

std::string answerText(const SiteBlock& block) {
  std::string text = block.text("answer");
  if (!block.has("entries")) return text;
  const std::string count = block.text("entries");
  text += text.empty() ? "" : "; ";
  text += (block.is("listingCut", "true") ? "at least " : "") + count;
  return text + (count == "1" ? " entry" : " entries");
}

std::string secureText(const SiteBlock& block) {
  if (!block.has("securePort") || !block.has("secureOk")) return "";
  std::string text = "port " + block.text("securePort");
  if (block.has("secureMilliseconds")) {
    text += ", connected in " + block.text("secureMilliseconds") + " ms";
  }
  if (block.is("certificateTrusted", "true")) return text + "; the certificate is trusted";
  if (block.is("certificateTrusted", "false")) {
    std::string faults = block.text("certificateFaults");
    for (std::size_t at = 0; (at = faults.find(';', at)) != std::string::npos; at += 2) {
      faults.replace(at, 1, "; ");
    }
    return text + "; the certificate is not trusted: " + faults;
  }
  return text + "; no certificate";
}

void printSecureCertificate(SiteBlock& block) {
  if (!block.has("certificateExpires")) return;
  block.field("  subject", "certificateSubject");
  block.field("  issuer", "certificateIssuer");
  const std::string days = block.text("certificateDaysLeft");
  block.line("  expires", block.text("certificateExpires") + " (days left: " + days + ")");
}

void printResult(SiteBlock& block) {
  if (block.is("state", "ok")) {
    block.line("result", "ok", Style::Good);
  } else if (block.is("state", "failed")) {
    block.line("failed", block.text("error"), Style::Bad);
  } else {
    block.line("not tried", block.text("error"), Style::Changed);
  }
  block.field("next", "next");
}

void printProbedSite(std::ostream& out, const Screen& screen, const Record& row) {
  SiteBlock block(out, screen, row);
  block.heading();
  if (block.is("tried", "false")) block.line("unused", block.text("reason"));
  std::string addresses = block.text("addresses");
  for (std::size_t at = 0; (at = addresses.find(';', at)) != std::string::npos; at += 2) {
    addresses.replace(at, 1, ", ");
  }
  std::string proxy = block.text("proxy");
  if (block.has("proxyLogin")) proxy += ", login " + loginText(block.text("proxyLogin"));
  block.line("proxy", proxy);
  block.line("addresses", addresses);
  if (block.has("milliseconds"))
    block.line("connected", "in " + block.text("milliseconds") + " ms");
  block.line("answered", answerText(block));
  block.field("redirect", "redirect");
  block.line("login", loginText(block.text("login")));
  block.field("read as", "readAs");
  block.line("secure", secureText(block));
  printSecureCertificate(block);
  block.field("note", "note");
  printResult(block);
}

std::string quotedSite(const std::string& name) {
  return name.empty() ? "a site without a name" : '"' + name + '"';
}

void printDecision(std::ostream& out, const Screen& screen, const Record& facts) {
  const std::string place = shownText(facts, "usePlace");
  std::string text = "The agent has no site that it can use.";
  Style style = Style::Bad;
  if (shownText(facts, "decided") == "false") {
    text = "Which site the agent will use is not known: " +
           quotedSite(shownText(facts, "unknownSite")) + " was not tried.";
    style = Style::Changed;
  } else if (!place.empty()) {
    text = "The agent will use " + quotedSite(shownText(facts, "use")) + " (place " + place + ").";
    style = Style::Good;
  }
  const std::size_t columns = screen.columns == 0 ? c_blockColumns : screen.columns;
  out << screen.styled(style, wrapped(text, 0, columns)) << '\n';
}

}  // namespace

void printProbes(std::ostream& out, const Screen& screen, const Record& facts,
                 const std::vector<Record>& rows) {
  for (const Record& row : rows) printProbedSite(out, screen, row);
  if (!rows.empty()) out << '\n';
  printDecision(out, screen, facts);
}

}  // namespace tool
