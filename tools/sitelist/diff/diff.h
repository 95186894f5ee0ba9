#ifndef TOOLS_SITELIST_DIFF_DIFF_H
#define TOOLS_SITELIST_DIFF_DIFF_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/sitelist/diff/unread_passwords.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// A change of a file that comes with a list.
struct FileChange {
  std::string name;
  std::string change;  // "added", "changed", "removed" or "unchanged"
};

// The differences between two lists. `unread` has the passwords that cannot be decrypted. Two of
// them are the same if their encrypted texts are the same. Any other pair that includes one of them
// cannot be compared: it gives a row, which isEmpty() does not count.
class Diff {
 public:
  Diff(const SiteList& before, const SiteList& after, bool showSecrets,
       EncryptedPasswords unread = {});

  // Adds the changes of files to the differences.
  void add(const std::vector<FileChange>& files);

  // The names of the values in a row.
  static std::vector<std::string> columns();
  const std::vector<Record>& rows() const { return m_rows; }

  bool isEmpty() const { return m_rows.size() == m_incomparable; }
  // Returns the number of passwords that cannot be compared.
  std::size_t incomparable() const { return m_incomparable; }
  // Returns one row for every change. A changed site has one row for every changed field. `title`
  // and `end` are the first and last line of the table format. An empty one is omitted.
  Report report(const std::string& title, const std::string& end) const;

 private:
  struct Section {
    std::string name;  // the value in the rows
    std::size_t unchanged = 0;
    bool isUsed = false;
  };

  Section& section(const std::string& name);
  void addRow(const std::string& section, const std::string& change, Scalar kind,
              const std::string& name, Scalar field, Scalar before, Scalar after);
  void compareVersions(const SiteList& before, const SiteList& after);
  void compareSites(const std::string& section, const std::vector<const sitehlp::tag_Site*>& before,
                    const std::vector<const sitehlp::tag_Site*>& after);
  void compareFields(const std::string& section, const sitehlp::tag_Site& before,
                     const sitehlp::tag_Site& after);
  void compareCertificates(const SiteList& before, const SiteList& after);
  void comparePolicies(const SiteList& before, const SiteList& after);

  std::string m_before;
  std::string m_after;
  bool m_showSecrets;
  EncryptedPasswords m_unread;
  std::size_t m_incomparable = 0;
  std::vector<Record> m_rows;
  std::vector<Section> m_sections;
};

}  // namespace tool

#endif
