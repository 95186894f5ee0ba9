#ifndef SITEHLP_FIELDS_H
#define SITEHLP_FIELDS_H

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "sitehlp/field_row.h"
#include "sitehlp/site.h"
#include "sitehlp/xmlschema/sitelist.h"

// The fields of the records, one row for each field. Reading, writing, wiping and the tool use
// these rows. The rows of a table are in the order in which they are written. A property of only
// one or two fields is in the code that needs it, not in a column.
namespace sitehlp {

namespace fields {

namespace xml = korvel_com::orb::xmlschema::sitelist;
using Form = FieldForm;
using Place = FieldPlace;

// The fields of every kind of site. The tables below determine their order.
inline constexpr auto c_enabled =
    field("enabled", &xml::WX_XML_SITE_ENABLED, Place::Attribute, Form::Flag, &tag_Site::bEnabled,
          Written::Always, L"1", 0, "Whether the site may be used.");
inline constexpr auto c_local =
    field("local", &xml::WX_XML_SITE_LOCAL, Place::Attribute, Form::Flag, &tag_Site::bLocal,
          Written::Always, L"0", 0, "Whether only this agent uses the site.");
inline constexpr auto c_order =
    field("order", &xml::WX_XML_SITE_ORDER, Place::Attribute, Form::Number, &tag_Site::iOrder,
          Written::Always, L"", 0, "Order number; 65535 for a fallback without one.");
inline constexpr auto c_type = field("type", &xml::WX_XML_SITE_TYPE, Place::Attribute, Form::Text,
                                     &tag_Site::szType, Written::Always, L"repository", 0,
                                     "Role of the site, as in the document: master, repository, "
                                     "mirror, fallback, remediation or another text.");
inline constexpr std::tuple c_head{
    c_enabled,
    field("vestaSite", nullptr, Place::None, Form::Flag, &tag_Site::bVestaSite, Written::Never, L"",
          0, "Whether the site is a management server or an agent repository."),
    field("mirror", nullptr, Place::None, Form::Flag, &tag_Site::bMirror, Written::Never, L"", 0,
          "Whether the type of the site is mirror."),
    c_local,
    c_order,
    c_type,
};

// Fields that several kinds have.
template <typename Record>
constexpr auto name() {
  return field("name", &xml::WX_XML_SITE_NAME, Place::Attribute, Form::Text, &Record::szName,
               Written::Always, L"", 1, "Name of the site.");
}
template <typename Record>
constexpr auto element() {
  return field("element", nullptr, Place::None, Form::Text, &Record::szElement, Written::Never, L"",
               0,
               "Name of the element in the document. For proxy settings: HttpSite, FTPSite or "
               "FtpHttp for the proxies that are set, or empty.");
}
template <typename Record>
constexpr auto server(Place place, Form form) {
  return field("server", &xml::WX_XML_SITE_SERVER, place, form, &Record::szServer, Written::Always,
               L"", 1, "Host.");
}
template <typename Record>
constexpr auto serverPort(const wchar_t* initial) {
  return field("serverPort", &xml::WX_XML_SITE_SERVER, Place::Port, Form::Port,
               &Record::uServerPort, Written::Always, initial, 1, "Port of the host.");
}
template <typename Record>
constexpr auto securePort() {
  return field("securePort", &xml::WX_XML_SSL_PORT, Place::Attribute, Form::PortOrNone,
               &Record::uSecurePort, Written::WhenSet, L"0", 4,
               "Port for secure connections; 0 for none.");
}
template <typename Record>
constexpr auto relativePath() {
  return field("relativePath", &xml::WX_XML_SITE_RELATIVEPATH, Place::Child, Form::MacroText,
               &Record::szRelativePath, Written::Always, L"", 5,
               "Path on the server, on the share or on this machine.");
}
template <typename Record>
constexpr auto useLoggedonUserAccount() {
  return field("useLoggedonUserAccount", &xml::WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT, Place::Child,
               Form::Number, &Record::iUseLoggedonUserAccount, Written::Always, L"0", 6,
               "Number in the document: 0 if the account of the logged-on user is not used.");
}
template <typename Record>
constexpr auto domainName() {
  return field("domainName", &xml::WX_XML_SITE_DOMAIN_NAME, Place::Child, Form::MacroText,
               &Record::szDomainName, Written::Always, L"", 5, "Domain of the user.");
}
template <typename Record>
constexpr auto userName() {
  return field("userName", &xml::WX_XML_SITE_USER_NAME, Place::Child, Form::Text,
               &Record::szUserName, Written::Always, L"", 5, "User name.");
}
template <typename Record>
constexpr auto password() {
  return field("password", &xml::WX_XML_SITE_PASSWORD, Place::Child, Form::Password,
               &Record::szPassword, Written::Always, L"", 5, "Password.");
}

inline constexpr std::tuple c_httpAttributes{
    element<tag_HttpSite>(),
    c_type,
    name<tag_HttpSite>(),
    c_order,
    c_enabled,
    c_local,
    securePort<tag_HttpSite>(),
    server<tag_HttpSite>(Place::Host, Form::Address),
    serverPort<tag_HttpSite>(L"80"),
    field("serverName", &xml::WX_XML_SERVER_NETBIOS_NAME, Place::Host, Form::NetbiosName,
          &tag_HttpSite::szServerName, Written::ByElement, L"", 3, "Computer name of the host."),
    field("serverNamePort", &xml::WX_XML_SERVER_NETBIOS_NAME, Place::Port, Form::Port,
          &tag_HttpSite::uServerNamePort, Written::ByElement, L"80", 3,
          "Port of the computer name."),
    field("serverIP", &xml::WX_XML_SITE_SERVER_IP, Place::Host, Form::Address,
          &tag_HttpSite::szServerIP, Written::ByElement, L"", 2, "IP address of the host."),
    field("serverIPPort", &xml::WX_XML_SITE_SERVER_IP, Place::Port, Form::Port,
          &tag_HttpSite::uServerIPPort, Written::ByElement, L"80", 2, "Port of the IP address."),
};
// Only for a management server.
inline constexpr auto c_version =
    field("version", &xml::WX_XML_SITE_SERVER_VERSION, Place::Attribute, Form::MacroText,
          &tag_HttpSite::szVersion, Written::WhenSet, L"", 6, "Version of the management server.");
inline constexpr std::tuple c_httpChildren{
    relativePath<tag_HttpSite>(),
    field("useAuth", &xml::WX_XML_HTTPSITE_USE_AUTH, Place::Child, Form::Number,
          &tag_HttpSite::iUseAuth, Written::Always, L"0", 5,
          "Number in the document: 0 if no user name and password are needed."),
    userName<tag_HttpSite>(),
    password<tag_HttpSite>(),
};

// A flag in a child element of a proxy configuration.
constexpr auto proxyFlag(const char* name, const wchar_t* const* xmlName,
                         std::int32_t tag_ProxySite::*member, int shown, const char* help) {
  return field(name, xmlName, Place::Child, Form::Flag, member, Written::Always, L"0", shown, help);
}
// A text or password in a child element of a proxy configuration.
constexpr auto proxyText(const char* name, const wchar_t* const* xmlName, Form form,
                         wchar_t (tag_ProxySite::*member)[c_textCapacity], int shown,
                         const char* help) {
  return field(name, xmlName, Place::Child, form, member, Written::Always, L"", shown, help);
}

}  // namespace fields

// The tables. The table of the management server has all fields of tag_HttpSite.
inline constexpr auto c_httpFields =
    std::tuple_cat(fields::c_httpAttributes, fields::c_httpChildren);
inline constexpr auto c_serverFields =
    std::tuple_cat(fields::c_httpAttributes, std::tuple{fields::c_version}, fields::c_httpChildren);
inline constexpr auto c_ftpFields = std::tuple{
    fields::c_type,
    fields::name<tag_FtpSite>(),
    fields::c_order,
    fields::server<tag_FtpSite>(FieldPlace::Host, FieldForm::Address),
    fields::serverPort<tag_FtpSite>(L"21"),
    fields::c_enabled,
    fields::securePort<tag_FtpSite>(),
    fields::c_local,
    fields::relativePath<tag_FtpSite>(),
    fields::userName<tag_FtpSite>(),
    fields::password<tag_FtpSite>(),
};
inline constexpr auto c_uncFields = std::tuple{
    fields::c_type,
    fields::name<tag_UncSite>(),
    fields::c_order,
    fields::server<tag_UncSite>(FieldPlace::Attribute, FieldForm::MacroText),
    fields::c_enabled,
    fields::c_local,
    field("shareName", &fields::xml::WX_XML_UNCSITE_SHARENAME, FieldPlace::Child, FieldForm::Text,
          &tag_UncSite::szShareName, Written::Always, L"", 4, "Name of the UNC share."),
    fields::relativePath<tag_UncSite>(),
    fields::useLoggedonUserAccount<tag_UncSite>(),
    fields::domainName<tag_UncSite>(),
    fields::userName<tag_UncSite>(),
    fields::password<tag_UncSite>(),
};
inline constexpr auto c_localFields = std::tuple{
    fields::c_type,
    fields::name<tag_LocalSite>(),
    fields::c_order,
    fields::c_enabled,
    fields::c_local,
    fields::relativePath<tag_LocalSite>(),
    fields::useLoggedonUserAccount<tag_LocalSite>(),
    fields::domainName<tag_LocalSite>(),
    fields::userName<tag_LocalSite>(),
    fields::password<tag_LocalSite>(),
};
inline constexpr auto c_proxyFields = std::tuple{
    fields::element<tag_ProxySite>(),
    fields::name<tag_ProxySite>(),
    field("useIEConfig", &fields::xml::WX_XML_PROXY_USE_IE_CONFIG, FieldPlace::Attribute,
          FieldForm::Flag, &tag_ProxySite::bUseIEConfig, Written::WhenSet, L"0", 1,
          "Whether the system's own proxy settings are used."),
    field("httpProxyServer", &fields::xml::WX_XML_PROXY_HTTP_PROXY_SERVER, FieldPlace::Attribute,
          FieldForm::MacroText, &tag_ProxySite::szHttpProxyServer, Written::WhenSet, L"", 3,
          "Host of the HTTP proxy, or empty."),
    field("httpProxyPort", &fields::xml::WX_XML_PROXY_HTTP_PROXY_PORT, FieldPlace::Attribute,
          FieldForm::PortOrNone, &tag_ProxySite::iHttpProxyPort, Written::WhenSet, L"0", 3,
          "Port of the HTTP proxy."),
    field("ftpProxyServer", &fields::xml::WX_XML_PROXY_FTP_PROXY_SERVER, FieldPlace::Attribute,
          FieldForm::MacroText, &tag_ProxySite::szFtpProxyServer, Written::WhenSet, L"", 4,
          "Host of the FTP proxy, or empty."),
    field("ftpProxyPort", &fields::xml::WX_XML_PROXY_FTP_PROXY_PORT, FieldPlace::Attribute,
          FieldForm::PortOrNone, &tag_ProxySite::iFtpProxyPort, Written::WhenSet, L"0", 4,
          "Port of the FTP proxy."),
    fields::proxyFlag("allowUserToConfigureProxy",
                      &fields::xml::WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY,
                      &tag_ProxySite::bAllowUserToConfigureProxy, 1,
                      "Whether the user may change the proxy settings."),
    fields::proxyFlag("bypassLocalAddress", &fields::xml::WX_XML_PROXY_BYPASSLOCALADDR,
                      &tag_ProxySite::bBypassLocalAddress, 1,
                      "Whether local addresses bypass the proxy."),
    field("exclusionCount", nullptr, FieldPlace::None, FieldForm::Number,
          &tag_ProxySite::iExclusionCount, Written::Never, L"", 2,
          "Number of hosts that bypass the proxy."),
    field("exclusionList", &fields::xml::WX_XML_PROXY_EXCLUSIONLIST, FieldPlace::ExclusionHosts,
          FieldForm::Hosts, &tag_ProxySite::szExclusionList, Written::Always, L"", 2,
          "Hosts that bypass the proxy."),
    fields::proxyFlag("ftpUseAuth", &fields::xml::WX_XML_PROXY_FTP_USEAUTH,
                      &tag_ProxySite::bFtpUseAuth, 4,
                      "Whether the FTP proxy needs user name and password."),
    fields::proxyFlag("httpUseAuth", &fields::xml::WX_XML_PROXY_HTTP_USEAUTH,
                      &tag_ProxySite::bHttpUseAuth, 3,
                      "Whether the HTTP proxy needs user name and password."),
    fields::proxyText("httpProxyUser", &fields::xml::WX_XML_HTTP_PROXY_PROXYUSERNAME,
                      FieldForm::Text, &tag_ProxySite::szHttpProxyUser, 3,
                      "User name for the HTTP proxy."),
    fields::proxyText("httpProxyPassword", &fields::xml::WX_XML_HTTP_PROXY_PROXYPASSWORD,
                      FieldForm::Password, &tag_ProxySite::szHttpProxyPassword, 3,
                      "Password for the HTTP proxy."),
    fields::proxyText("ftpProxyUser", &fields::xml::WX_XML_FTP_PROXY_PROXYUSERNAME, FieldForm::Text,
                      &tag_ProxySite::szFtpProxyUser, 4, "User name for the FTP proxy."),
    fields::proxyText("ftpProxyPassword", &fields::xml::WX_XML_FTP_PROXY_PROXYPASSWORD,
                      FieldForm::Password, &tag_ProxySite::szFtpProxyPassword, 4,
                      "Password for the FTP proxy."),
    fields::proxyFlag("alternateFtpUseAuth", &fields::xml::WX_XML_PROXY_ALT_FTP_USEAUTH,
                      &tag_ProxySite::bAlternateFtpUseAuth, 4,
                      "Whether there is a second account for the FTP proxy."),
    fields::proxyFlag("alternateHttpUseAuth", &fields::xml::WX_XML_PROXY_ALT_HTTP_USEAUTH,
                      &tag_ProxySite::bAlternateHttpUseAuth, 3,
                      "Whether there is a second account for the HTTP proxy."),
    fields::proxyText("alternateHttpProxyUser", &fields::xml::WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME,
                      FieldForm::Text, &tag_ProxySite::szAlternateHttpProxyUser, 3,
                      "User name of the second account for the HTTP proxy."),
    fields::proxyText("alternateHttpProxyPassword",
                      &fields::xml::WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD, FieldForm::Password,
                      &tag_ProxySite::szAlternateHttpProxyPassword, 3,
                      "Password of the second account for the HTTP proxy."),
    fields::proxyText("alternateFtpProxyUser", &fields::xml::WX_XML_FTP_PROXY_ALT_PROXYUSERNAME,
                      FieldForm::Text, &tag_ProxySite::szAlternateFtpProxyUser, 4,
                      "User name of the second account for the FTP proxy."),
    fields::proxyText("alternateFtpProxyPassword", &fields::xml::WX_XML_FTP_PROXY_ALT_PROXYPASSWORD,
                      FieldForm::Password, &tag_ProxySite::szAlternateFtpProxyPassword, 4,
                      "Password of the second account for the FTP proxy."),
};

namespace fields {

// Returns the total size of the rows whose record type is `Record`. It is the size of the record,
// because the record has no padding.
template <typename Record, typename... Rows>
constexpr std::size_t sizeOf(const std::tuple<Rows...>&) {
  return ((std::is_same_v<typename Rows::RecordType, Record> ? Rows::size : 0) + ...);
}

// A member without a row does not compile.
static_assert(sizeOf<tag_Site>(c_head) + sizeof(tag_Site::eSiteKind) == offsetof(tag_Site, pNext));
static_assert(sizeOf<tag_HttpSite>(c_serverFields) == sizeof(tag_HttpSite));
static_assert(sizeOf<tag_FtpSite>(c_ftpFields) == sizeof(tag_FtpSite));
static_assert(sizeOf<tag_UncSite>(c_uncFields) == sizeof(tag_UncSite));
static_assert(sizeOf<tag_LocalSite>(c_localFields) == sizeof(tag_LocalSite));
static_assert(sizeOf<tag_ProxySite>(c_proxyFields) == sizeof(tag_ProxySite));

}  // namespace fields

// One row as a constant expression.
template <const auto& Table, std::size_t Index>
struct FieldAt {
  static constexpr const auto& row = std::get<Index>(Table);
  using Record = typename std::decay_t<decltype(row)>::RecordType;
};

namespace fields {

template <const auto& Table, typename Visit, std::size_t... Index>
constexpr void each(Visit& visit, std::index_sequence<Index...>) {
  (visit(FieldAt<Table, Index>()), ...);
}

}  // namespace fields

// Calls visit(FieldAt) for every row. The calls are unrolled at compile time, because a loop makes
// reading 6 to 8 % slower.
template <const auto& Table, typename Visit>
constexpr void eachField(Visit&& visit) {
  fields::each<Table>(visit,
                      std::make_index_sequence<std::tuple_size_v<std::decay_t<decltype(Table)>>>());
}

inline constexpr SiteKind c_siteKinds[] = {SITE_KIND_HTTP, SITE_KIND_FTP, SITE_KIND_UNC,
                                           SITE_KIND_LOCAL, SITE_KIND_PROXY};

// Calls visit(row, value) for every field of a record by its kind, beginning with the fields of all
// kinds. `Site` is tag_Site or const tag_Site. For a record of unknown kind, calls it only for the
// fields of all kinds.
template <typename Site, typename Visit>
void eachFieldOf(Site& site, Visit&& visit) {
  const auto visitAll = [&](auto& record, const auto&... rows) {
    const auto visitOwn = [&](const auto& row) {
      using Record = typename std::decay_t<decltype(row)>::RecordType;
      if constexpr (std::is_same_v<Record, std::decay_t<decltype(record)>>) {
        visit(row, record.*row.member);
      }
    };
    (visitOwn(rows), ...);
  };
  const auto visitTable = [&](auto& record, const auto& table) {
    std::apply([&](const auto&... rows) { visitAll(record, rows...); }, table);
  };
  visitTable(site, fields::c_head);
  switch (static_cast<SiteKind>(site.eSiteKind)) {
    case SITE_KIND_HTTP:
      return visitTable(site.http, c_serverFields);
    case SITE_KIND_FTP:
      return visitTable(site.ftp, c_ftpFields);
    case SITE_KIND_UNC:
      return visitTable(site.unc, c_uncFields);
    case SITE_KIND_LOCAL:
      return visitTable(site.local, c_localFields);
    case SITE_KIND_PROXY:
      return visitTable(site.proxy, c_proxyFields);
  }
}

}  // namespace sitehlp

#endif
