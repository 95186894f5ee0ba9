#include "sitehlp/write/site_writers.h"

#include <algorithm>
#include <cwchar>
#include <string>

#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/common/password.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/write/field_writer.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

void replaceAll(std::wstring& text, const std::wstring& from, const wchar_t* to) {
  for (std::size_t at = text.find(from); at != std::wstring::npos; at = text.find(from)) {
    text.replace(at, from.size(), to);
  }
}

// Adds the attributes "Type" and "Name". Adds "Order" unless the site is a mirror.
void addIdentity(ElementWriter& writer, const tag_Site& site, const wchar_t* name) {
  writer.addAttribute(WX_XML_SITE_TYPE,
                      site.szType[0] != L'\0' ? site.szType : STR_SITE_TYPE_REPOSITORY);
  writer.addAttribute(WX_XML_SITE_NAME, name);
  if (wcsicmp(site.szType, STR_SITE_TYPE_MIRROR) != 0) {
    writer.addAttribute(WX_XML_SITE_ORDER, Decimal(site.iOrder));
  }
}

// Adds "host:port". The macros of the host must already be turned back.
template <std::size_t N>
void addAddress(ElementWriter& writer, const wchar_t* name, const wchar_t (&host)[N],
                std::uint32_t port) {
  wchar_t address[N + 1 + c_longestNumber];
  wchar_t* end = std::copy_n(host, std::wcslen(host), address);
  *end++ = L':';
  end = writeDecimal(port, end);
  writer.addAttribute(name, address, static_cast<std::size_t>(end - address));
}

template <typename... Fields>
void prefetch(const Fields&... fields) {
  (__builtin_prefetch(&fields), ...);
}

}  // namespace

int CSitesHelper::FormatEnvSymbols(wchar_t* buffer, unsigned int capacity) {
  const ADetailTrace trace(c_component, c_formatScope);
  if (!buffer || capacity == 0 || buffer[0] == L'\0') return 0;
  std::wstring text = buffer;
  replaceAll(text, c_agentEnvMacroStartDelimiterExpanded, c_agentEnvMacroStartDelimiter);
  replaceAll(text, c_agentEnvMacroEndDelimiterExpanded, c_agentEnvMacroEndDelimiter);
  std::wcsncpy(buffer, text.c_str(), capacity);
  buffer[capacity - 1] = L'\0';
  return 0;
}

void writePassword(ElementWriter& writer, const wchar_t* name, const wchar_t* clear) {
  std::wstring in = clear;
  const WipeAtExit<std::wstring> wipe(in);
  std::wstring out;
  EncryptDecryptPassword(in, out, true);
  writer.open(name);
  writer.addAttribute(c_encrypted, L"1");
  writer.addText(out.data(), out.size());
  writer.close();
}

void writeHttpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const ADetailTrace trace(c_component, L"Adding HTTP site");
  tag_HttpSite& http = site.http;
  const wchar_t* const name =
      http.szElement[0] != L'\0' ? http.szElement : WX_XML_SITELIST_HTTP_SITE;
  writer.open(name);
  addIdentity(writer, site, http.szName);
  writer.addAttribute(WX_XML_SITE_ENABLED, Decimal(site.bEnabled));
  writer.addAttribute(WX_XML_SITE_LOCAL, Decimal(site.bLocal));
  formatField(helper, http.szServer);
  if (http.uSecurePort != 0) writer.addAttribute(WX_XML_SSL_PORT, Decimal(http.uSecurePort));
  addAddress(writer, WX_XML_SITE_SERVER, http.szServer, http.uServerPort);

  const bool isVesta = wcsicmp(name, WX_XML_SITELIST_VESTA_SITE) == 0;
  const bool isKeystone = wcsicmp(name, WX_XML_SITELIST_KEYSTONE_SITE) == 0;
  if (isVesta || isKeystone) {
    // A management server has both addresses, even if they are empty.
    formatField(helper, http.szServerName);
    if (isVesta || http.szServerName[0] != L'\0') {
      addAddress(writer, WX_XML_SERVER_NETBIOS_NAME, http.szServerName, http.uServerNamePort);
    }
    formatField(helper, http.szServerIP);
    if (isVesta || http.szServerIP[0] != L'\0') {
      addAddress(writer, WX_XML_SITE_SERVER_IP, http.szServerIP, http.uServerIPPort);
    }
  }
  if (isVesta && http.szVersion[0] != L'\0') {
    writer.addAttribute(WX_XML_SITE_SERVER_VERSION, formatField(helper, http.szVersion));
  }

  writeChildren<c_httpFields>(helper, http, writer);
  writer.close();
}

void writeFtpSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const ADetailTrace trace(c_component, L"Adding FTP site");
  tag_FtpSite& ftp = site.ftp;
  writer.open(WX_XML_SITELIST_FTP_SITE);
  addIdentity(writer, site, ftp.szName);
  formatField(helper, ftp.szServer);
  addAddress(writer, WX_XML_SITE_SERVER, ftp.szServer, ftp.uServerPort);
  writer.addAttribute(WX_XML_SITE_ENABLED, Decimal(site.bEnabled));
  if (ftp.uSecurePort != 0) writer.addAttribute(WX_XML_SSL_PORT, Decimal(ftp.uSecurePort));
  writer.addAttribute(WX_XML_SITE_LOCAL, Decimal(site.bLocal));

  writeChildren<c_ftpFields>(helper, ftp, writer);
  writer.close();
}

void writeUncSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const ADetailTrace trace(c_component, L"Adding UNC site");
  tag_UncSite& unc = site.unc;
  writer.open(WX_XML_SITELIST_UNC_SITE);
  addIdentity(writer, site, unc.szName);
  writer.addAttribute(WX_XML_SITE_SERVER, formatField(helper, unc.szServer));
  writer.addAttribute(WX_XML_SITE_ENABLED, Decimal(site.bEnabled));
  writer.addAttribute(WX_XML_SITE_LOCAL, Decimal(site.bLocal));

  writeChildren<c_uncFields>(helper, unc, writer);
  writer.close();
}

void writeLocalSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const ADetailTrace trace(c_component, L"Adding local site");
  tag_LocalSite& local = site.local;
  writer.open(WX_XML_SITELIST_LOCAL_SITE);
  addIdentity(writer, site, local.szName);
  writer.addAttribute(WX_XML_SITE_ENABLED, Decimal(site.bEnabled));
  writer.addAttribute(WX_XML_SITE_LOCAL, Decimal(site.bLocal));
  writer.addAttribute(WX_XML_SITE_SERVER, c_localServer);

  writeChildren<c_localFields>(helper, local, writer);
  writer.close();
}

bool writeSite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const std::optional<SiteKind> kind = kindOf(site);
  if (!kind) return false;
  switch (*kind) {
    case SITE_KIND_HTTP:
      writeHttpSite(helper, site, writer);
      break;
    case SITE_KIND_FTP:
      writeFtpSite(helper, site, writer);
      break;
    case SITE_KIND_UNC:
      writeUncSite(helper, site, writer);
      break;
    case SITE_KIND_LOCAL:
      writeLocalSite(helper, site, writer);
      break;
    case SITE_KIND_PROXY:
      writeProxySite(helper, site, writer);
      break;
  }
  return true;
}

void prefetchHead(const tag_Site& site) { prefetch(site, site.pNext); }

void prefetchRecord(const tag_Site& site) {
  const std::optional<SiteKind> kind = kindOf(site);
  if (!kind) return;
  switch (*kind) {
    case SITE_KIND_HTTP: {
      const tag_HttpSite& http = site.http;
      return prefetch(http.szElement, http.szName, http.szServer, http.szServerIP, http.uServerPort,
                      http.szRelativePath, http.szServerName, http.iUseAuth, http.szUserName,
                      http.szPassword, http.szVersion, http.uSecurePort);
    }
    case SITE_KIND_FTP: {
      const tag_FtpSite& ftp = site.ftp;
      return prefetch(ftp.szName, ftp.szServer, ftp.szRelativePath, ftp.szUserName, ftp.szPassword,
                      ftp.uServerPort);
    }
    case SITE_KIND_UNC: {
      const tag_UncSite& unc = site.unc;
      return prefetch(unc.szName, unc.szServer, unc.szRelativePath, unc.szDomainName,
                      unc.szUserName, unc.szPassword, unc.iUseLoggedonUserAccount);
    }
    case SITE_KIND_LOCAL: {
      const tag_LocalSite& local = site.local;
      return prefetch(local.szName, local.szRelativePath, local.szDomainName, local.szUserName,
                      local.szPassword, local.iUseLoggedonUserAccount);
    }
    case SITE_KIND_PROXY:
      return;  // a proxy is rare and has too many fields for a prefetch
  }
}

}  // namespace sitehlp
