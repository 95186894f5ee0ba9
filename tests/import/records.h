#ifndef TESTS_IMPORT_RECORDS_H
#define TESTS_IMPORT_RECORDS_H

#include <initializer_list>
#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"

// Site records and lists of them for the tests.
namespace test {

// The helper with public access to its state.
class OpenHelper : public sitehlp::CSitesHelper {
 public:
  using CSitesHelper::CSitesHelper;
  using CSitesHelper::m_bUseDecryptData;
  using CSitesHelper::m_policySettings;
  using CSitesHelper::m_strCurrentFile;
  using CSitesHelper::m_strSiteListFile;
};

// A list that the test owns.
class SiteChain {
 public:
  SiteChain() = default;
  explicit SiteChain(std::initializer_list<sitehlp::tag_Site> records);
  explicit SiteChain(sitehlp::tag_Site* head) : m_head(head) {}
  SiteChain(SiteChain&& other) noexcept : m_head(other.release()) {}
  SiteChain(const SiteChain&) = delete;
  SiteChain& operator=(const SiteChain&) = delete;
  ~SiteChain();

  // Releases its list and takes ownership of another.
  void take(sitehlp::tag_Site* head) {
    clear();
    m_head = head;
  }

  void add(const sitehlp::tag_Site& record);
  sitehlp::tag_Site* head() const { return m_head; }
  sitehlp::tag_Site* last() const;
  // The output for a list that the test then owns.
  sitehlp::tag_Site** address() { return &m_head; }
  sitehlp::tag_Site* release();
  void clear();

 private:
  sitehlp::tag_Site* m_head = nullptr;
};

// Returns one allocated record, as the library allocates it.
sitehlp::tag_Site* newRecord(const sitehlp::tag_Site& content);

// Returns an enabled record of type "repository" with distinct texts in several fields.
sitehlp::tag_Site httpSite(const std::wstring& name);
sitehlp::tag_Site ftpSite(const std::wstring& name);
sitehlp::tag_Site uncSite(const std::wstring& name);
sitehlp::tag_Site localSite(const std::wstring& name);
sitehlp::tag_Site proxySite(const std::wstring& name);
// Returns a management server that satisfies every rule.
sitehlp::tag_Site serverSite(const std::wstring& name);
// The same record with another type.
sitehlp::tag_Site typed(sitehlp::tag_Site record, const std::wstring& type);

// Returns the name in the part of the record for its kind, or an empty text for an unknown kind.
std::wstring nameOf(const sitehlp::tag_Site& record);
std::vector<std::wstring> namesOf(const sitehlp::tag_Site* head);
std::vector<const sitehlp::tag_Site*> recordsOf(const sitehlp::tag_Site* head);

// Returns whether two records are equal, except for the link to the next one.
bool sameContent(const sitehlp::tag_Site& a, const sitehlp::tag_Site& b);

template <std::size_t N>
void setText(wchar_t (&field)[N], const std::wstring& text) {
  sitehlp::CSitesHelper::CopyWStr(field, text.c_str(), N);
}

}  // namespace test

#endif
