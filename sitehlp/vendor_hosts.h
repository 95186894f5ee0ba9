#ifndef SITEHLP_VENDOR_HOSTS_H
#define SITEHLP_VENDOR_HOSTS_H

namespace sitehlp {

// The default vendor update hosts; both are build settings.
extern const wchar_t* const c_vendorHttpHost;
extern const wchar_t* const c_vendorFtpHost;

}  // namespace sitehlp

#endif
