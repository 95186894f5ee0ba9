#include "tests/probe/probe_fixture.h"

#include <sys/stat.h>

namespace test {

// The web server runs as another user when the test runs as root.
ProbeTest::ProbeTest() {
  ::chmod(file("").c_str(), 0755);
  initAgent();
}

std::string ProbeTest::text(const Entry& entry) {
  std::string text = "<" + entry.element + " Type=\"" + entry.type + "\" Name=\"" + entry.name +
                     "\" Order=\"" + entry.order + "\" Enabled=\"" + entry.enabled +
                     "\" Server=\"" + entry.server + "\"";
  if (!entry.securePort.empty()) text += " SecurePort=\"" + entry.securePort + "\"";
  text += "><RelativePath>" + entry.path + "</RelativePath><ShareName>share</ShareName>";
  if (!entry.user.empty()) {
    text += "<UseAuth>1</UseAuth><UserName>" + entry.user +
            "</UserName><Password Encrypted=\"1\">" + protectedText(entry.password) + "</Password>";
  }
  return text + "</" + entry.element + ">";
}

std::string ProbeTest::proxy(const std::string& attributes, const std::string& more) {
  return "<ProxyConfigList><ProxyConfig Name=\"Proxy\" " + attributes + ">" + more +
         "</ProxyConfig></ProxyConfigList>";
}

std::string ProbeTest::httpProxy(int port, const std::string& more) const {
  return proxy("HttpProxyServer=\"127.0.0.1\" HttpProxyPort=\"" + std::to_string(port) + "\"",
               more);
}

std::string ProbeTest::proxyLogin(const std::string& user, const std::string& password,
                                  const std::string& prefix) {
  const std::string name = prefix + "HttpProxy";
  return "<" + prefix + "HttpUseAuth>1</" + prefix + "HttpUseAuth><" + name + "User>" + user +
         "</" + name + "User><" + name + "Password Encrypted=\"1\">" + protectedText(password) +
         "</" + name + "Password>";
}

std::string ProbeTest::list(const std::string& entries, const std::string& authority) {
  const std::string bundle =
      authority.empty() ? ""
                        : "<CaBundle><CaCertificate>" + authority + "</CaCertificate></CaBundle>";
  return write("list.xml", document(entries, bundle));
}

JsonReport ProbeTest::probe(const std::string& list, const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"probe", "--json", "--file", list};
  arguments.insert(arguments.end(), options.begin(), options.end());
  output = sitelist(arguments);
  expectNoLogin(output.out + output.err);
  return readReport(output.out);
}

JsonReport::Record ProbeTest::probeSite(const Entry& entry, const std::string& authority,
                                        const std::string& others) {
  const JsonReport report = probe(list(text(entry) + others, authority));
  return report.rows.size() == 1 ? report.rows.front() : JsonReport::Record();
}

void expectNoLogin(const std::string& text) {
  for (const char* secret : {c_siteUser, c_sitePassword, c_proxyUser, c_proxyPassword}) {
    EXPECT_EQ(text.find(secret), std::string::npos) << secret << " is in\n" << text;
  }
}

}  // namespace test
