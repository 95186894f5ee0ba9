#include "sitehlp/merge/server_chain.h"

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/records/record.h"

namespace sitehlp {
namespace {

tag_Site* lastOf(tag_Site* list) {
  while (list->pNext) list = list->pNext;
  return list;
}

}  // namespace

bool putServerChain(tag_Site* chain, tag_Site** tail, tag_Site** head) {
  const ADetailTrace trace(c_component, L"Updating Sitelist site");
  if (!*head) {
    *head = chain;
    return true;
  }
  tag_Site** link = head;
  while (*link && !isServerSite(**link)) link = &(*link)->pNext;
  if (!*link) {
    // Server sites replace only server sites. The tail still moves on to the chain.
    if (*tail) {
      lastOf(chain)->pNext = (*tail)->pNext;
      *tail = chain;
    }
    return false;
  }
  bool tailRemoved = false;
  while (*link) {
    if (isServerSite(**link)) {
      tag_Site* const removed = *link;
      *link = removed->pNext;
      tailRemoved = tailRemoved || removed == *tail;
      releaseRecord(removed);
      if (!*link) break;
      // Skips the record after a removed one, even if it is a server site.
    }
    link = &(*link)->pNext;
  }
  *link = chain;
  if (tailRemoved) *tail = lastOf(chain);
  return true;
}

}  // namespace sitehlp
