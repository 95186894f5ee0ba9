#include <ostream>
#include <string>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

class Lines {
 public:
  Lines(std::ostream& out, bool showSecrets) : m_out(out), m_showSecrets(showSecrets) {}

  void add(const char* name, const std::string& value) {
    std::string label = std::string("  ") + name;
    label.resize(22, ' ');
    m_out << label << value << '\n';
  }

  void addProxy(const char* name, const wchar_t* server, std::int32_t port) {
    if (*server) add(name, shown(std::wstring(server)) + ":" + std::to_string(port));
  }

  // Omits unused credentials only if they are empty.
  void addCredentials(const char* name, std::int32_t isUsed, const wchar_t* user,
                      const wchar_t* password) {
    if (!isUsed && !*user && !*password) return;
    std::string text = *user ? shown(std::wstring(user)) : "(no name)";
    if (*password) {
      text += ", password ";
      text += m_showSecrets ? shown(std::wstring(password)) : std::string(c_mask);
    }
    add(name, text + (isUsed ? "" : " (not used)"));
  }

  void addFlag(const char* name, std::int32_t flag) { add(name, flag ? "yes" : "no"); }

 private:
  std::ostream& m_out;
  bool m_showSecrets;
};

}  // namespace

void printProxy(std::ostream& out, const sitehlp::tag_ProxySite& proxy, bool showSecrets) {
  out << "Proxy " << shown(std::wstring(proxy.szName)) << '\n';
  Lines lines(out, showSecrets);
  lines.addProxy("HTTP", proxy.szHttpProxyServer, proxy.iHttpProxyPort);
  lines.addCredentials("HTTP user", proxy.bHttpUseAuth, proxy.szHttpProxyUser,
                       proxy.szHttpProxyPassword);
  lines.addCredentials("HTTP alternate", proxy.bAlternateHttpUseAuth,
                       proxy.szAlternateHttpProxyUser, proxy.szAlternateHttpProxyPassword);
  lines.addProxy("FTP", proxy.szFtpProxyServer, proxy.iFtpProxyPort);
  lines.addCredentials("FTP user", proxy.bFtpUseAuth, proxy.szFtpProxyUser,
                       proxy.szFtpProxyPassword);
  lines.addCredentials("FTP alternate", proxy.bAlternateFtpUseAuth, proxy.szAlternateFtpProxyUser,
                       proxy.szAlternateFtpProxyPassword);
  lines.addFlag("system settings", proxy.bUseIEConfig);
  lines.addFlag("user may change", proxy.bAllowUserToConfigureProxy);
  lines.addFlag("bypass local", proxy.bBypassLocalAddress);

  std::wstring rest = proxy.szExclusionList;
  const char* label = "not for";
  while (!rest.empty()) {
    const std::size_t end = rest.find(L';');
    lines.add(label, shown(rest.substr(0, end)));
    label = "";
    rest = end == std::wstring::npos ? L"" : rest.substr(end + 1);
  }
}

}  // namespace tool
