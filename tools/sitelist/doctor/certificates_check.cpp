#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"
#include "tools/sitelist/model/certificate.h"

namespace tool {
namespace {

constexpr const char* c_importNew = "import a list with a new certificate";

void checkCertificate(const ExaminedAgent& agent, const std::wstring& text, std::size_t number,
                      Findings& findings) {
  const auto certificate = readCertificate(text);
  const std::string subject = certificate ? inQuotes(wide(certificate->subject)) : "";
  const std::string name = "certificate " + std::to_string(number);
  if (!certificate) {
    findings.warn(name + " cannot be read, so its expiry is unknown",
                  "see `sitelist certs`; import a list with a correct certificate", agent.listPath);
  } else if (certificate->isExpired) {
    findings.fail(name + " expired on " + certificate->notAfter + ": " + subject, c_importNew,
                  agent.listPath);
  } else if (certificate->daysLeft <= c_daysBeforeExpiry) {
    findings.warn(name + " expires on " + certificate->notAfter + ": " + subject, c_importNew,
                  agent.listPath);
  }
}

}  // namespace

void checkCertificates(const ExaminedAgent& agent, Findings& findings) {
  if (!requireList(agent, findings)) return;
  const std::vector<std::wstring>& texts = agent.list->certificates;
  for (std::size_t i = 0; i < texts.size(); ++i) checkCertificate(agent, texts[i], i + 1, findings);
  findings.okIfNone(texts.empty() ? "the list has no certificates"
                                  : "no certificate expires within " +
                                        std::to_string(c_daysBeforeExpiry) + " days");
}

}  // namespace tool
