#include <cwchar>

#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

// Flags hold 0 or 1; a number stays as the document has it.
Field flag(const char* name, std::int32_t value) { return {name, value != 0}; }
Field number(const char* name, std::int64_t value) { return {name, value}; }
Field text(const char* name, const wchar_t* value) { return {name, value}; }
Field secret(const char* name, const wchar_t* value) { return {name, value, true}; }

void add(std::vector<Field>& fields, const sitehlp::tag_HttpSite& site) {
  fields.insert(
      fields.end(),
      {text("element", site.szElement), text("name", site.szName), text("server", site.szServer),
       number("serverPort", site.uServerPort), text("serverIP", site.szServerIP),
       number("serverIPPort", site.uServerIPPort), text("serverName", site.szServerName),
       number("serverNamePort", site.uServerNamePort), number("securePort", site.uSecurePort),
       text("relativePath", site.szRelativePath), number("useAuth", site.iUseAuth),
       text("userName", site.szUserName), secret("password", site.szPassword),
       text("version", site.szVersion)});
}

void add(std::vector<Field>& fields, const sitehlp::tag_FtpSite& site) {
  fields.insert(fields.end(),
                {text("name", site.szName), text("server", site.szServer),
                 number("serverPort", site.uServerPort), number("securePort", site.uSecurePort),
                 text("relativePath", site.szRelativePath), text("userName", site.szUserName),
                 secret("password", site.szPassword)});
}

void add(std::vector<Field>& fields, const sitehlp::tag_UncSite& site) {
  fields.insert(fields.end(),
                {text("name", site.szName), text("server", site.szServer),
                 text("shareName", site.szShareName), text("relativePath", site.szRelativePath),
                 text("domainName", site.szDomainName), text("userName", site.szUserName),
                 secret("password", site.szPassword),
                 number("useLoggedonUserAccount", site.iUseLoggedonUserAccount)});
}

void add(std::vector<Field>& fields, const sitehlp::tag_LocalSite& site) {
  fields.insert(fields.end(),
                {text("name", site.szName), text("relativePath", site.szRelativePath),
                 text("domainName", site.szDomainName), text("userName", site.szUserName),
                 secret("password", site.szPassword),
                 number("useLoggedonUserAccount", site.iUseLoggedonUserAccount)});
}

void add(std::vector<Field>& fields, const sitehlp::tag_ProxySite& site) {
  fields.insert(fields.end(),
                {text("element", site.szElement),
                 text("name", site.szName),
                 flag("useIEConfig", site.bUseIEConfig),
                 flag("allowUserToConfigureProxy", site.bAllowUserToConfigureProxy),
                 flag("bypassLocalAddress", site.bBypassLocalAddress),
                 number("exclusionCount", site.iExclusionCount),
                 text("exclusionList", site.szExclusionList),
                 text("httpProxyServer", site.szHttpProxyServer),
                 number("httpProxyPort", site.iHttpProxyPort),
                 flag("httpUseAuth", site.bHttpUseAuth),
                 text("httpProxyUser", site.szHttpProxyUser),
                 secret("httpProxyPassword", site.szHttpProxyPassword),
                 flag("alternateHttpUseAuth", site.bAlternateHttpUseAuth),
                 text("alternateHttpProxyUser", site.szAlternateHttpProxyUser),
                 secret("alternateHttpProxyPassword", site.szAlternateHttpProxyPassword),
                 text("ftpProxyServer", site.szFtpProxyServer),
                 number("ftpProxyPort", site.iFtpProxyPort),
                 flag("ftpUseAuth", site.bFtpUseAuth),
                 text("ftpProxyUser", site.szFtpProxyUser),
                 secret("ftpProxyPassword", site.szFtpProxyPassword),
                 flag("alternateFtpUseAuth", site.bAlternateFtpUseAuth),
                 text("alternateFtpProxyUser", site.szAlternateFtpProxyUser),
                 secret("alternateFtpProxyPassword", site.szAlternateFtpProxyPassword)});
}

}  // namespace

const char* kindOf(const tag_Site& site) {
  switch (site.eSiteKind) {
    case sitehlp::SITE_KIND_HTTP:
      if (std::wcscmp(site.http.szElement, L"VestaSite") == 0) return "server";
      if (std::wcscmp(site.http.szElement, L"KeystoneSite") == 0) return "agent";
      return site.http.szElement[0] ? "http" : "unknown";
    case sitehlp::SITE_KIND_FTP:
      return "ftp";
    case sitehlp::SITE_KIND_UNC:
      return "unc";
    case sitehlp::SITE_KIND_LOCAL:
      return "local";
    case sitehlp::SITE_KIND_PROXY:
      return "proxy";
  }
  return "unknown";
}

const wchar_t* nameOf(const tag_Site& site) {
  switch (site.eSiteKind) {
    case sitehlp::SITE_KIND_HTTP:
      return site.http.szName;
    case sitehlp::SITE_KIND_FTP:
      return site.ftp.szName;
    case sitehlp::SITE_KIND_UNC:
      return site.unc.szName;
    case sitehlp::SITE_KIND_LOCAL:
      return site.local.szName;
    case sitehlp::SITE_KIND_PROXY:
      return site.proxy.szName;
  }
  return L"";
}

std::vector<Field> fieldsOf(const tag_Site& site) {
  std::vector<Field> fields = {
      flag("enabled", site.bEnabled), flag("vestaSite", site.bVestaSite),
      flag("mirror", site.bMirror),   flag("local", site.bLocal),
      number("order", site.iOrder),   text("type", site.szType),
  };
  switch (site.eSiteKind) {
    case sitehlp::SITE_KIND_HTTP:
      add(fields, site.http);
      break;
    case sitehlp::SITE_KIND_FTP:
      add(fields, site.ftp);
      break;
    case sitehlp::SITE_KIND_UNC:
      add(fields, site.unc);
      break;
    case sitehlp::SITE_KIND_LOCAL:
      add(fields, site.local);
      break;
    case sitehlp::SITE_KIND_PROXY:
      add(fields, site.proxy);
      break;
  }
  return fields;
}

bool isSame(const Field& a, const Field& b) {
  const auto* left = std::get_if<const wchar_t*>(&a.value);
  const auto* right = std::get_if<const wchar_t*>(&b.value);
  if (left && right) return std::wcscmp(*left, *right) == 0;
  return a.value == b.value;
}

}  // namespace tool
