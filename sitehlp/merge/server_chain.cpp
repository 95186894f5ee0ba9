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
    // Management servers replace only management servers, so the list is unchanged. `*tail` is set
    // to the chain nevertheless.
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
      // Skips the record after a removed one, even if it is a management server.
    }
    link = &(*link)->pNext;
  }
  *link = chain;
  if (tailRemoved) *tail = lastOf(chain);
  return true;
}

}  // namespace sitehlp
