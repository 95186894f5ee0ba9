#ifndef SITEHLP_SITE_H
#define SITEHLP_SITE_H

#include <cstdint>

// The in-memory form of a site list: records chained through pNext, an empty list is a null head.
//
// A record is plain data. It is allocated zero-filled with calloc (one block of sizeof(tag_Site))
// and released with free, may be copied bytewise, and holds no pointer but pNext. Text fields are
// zero-terminated wide text (UTF-32); a capacity counts characters and includes the terminator.
namespace sitehlp {

// Which of the per-kind records a tag_Site holds.
enum SiteKind : std::int32_t {
  SITE_KIND_HTTP = 0,   // HttpSite, VestaSite, KeystoneSite
  SITE_KIND_FTP = 1,    // FTPSite
  SITE_KIND_UNC = 2,    // UNCSite
  SITE_KIND_LOCAL = 3,  // LocalSite
  SITE_KIND_PROXY = 4   // ProxyConfigList
};

constexpr unsigned long c_textCapacity = 260;
constexpr unsigned long c_pathCapacity = 520;
constexpr unsigned long c_netbiosCapacity = 261;
constexpr unsigned long c_serverIpCapacity = 100;
constexpr unsigned long c_exclusionListCapacity = 4001;

struct tag_HttpSite {
  wchar_t szElement[c_textCapacity];  // the element that the site came from
  wchar_t szName[c_textCapacity];
  wchar_t szServer[c_textCapacity];
  wchar_t szServerIP[c_serverIpCapacity];
  std::uint32_t uServerPort;      // came with szServer
  std::uint32_t uServerIPPort;    // came with szServerIP
  std::uint32_t uServerNamePort;  // came with szServerName
  wchar_t szRelativePath[c_pathCapacity];
  wchar_t szServerName[c_netbiosCapacity];  // NetBIOS name
  std::int32_t iUseAuth;                    // as written, not reduced to 0 or 1
  wchar_t szUserName[c_textCapacity];
  wchar_t szPassword[c_textCapacity];  // clear
  wchar_t szVersion[c_textCapacity];   // of a management server; else empty
  std::uint32_t uSecurePort;           // 0 when there is none
};

struct tag_FtpSite {
  wchar_t szName[c_textCapacity];
  wchar_t szServer[c_textCapacity];
  wchar_t szRelativePath[c_pathCapacity];
  wchar_t szUserName[c_textCapacity];
  wchar_t szPassword[c_textCapacity];  // clear
  std::uint32_t uServerPort;
  std::uint32_t uSecurePort;
};

struct tag_UncSite {
  wchar_t szName[c_textCapacity];
  wchar_t szServer[c_textCapacity];  // as written, no port
  wchar_t szRelativePath[c_pathCapacity];
  wchar_t szDomainName[c_textCapacity];
  wchar_t szUserName[c_textCapacity];
  wchar_t szPassword[c_textCapacity];    // clear
  std::int32_t iUseLoggedonUserAccount;  // as written
  wchar_t szShareName[c_textCapacity];
};

struct tag_LocalSite {
  wchar_t szName[c_textCapacity];
  wchar_t szRelativePath[c_pathCapacity];
  wchar_t szDomainName[c_textCapacity];
  wchar_t szUserName[c_textCapacity];
  wchar_t szPassword[c_textCapacity];    // clear
  std::int32_t iUseLoggedonUserAccount;  // as written
};

struct tag_ProxySite {
  wchar_t szElement[c_textCapacity];  // "HttpSite", "FTPSite", "FtpHttp" or empty: proxies given
  wchar_t szName[c_textCapacity];
  wchar_t szHttpProxyServer[c_textCapacity];
  std::int32_t iHttpProxyPort;
  wchar_t szFtpProxyServer[c_textCapacity];
  std::int32_t iFtpProxyPort;
  std::int32_t bAllowUserToConfigureProxy;
  std::int32_t bBypassLocalAddress;
  std::int32_t bUseIEConfig;
  std::int32_t iExclusionCount;
  wchar_t szExclusionList[c_exclusionListCapacity];  // host names with ";" between them
  std::int32_t bFtpUseAuth;
  std::int32_t bHttpUseAuth;
  wchar_t szHttpProxyUser[c_textCapacity];
  wchar_t szHttpProxyPassword[c_textCapacity];  // clear
  wchar_t szFtpProxyUser[c_textCapacity];
  wchar_t szFtpProxyPassword[c_textCapacity];  // clear
  std::int32_t bAlternateFtpUseAuth;
  std::int32_t bAlternateHttpUseAuth;
  wchar_t szAlternateHttpProxyUser[c_textCapacity];
  wchar_t szAlternateHttpProxyPassword[c_textCapacity];  // clear
  wchar_t szAlternateFtpProxyUser[c_textCapacity];
  wchar_t szAlternateFtpProxyPassword[c_textCapacity];  // clear
};

struct tag_Site {
  std::int32_t bEnabled;    // 0 or 1
  std::int32_t bVestaSite;  // 1 for VestaSite and KeystoneSite, else 0
  std::int32_t bMirror;     // 1 when szType is "mirror" in any case
  std::int32_t bLocal;      // 0 or 1
  std::int32_t iOrder;      // position in the search order; 65535: a fallback without an order
  std::int32_t eSiteKind;   // a SiteKind
  wchar_t szType[c_textCapacity];
  tag_Site* pNext;  // null at the end
  union {
    tag_HttpSite http;    // SITE_KIND_HTTP
    tag_FtpSite ftp;      // SITE_KIND_FTP
    tag_UncSite unc;      // SITE_KIND_UNC
    tag_LocalSite local;  // SITE_KIND_LOCAL
    tag_ProxySite proxy;  // SITE_KIND_PROXY
  };
};

}  // namespace sitehlp

#endif
