#ifndef SITEHLP_LIST_H
#define SITEHLP_LIST_H

#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/sites_helper.h"

// Helpers for programs that use the library. Everything here is inline.
namespace sitehlp {

// Refers to one record of a list, or to the end. `Site` is tag_Site or const tag_Site. The types
// are those that standard algorithms need.
template <typename Site>
class SiteIterator {
 public:
  using iterator_category = std::forward_iterator_tag;  // a list may be walked repeatedly
  using value_type = tag_Site;                          // a record
  using difference_type = std::ptrdiff_t;               // a number of records
  using pointer = Site*;                                // what operator-> returns
  using reference = Site&;                              // what operator* returns

  explicit SiteIterator(Site* site = nullptr) : m_site(site) {}  // null: the end
  Site& operator*() const { return *m_site; }                    // the record
  Site* operator->() const { return m_site; }                    // the record
  // Moves to the next record.
  SiteIterator& operator++() {
    m_site = m_site->pNext;
    return *this;
  }
  // Moves to the next record and returns the position before.
  SiteIterator operator++(int) {
    const SiteIterator before = *this;
    ++*this;
    return before;
  }
  // Whether both refer to the same record or to the end.
  bool operator==(const SiteIterator& other) const { return m_site == other.m_site; }
  // Whether they refer to different records.
  bool operator!=(const SiteIterator& other) const { return m_site != other.m_site; }

 private:
  Site* m_site;
};

// Owns a list and releases it with CSitesHelper::FreeSiteListMemory. Must not be used for a list
// that CSitesHelper::SmartReadSiteList returned with the result 0, because that list belongs to the
// class. One object must not be used by two threads at the same time.
class ListOwner {
 public:
  ListOwner() = default;                                              // owns no list
  explicit ListOwner(tag_Site* head) : m_head(head) {}                // owns this list; null: none
  ListOwner(ListOwner&& other) noexcept : m_head(other.release()) {}  // `other` then owns none
  // Releases its list and takes over the list of `other`, which then owns none.
  ListOwner& operator=(ListOwner&& other) noexcept {
    ListOwner former(std::exchange(m_head, other.release()));
    return *this;
  }
  ~ListOwner() {
    if (m_head) CSitesHelper::FreeSiteListMemory(m_head);
  }

  tag_Site* get() const { return m_head; }          // the first record; null for an empty list
  bool empty() const { return m_head == nullptr; }  // whether the list has no record

  // The output argument for an operation that returns a list. This object then owns that list.
  // Releases the list held before, so the object is empty if the operation writes nothing.
  tag_Site** out() {
    ListOwner former(release());
    return &m_head;
  }

  // Returns the list, which then belongs to the caller. This object then owns none.
  tag_Site* release() { return std::exchange(m_head, nullptr); }

  SiteIterator<tag_Site> begin() { return SiteIterator<tag_Site>(m_head); }  // the first record
  SiteIterator<tag_Site> end() { return SiteIterator<tag_Site>(); }          // after the last
  // The first record, read-only.
  SiteIterator<const tag_Site> begin() const { return SiteIterator<const tag_Site>(m_head); }
  // After the last record, read-only.
  SiteIterator<const tag_Site> end() const { return SiteIterator<const tag_Site>(); }

 private:
  tag_Site* m_head = nullptr;
};

// Returns a description of a result code with advice: one line of ASCII without a full stop. `code`
// may be any number. The caller must not release the text. Any thread.
inline const char* resultText(int code) {
  using AdvXMLParser::ReadWriteException;
  switch (code) {
    case c_success:
      return "done";
    case c_errorGeneral:
      return "the last site of the list is of unknown kind, or a file could not be read or "
             "written; see the log";
    case c_errorNoPath:
      return "no file, list or text was given, or the list has no sites; give a list that has "
             "sites";
    case c_errorNoMemory:
      return "there is not enough memory for a record; free memory and try again";
    case c_errorFileMissing:
      return "the file does not exist; check its path";
    case c_errorParse:
      return "the document is not well formed; fix it, or request it again from the server";
    case c_errorNoServerSite:
      return "the list has no management server; use a list that has one";
    case c_errorValidation:
      return "the list has faults; see the log";
    case c_errorRead:
    case ReadWriteException::READ_FAILED:
      return "the file could not be read, is too large or is not valid in its encoding; see the "
             "log";
    case c_errorWrite:
      return "the list could not be written, or is over a limit; check the directory and the log";
    case ReadWriteException::WRITE_FAILED:
      return "the file could not be written; check the permissions and the free space of its "
             "directory";
    case ReadWriteException::INVALID_ENCODING:
      return "the bytes are not valid in their encoding; request the document again from the "
             "server";
    case ReadWriteException::LIMIT_EXCEEDED:
      return "the document is over a limit; check where the document comes from";
    default:
      return "unknown result code; see the log";
  }
}

}  // namespace sitehlp

#endif
