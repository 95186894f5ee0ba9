#ifndef SITEHLP_COMMON_COMPONENT_H
#define SITEHLP_COMMON_COMPONENT_H

namespace sitehlp {

// The component of the class in log lines and traces.
constexpr const wchar_t* c_component = L"SiteHlp";

}  // namespace sitehlp

#endif
