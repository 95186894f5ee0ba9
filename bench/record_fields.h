#ifndef BENCH_RECORD_FIELDS_H
#define BENCH_RECORD_FIELDS_H

#include "sitehlp/site.h"

// Every field of a record, in order: `text` is called with each text field, `number` with each
// other.
namespace bench {

template <typename Site, typename Text, typename Number>
void visitHttp(Site& s, Text text, Number number) {
  text(s.szElement), text(s.szName), text(s.szServer), text(s.szServerIP);
  number(s.uServerPort), number(s.uServerIPPort), number(s.uServerNamePort);
  text(s.szRelativePath), text(s.szServerName);
  number(s.iUseAuth);
  text(s.szUserName), text(s.szPassword), text(s.szVersion);
  number(s.uSecurePort);
}

template <typename Site, typename Text, typename Number>
void visitFtp(Site& s, Text text, Number number) {
  text(s.szName), text(s.szServer), text(s.szRelativePath), text(s.szUserName), text(s.szPassword);
  number(s.uServerPort), number(s.uSecurePort);
}

template <typename Site, typename Text, typename Number>
void visitUnc(Site& s, Text text, Number number) {
  text(s.szName), text(s.szServer), text(s.szRelativePath), text(s.szDomainName);
  text(s.szUserName), text(s.szPassword);
  number(s.iUseLoggedonUserAccount);
  text(s.szShareName);
}

template <typename Site, typename Text, typename Number>
void visitLocal(Site& s, Text text, Number number) {
  text(s.szName), text(s.szRelativePath), text(s.szDomainName);
  text(s.szUserName), text(s.szPassword);
  number(s.iUseLoggedonUserAccount);
}

template <typename Site, typename Text, typename Number>
void visitProxy(Site& s, Text text, Number number) {
  text(s.szElement), text(s.szName);
  text(s.szHttpProxyServer), number(s.iHttpProxyPort);
  text(s.szFtpProxyServer), number(s.iFtpProxyPort);
  number(s.bAllowUserToConfigureProxy), number(s.bBypassLocalAddress), number(s.bUseIEConfig);
  number(s.iExclusionCount);
  text(s.szExclusionList);
  number(s.bFtpUseAuth), number(s.bHttpUseAuth);
  text(s.szHttpProxyUser), text(s.szHttpProxyPassword);
  text(s.szFtpProxyUser), text(s.szFtpProxyPassword);
  number(s.bAlternateFtpUseAuth), number(s.bAlternateHttpUseAuth);
  text(s.szAlternateHttpProxyUser), text(s.szAlternateHttpProxyPassword);
  text(s.szAlternateFtpProxyUser), text(s.szAlternateFtpProxyPassword);
}

template <typename Site, typename Text, typename Number>
void visitFields(Site& s, Text text, Number number) {
  number(s.bEnabled), number(s.bVestaSite), number(s.bMirror), number(s.bLocal);
  number(s.iOrder), number(s.eSiteKind);
  text(s.szType);
  switch (s.eSiteKind) {
    case sitehlp::SITE_KIND_FTP:
      return visitFtp(s.ftp, text, number);
    case sitehlp::SITE_KIND_UNC:
      return visitUnc(s.unc, text, number);
    case sitehlp::SITE_KIND_LOCAL:
      return visitLocal(s.local, text, number);
    case sitehlp::SITE_KIND_PROXY:
      return visitProxy(s.proxy, text, number);
    default:
      return visitHttp(s.http, text, number);
  }
}

}  // namespace bench

#endif
