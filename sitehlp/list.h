#ifndef SITEHLP_LIST_H
#define SITEHLP_LIST_H

#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/sites_helper.h"

// Help for programs that use the library. Everything here is inline.
namespace sitehlp {

// Stands on one record of a list, or behind the last one. `Site` is tag_Site or const tag_Site. The
// types are those that standard algorithms need.
template <typename Site>
class SiteIterator {
 public:
  using iterator_category = std::forward_iterator_tag;  // forward, as often as wanted
  using value_type = tag_Site;                          // a record
  using difference_type = std::ptrdiff_t;               // a number of records
  using pointer = Site*;                                // what operator-> returns
  using reference = Site&;                              // what operator* returns

  explicit SiteIterator(Site* site = nullptr) : m_site(site) {}  // null: behind the last record
  Site& operator*() const { return *m_site; }                    // that record
  Site* operator->() const { return m_site; }                    // the same
  // Goes to the next record.
  SiteIterator& operator++() {
    m_site = m_site->pNext;
    return *this;
  }
  // The same; returns where it stood.
  SiteIterator operator++(int) {
    const SiteIterator before = *this;
    ++*this;
    return before;
  }
  // Whether the two stand in the same place.
  bool operator==(const SiteIterator& other) const { return m_site == other.m_site; }
  // Whether the two stand in different places.
  bool operator!=(const SiteIterator& other) const { return m_site != other.m_site; }

 private:
  Site* m_site;
};

// Owns a list and gives it to CSitesHelper::FreeSiteListMemory in the end. Never use it for a list
// of CSitesHelper::SmartReadSiteList that came with the result 0: that one belongs to the class.
// One object is used by one thread at a time.
class ListOwner {
 public:
  ListOwner() = default;                                // owns no list
  explicit ListOwner(tag_Site* head) : m_head(head) {}  // takes a list over; null for none
  ListOwner(ListOwner&& other) noexcept : m_head(other.release()) {}  // `other` owns none then
  // Releases the list held and takes over that of `other`, which owns none then.
  ListOwner& operator=(ListOwner&& other) noexcept {
    ListOwner former(std::exchange(m_head, other.release()));
    return *this;
  }
  ~ListOwner() {
    if (m_head) CSitesHelper::FreeSiteListMemory(m_head);
  }

  tag_Site* get() const { return m_head; }          // the first record; null for an empty list
  bool empty() const { return m_head == nullptr; }  // whether there is no record

  // Where an operation writes a list that this object owns from then on. The list held before is
  // released, so an operation that writes nothing leaves an empty list.
  tag_Site** out() {
    ListOwner former(release());
    return &m_head;
  }

  // Hands the list to the caller, who owns it from then on.
  tag_Site* release() { return std::exchange(m_head, nullptr); }

  SiteIterator<tag_Site> begin() { return SiteIterator<tag_Site>(m_head); }  // the first record
  SiteIterator<tag_Site> end() { return SiteIterator<tag_Site>(); }          // behind the last
  // The same, for reading.
  SiteIterator<const tag_Site> begin() const { return SiteIterator<const tag_Site>(m_head); }
  // The same, for reading.
  SiteIterator<const tag_Site> end() const { return SiteIterator<const tag_Site>(); }

 private:
  tag_Site* m_head = nullptr;
};

// What a result code says, and what to do about it: one line of ASCII without a full stop, valid as
// long as the process. Any number may be asked about. Any thread.
inline const char* resultText(int code) {
  using AdvXMLParser::ReadWriteException;
  switch (code) {
    case c_success:
      return "done";
    case c_errorGeneral:
      return "the last element of the list is unknown, or a step failed; see the log";
    case c_errorNoPath:
      return "no file, list or text was given; give one";
    case c_errorNoMemory:
      return "there is no memory for a record; free memory and try again";
    case c_errorFileMissing:
      return "the file does not exist; check its path";
    case c_errorParse:
      return "the document is not well formed; correct it, or have it sent again";
    case c_errorNoServerSite:
      return "the list has no management server; use a list that has one";
    case c_errorValidation:
      return "the list breaks a rule; the log names every fault";
    case c_errorRead:
    case ReadWriteException::READ_FAILED:
      return "the file could not be read or is too large; check that it is a regular file that "
             "you may read";
    case c_errorWrite:
      return "the list could not be written, or is over a limit; check the directory and the log";
    case ReadWriteException::WRITE_FAILED:
      return "the file could not be written; check that you may write there and that there is room";
    case ReadWriteException::INVALID_ENCODING:
      return "the bytes are not valid in their encoding; have the document sent again";
    case ReadWriteException::LIMIT_EXCEEDED:
      return "the document is over a limit; check where it came from";
    default:
      return "unknown result code; see the log";
  }
}

}  // namespace sitehlp

#endif
