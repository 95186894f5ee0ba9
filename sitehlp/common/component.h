#ifndef SITEHLP_COMMON_COMPONENT_H
#define SITEHLP_COMMON_COMPONENT_H

namespace sitehlp {

// The component that log lines and traces of the class name.
constexpr const wchar_t* c_component = L"SiteHlp";

}  // namespace sitehlp

#endif
