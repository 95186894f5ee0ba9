#ifndef TOOLS_SITELIST_EDIT_LIST_EDITOR_H
#define TOOLS_SITELIST_EDIT_LIST_EDITOR_H

#include <string>
#include <vector>

#include "platform/common/anxml.h"
#include "tools/sitelist/edit/new_value.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

// Fails if a file cannot be edited as a site list, and gives the reason. The file may be missing,
// may not be a document, may have another root or no "SiteList". The edit operations of the library
// do not give this reason.
void failIfNotEditable(const std::string& path);
// Fails if the list exceeds a limit of the library on its sites or on its elements of unknown kind.
// The edit operations refuse such a list when they write it.
void failIfOverLimit(const std::string& path);

// A list that is being edited. It has the document and, for each site element, the record that the
// library read from it. It stores every change, so that isAsMeant can compare the changes with a
// new read of the document. Handles and records are valid as long as the object and its list.
class ListEditor {
 public:
  struct Entry {
    AnXmlNode element;
    const sitehlp::tag_Site* record = nullptr;  // null for a new site
    std::vector<NewValue> changes;
    bool isRemoved = false;
  };

  // `list` must be the content of the file and outlive the object. failIfNotEditable must have
  // accepted the file. Fails when the file is no longer the same.
  explicit ListEditor(const SiteList& list);

  const SiteList& list() const { return m_list; }
  const std::string& path() const { return m_list.path; }
  std::vector<Entry>& entries() { return m_entries; }

  // Sets a field. Reads the site in the same way as the library, so an equal value in another form
  // is not changed.
  void set(Entry& entry, const NewValue& value);
  // Adds a site. Its element gets exactly these values, in this order.
  void add(const wchar_t* element, const std::vector<NewValue>& values);
  void remove(Entry& entry);

  bool isChanged() const { return m_isChanged; }
  bool write(const std::string& path) const;

  // Returns whether `after`, read from the changed document, has every change and no other
  // differences.
  bool isAsMeant(const SiteList& after) const;

 private:
  const SiteList& m_list;
  AnXml m_document;
  AnXmlNode m_siteList;
  std::vector<Entry> m_entries;
  bool m_isChanged = false;
};

}  // namespace tool

#endif
