#ifndef BENCH_PEERS_RECORD_FILLER_H
#define BENCH_PEERS_RECORD_FILLER_H

#include <cstring>
#include <string_view>

#include "sitehlp/site.h"

namespace bench {

// Fills one record with the values of its element. All texts are UTF-8.
class RecordFiller {
 public:
  // Allocates the record for an element directly in a list.
  explicit RecordFiller(const char* element);

  bool isProxy() const { return m_site->eSiteKind == sitehlp::SITE_KIND_PROXY; }
  void setAttribute(std::string_view name, const char* value);
  void setChild(std::string_view name, const char* text);
  void addExclusion(const char* host);
  // Completes the record. The caller becomes its owner.
  sitehlp::tag_Site* finish();

 private:
  sitehlp::tag_Site* m_site;
};

// The functions below walk a tree. `Node` is an element. It has name(), text(),
// eachAttribute(visit(name, value)) and eachChild(visit(Node)), which visits elements only.

template <typename Node>
void fillChild(RecordFiller& filler, const Node& child) {
  if (filler.isProxy() && std::strcmp(child.name(), "ExclusionList") == 0) {
    child.eachChild([&](const Node& host) { filler.addExclusion(host.text()); });
  } else {
    filler.setChild(child.name(), child.text());
  }
}

template <typename Node>
void fillElement(RecordFiller& filler, const Node& element) {
  element.eachAttribute(
      [&](const char* name, const char* value) { filler.setAttribute(name, value); });
  element.eachChild([&](const Node& child) { fillChild(filler, child); });
}

template <typename Node>
sitehlp::tag_Site* recordOf(const Node& element) {
  RecordFiller filler(element.name());
  if (filler.isProxy()) {
    element.eachChild([&](const Node& proxy) { fillElement(filler, proxy); });
  } else {
    fillElement(filler, element);
  }
  return filler.finish();
}

// Returns the records of the lists below the root of a document.
template <typename Node>
sitehlp::tag_Site* recordsBelow(const Node& root) {
  sitehlp::tag_Site* head = nullptr;
  sitehlp::tag_Site** link = &head;
  root.eachChild([&](const Node& list) {
    if (std::strcmp(list.name(), "SiteList") != 0) return;
    list.eachChild([&](const Node& element) {
      *link = recordOf(element);
      link = &(*link)->pNext;
    });
  });
  return head;
}

}  // namespace bench

#endif
