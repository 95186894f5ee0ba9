#ifndef TESTS_IMPORT_DOCUMENTS_H
#define TESTS_IMPORT_DOCUMENTS_H

#include <string>

// Site list documents as text.
namespace test {

// `head` is before the "SiteList" element, `sites` is in it, and `tail` is after it.
inline std::string document(
    const std::string& sites, const std::string& head = "",
    const std::string& rootAttributes = R"(GlobalVersion="G1" LocalVersion="L1" Type="Client")",
    const std::string& tail = "") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ns:SiteLists xmlns:ns=\"wxSiteList\" " +
         rootAttributes + ">" + head + "<SiteList Default=\"1\" Name=\"SomeGUID\">" + sites +
         "</SiteList>" + tail + "</ns:SiteLists>\n";
}

inline std::string element(const std::string& kind, const std::string& name,
                           const std::string& attributes, const std::string& children = "") {
  return "<" + kind + " Name=\"" + name + "\" " + attributes +
         "><RelativePath>path</RelativePath>" + children + "</" + kind + ">";
}

inline std::string httpElement(
    const std::string& name,
    const std::string& attributes = R"(Type="repository" Order="3" Enabled="1" Local="0")") {
  return element("HttpSite", name, attributes + " Server=\"" + name + ".example:8080\"",
                 "<UseAuth>0</UseAuth><UserName>user</UserName>");
}

// Returns a management server that satisfies every rule. If `version` is empty, it has no version.
inline std::string serverElement(const std::string& name, const std::string& version = "",
                                 const std::string& order = "1",
                                 const std::string& type = "master") {
  return element("VestaSite", name,
                 "Type=\"" + type + "\" Order=\"" + order +
                     "\" Enabled=\"1\" Local=\"0\" SecurePort=\"443\" Server=\"" + name +
                     ".example:80\" ServerName=\"" + name + ":80\" ServerIP=\"10.0.0.1:80\"" +
                     (version.empty() ? "" : " Version=\"" + version + "\""),
                 "<UseAuth>0</UseAuth>");
}

inline std::string proxyElement(const std::string& name) {
  return "<ProxyConfigList><ProxyConfig Name=\"" + name +
         "\" HttpProxyServer=\"proxy.example\" HttpProxyPort=\"3128\"/></ProxyConfigList>";
}

inline std::string policies(const std::string& name, const std::string& value) {
  return "<Policies><Setting name=\"" + name + "\">" + value + "</Setting></Policies>";
}

}  // namespace test

#endif
