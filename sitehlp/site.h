#ifndef SITEHLP_SITE_H
#define SITEHLP_SITE_H

#include <cstdint>

// The in-memory form of a site list: records chained through pNext. An empty list is a null head.
//
// A record is plain data and may be copied bytewise. It is one block of sizeof(tag_Site) bytes,
// allocated zero-filled with calloc and released with free. Its only pointer is pNext. Text fields
// are zero-terminated wide text (UTF-32). A capacity counts characters and includes the terminator.
//
// A site element of unknown kind is read as a record of SITE_KIND_HTTP whose szElement is empty and
// whose ports are 0. In every other record of this kind that was read, szElement is not empty.
//
// The port of an address is 80 if the address has no ":" or is missing, also for FTP. It is 0 if no
// number can be read after the ":". A sign is not a digit.
namespace sitehlp {

// The kind of record that a tag_Site holds.
enum SiteKind : std::int32_t {
  SITE_KIND_HTTP = 0,   // HttpSite, VestaSite, KeystoneSite
  SITE_KIND_FTP = 1,    // FTPSite
  SITE_KIND_UNC = 2,    // UNCSite
  SITE_KIND_LOCAL = 3,  // LocalSite
  SITE_KIND_PROXY = 4   // ProxyConfigList
};

constexpr unsigned long c_textCapacity = 260;            // of most text fields, in characters
constexpr unsigned long c_pathCapacity = 520;            // of relative paths
constexpr unsigned long c_netbiosCapacity = 261;         // of computer names
constexpr unsigned long c_serverIpCapacity = 100;        // of IP addresses
constexpr unsigned long c_exclusionListCapacity = 4001;  // of the list of exclusion hosts

// A site reached over HTTP: a repository, a management server or an agent repository.
struct tag_HttpSite {
  wchar_t szElement[c_textCapacity];        // name of the element of the site; see above
  wchar_t szName[c_textCapacity];           // display name of the site
  wchar_t szServer[c_textCapacity];         // host; an IPv6 address keeps its brackets
  wchar_t szServerIP[c_serverIpCapacity];   // IP address, in the form of szServer
  std::uint32_t uServerPort;                // port of szServer; default as above
  std::uint32_t uServerIPPort;              // port of szServerIP; default as above
  std::uint32_t uServerNamePort;            // port of szServerName; default as above
  wchar_t szRelativePath[c_pathCapacity];   // path below the server
  wchar_t szServerName[c_netbiosCapacity];  // computer name
  std::int32_t iUseAuth;                    // the number in the document, not reduced to 0 or 1
  wchar_t szUserName[c_textCapacity];       // empty: no user
  wchar_t szPassword[c_textCapacity];       // clear
  wchar_t szVersion[c_textCapacity];        // of a management server; else empty
  std::uint32_t uSecurePort;                // 0 when missing or unreadable
};

// A repository reached over FTP.
struct tag_FtpSite {
  wchar_t szName[c_textCapacity];          // display name of the site
  wchar_t szServer[c_textCapacity];        // host; an IPv6 address keeps its brackets
  wchar_t szRelativePath[c_pathCapacity];  // path below the server
  wchar_t szUserName[c_textCapacity];      // empty: no user
  wchar_t szPassword[c_textCapacity];      // clear
  std::uint32_t uServerPort;               // port of szServer; default as above
  std::uint32_t uSecurePort;               // 0 when missing or unreadable
};

// A repository on a UNC share.
struct tag_UncSite {
  wchar_t szName[c_textCapacity];          // display name of the site
  wchar_t szServer[c_textCapacity];        // host, as in the document; no port is split off
  wchar_t szRelativePath[c_pathCapacity];  // path below the server
  wchar_t szDomainName[c_textCapacity];    // of the user
  wchar_t szUserName[c_textCapacity];      // empty: no user
  wchar_t szPassword[c_textCapacity];      // clear
  std::int32_t iUseLoggedonUserAccount;    // the number in the document
  wchar_t szShareName[c_textCapacity];     // share on the server
};

// A repository in a local directory.
struct tag_LocalSite {
  wchar_t szName[c_textCapacity];          // display name of the site
  wchar_t szRelativePath[c_pathCapacity];  // the directory, which may begin with a macro
  wchar_t szDomainName[c_textCapacity];    // of the user
  wchar_t szUserName[c_textCapacity];      // empty: no user
  wchar_t szPassword[c_textCapacity];      // clear
  std::int32_t iUseLoggedonUserAccount;    // the number in the document
};

// The proxies between the agent and its sites.
struct tag_ProxySite {
  wchar_t szElement[c_textCapacity];  // the proxies that are set: "HttpSite", "FTPSite", "FtpHttp"
                                      // or empty
  wchar_t szName[c_textCapacity];     // display name of the proxies
  wchar_t szHttpProxyServer[c_textCapacity];         // host of the HTTP proxy
  std::int32_t iHttpProxyPort;                       // its port; 0 when there is none
  wchar_t szFtpProxyServer[c_textCapacity];          // host of the FTP proxy
  std::int32_t iFtpProxyPort;                        // its port; 0 when there is none
  std::int32_t bAllowUserToConfigureProxy;           // 0 or 1: the user may change the proxies
  std::int32_t bBypassLocalAddress;                  // 0 or 1: local addresses do not use a proxy
  std::int32_t bUseIEConfig;                         // 0 or 1: use the system's own proxy settings
  std::int32_t iExclusionCount;                      // number of hosts in szExclusionList when read
  wchar_t szExclusionList[c_exclusionListCapacity];  // host names separated by ";"
  std::int32_t bFtpUseAuth;                          // 0 or 1: the FTP proxy requires a user
  std::int32_t bHttpUseAuth;                         // 0 or 1: the HTTP proxy requires a user
  wchar_t szHttpProxyUser[c_textCapacity];           // user of the HTTP proxy
  wchar_t szHttpProxyPassword[c_textCapacity];       // clear
  wchar_t szFtpProxyUser[c_textCapacity];            // user of the FTP proxy
  wchar_t szFtpProxyPassword[c_textCapacity];        // clear
  std::int32_t bAlternateFtpUseAuth;                 // 0 or 1: the FTP proxy has a second user
  std::int32_t bAlternateHttpUseAuth;                // 0 or 1: the HTTP proxy has a second user
  wchar_t szAlternateHttpProxyUser[c_textCapacity];  // second user of the HTTP proxy
  wchar_t szAlternateHttpProxyPassword[c_textCapacity];  // clear
  wchar_t szAlternateFtpProxyUser[c_textCapacity];       // second user of the FTP proxy
  wchar_t szAlternateFtpProxyPassword[c_textCapacity];   // clear
};

// One entry of a list. It has the fields that are common to all kinds, and those of its kind.
struct tag_Site {
  std::int32_t bEnabled;           // 0 or 1
  std::int32_t bVestaSite;         // 1 for VestaSite and KeystoneSite, else 0
  std::int32_t bMirror;            // 1 if szType is "mirror" in any case
  std::int32_t bLocal;             // 0 or 1
  std::int32_t iOrder;             // position in the search order; 65535: fallback without an order
  std::int32_t eSiteKind;          // a SiteKind
  wchar_t szType[c_textCapacity];  // "master", "repository", "mirror", "fallback" or another text
  tag_Site* pNext;                 // null at the end
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
