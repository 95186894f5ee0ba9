#include "tests/import/merge_model.h"

#include <algorithm>
#include <cwctype>
#include <string>

using sitehlp::tag_Site;

namespace test {
namespace {

bool equalsIgnoringCase(const wchar_t* text, const std::wstring& lowerCase) {
  std::wstring lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](wchar_t c) { return static_cast<wchar_t>(std::towlower(std::wint_t(c))); });
  return lower == lowerCase;
}

bool isServerSite(const tag_Site* site) {
  return site->eSiteKind == sitehlp::SITE_KIND_HTTP &&
         equalsIgnoringCase(site->http.szElement, L"vestasite");
}

bool isTypedFallback(const tag_Site* site) { return equalsIgnoringCase(site->szType, L"fallback"); }

class Model {
 public:
  void append(const Records& source, bool skipProxy) {
    for (const tag_Site* site : source) {
      const bool known = site->eSiteKind >= 0 && site->eSiteKind <= 4;
      if (!known || (skipProxy && site->eSiteKind == sitehlp::SITE_KIND_PROXY)) continue;
      m_result.push_back(site);
      m_hasTail = true;
    }
  }

  // Returns whether management servers were added. The merge then succeeds.
  bool carryOver(const Records& source) {
    carryFallback(source);
    Records servers;
    std::copy_if(source.begin(), source.end(), std::back_inserter(servers), isServerSite);
    if (servers.empty()) return false;
    carryServers(servers);
    return true;
  }

  const Records& result() const { return m_result; }

 private:
  void carryFallback(const Records& source) {
    const auto fallback = std::find_if(source.begin(), source.end(), [](const tag_Site* site) {
      return isTypedFallback(site) && (site->eSiteKind == 0 || site->eSiteKind == 1);
    });
    if (fallback == source.end()) return;
    const auto old = std::find_if(m_result.begin(), m_result.end(), isTypedFallback);
    if (m_result.empty()) {
      m_result.push_back(*fallback);  // the tail is unchanged
    } else if (old != m_result.end()) {
      *old = *fallback;
    } else if (m_hasTail) {
      m_result.push_back(*fallback);
    }
  }

  void carryServers(const Records& servers) {
    if (m_result.empty()) {
      m_result = servers;
      return;
    }
    if (std::none_of(m_result.begin(), m_result.end(), isServerSite)) return;
    Records kept;
    bool behindRemoved = false;
    for (const tag_Site* site : m_result) {
      if (!behindRemoved && isServerSite(site)) {
        behindRemoved = true;
      } else {
        kept.push_back(site);
        behindRemoved = false;
      }
    }
    kept.insert(kept.end(), servers.begin(), servers.end());
    m_result = kept;
  }

  Records m_result;
  bool m_hasTail = false;
};

}  // namespace

MergeOutput modelMerge(const MergeInput& input) {
  Model model;
  int code = 0;
  if (!input.useSecond) {
    code = input.readResult;
    if (code >= 0 && !input.current.empty()) model.append(input.current, false);
    if (input.first && model.carryOver(*input.first)) code = 0;
  } else {
    if (input.second) model.append(*input.second, false);
    if (input.first) {
      model.append(*input.first, true);
    } else {
      code = input.readResult;
      if (code >= 0 && !input.current.empty() && model.carryOver(input.current)) code = 0;
    }
  }
  if (code < 0) return {code, {}};
  return {code, model.result()};
}

}  // namespace test
