#include "sitehlp/vendor_hosts.h"

#define SITEHLP_WIDE(text) L"" text

namespace sitehlp {

const wchar_t* const c_vendorHttpHost = SITEHLP_WIDE(SITEHLP_VENDOR_HTTP_HOST);
const wchar_t* const c_vendorFtpHost = SITEHLP_WIDE(SITEHLP_VENDOR_FTP_HOST);

}  // namespace sitehlp
