#ifndef TOOLS_SITELIST_EDIT_LIST_EDITOR_H
#define TOOLS_SITELIST_EDIT_LIST_EDITOR_H

#include <string>
#include <vector>

#include "platform/common/anxml.h"
#include "tools/sitelist/edit/new_value.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

// Fails when a file cannot be edited as a site list: it is missing or no document, its root is not
// that of a site list, or it has no "SiteList". The operations that edit documents only say no.
void failIfNotEditable(const std::string& path);

// A list that is being edited: its document and, to each site element, the record that the library
// read from it. It notes every change, so that a reading of the changed document can be held
// against what was meant. Handles and records stay valid as long as the object and its list.
class ListEditor {
 public:
  struct Entry {
    AnXmlNode element;
    const sitehlp::tag_Site* record = nullptr;  // null for a site that was added
    std::vector<NewValue> changes;
    bool isRemoved = false;
  };

  // `list` was read from the file; it outlives the object. Fails when the file cannot be edited.
  explicit ListEditor(const SiteList& list);

  const std::string& path() const { return m_list.path; }
  std::vector<Entry>& entries() { return m_entries; }

  // Gives a field its value. Reads the site as the library does, so that nothing changes when the
  // value is there in another form.
  void set(Entry& entry, const NewValue& value);
  // Adds a site with these values, which are all that its element gets, in their order.
  void add(const wchar_t* element, const std::vector<NewValue>& values);
  void remove(Entry& entry);

  bool isChanged() const { return m_isChanged; }
  bool write(const std::string& path) const;

  // Whether a reading of the changed document holds every change and, in all other sites, nothing
  // new.
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
