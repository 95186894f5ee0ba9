#include "sitehlp/sites_helper.h"

namespace sitehlp {

bool CSitesHelper::GetPolicySetting(const std::wstring& name, std::wstring& value) {
  const auto found = m_policySettings.find(name);
  if (found == m_policySettings.end()) return false;
  value = found->second;
  return true;
}

void CSitesHelper::SetPolicySetting(const std::wstring& name, const std::wstring& value) {
  m_policySettings[name] = value;
}

}  // namespace sitehlp
