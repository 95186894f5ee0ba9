#ifndef TESTS_IMPORT_RECORDS_H
#define TESTS_IMPORT_RECORDS_H

#include <initializer_list>
#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"

// Site records and lists of them for the tests.
namespace test {

// The helper with its state in the open.
class OpenHelper : public sitehlp::CSitesHelper {
 public:
  using CSitesHelper::CSitesHelper;
  using CSitesHelper::m_bUseDecryptData;
  using CSitesHelper::m_policySettings;
  using CSitesHelper::m_strCurrentFile;
  using CSitesHelper::m_strSiteListFile;
};

// A list that belongs to the test.
class SiteChain {
 public:
  SiteChain() = default;
  explicit SiteChain(std::initializer_list<sitehlp::tag_Site> records);
  explicit SiteChain(sitehlp::tag_Site* head) : m_head(head) {}
  SiteChain(SiteChain&& other) noexcept : m_head(other.release()) {}
  SiteChain(const SiteChain&) = delete;
  SiteChain& operator=(const SiteChain&) = delete;
  ~SiteChain();

  // Takes a list over in place of the one held.
  void take(sitehlp::tag_Site* head) {
    clear();
    m_head = head;
  }

  void add(const sitehlp::tag_Site& record);
  sitehlp::tag_Site* head() const { return m_head; }
  sitehlp::tag_Site* last() const;
  // Where an operation writes a list that the test owns from then on.
  sitehlp::tag_Site** address() { return &m_head; }
  sitehlp::tag_Site* release();
  void clear();

 private:
  sitehlp::tag_Site* m_head = nullptr;
};

// One record in memory of its own, as the library allocates it.
sitehlp::tag_Site* newRecord(const sitehlp::tag_Site& content);

// Enabled, of type "repository", with distinct text in several fields.
sitehlp::tag_Site httpSite(const std::wstring& name);
sitehlp::tag_Site ftpSite(const std::wstring& name);
sitehlp::tag_Site uncSite(const std::wstring& name);
sitehlp::tag_Site localSite(const std::wstring& name);
sitehlp::tag_Site proxySite(const std::wstring& name);
// A management server that passes every rule for one.
sitehlp::tag_Site serverSite(const std::wstring& name);
// The same record with another type.
sitehlp::tag_Site typed(sitehlp::tag_Site record, const std::wstring& type);

// The name in the part of the record that belongs to its kind; empty for an unknown kind.
std::wstring nameOf(const sitehlp::tag_Site& record);
std::vector<std::wstring> namesOf(const sitehlp::tag_Site* head);
std::vector<const sitehlp::tag_Site*> recordsOf(const sitehlp::tag_Site* head);

// Whether all but the link is the same.
bool sameContent(const sitehlp::tag_Site& a, const sitehlp::tag_Site& b);

template <std::size_t N>
void setText(wchar_t (&field)[N], const std::wstring& text) {
  sitehlp::CSitesHelper::CopyWStr(field, text.c_str(), N);
}

}  // namespace test

#endif
