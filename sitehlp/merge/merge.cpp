#include <cstdlib>
#include <cstring>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/merge/server_chain.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {
namespace {

tag_Site* copyRecord(const tag_Site& source) {
  tag_Site* const copy = static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site)));
  if (copy) std::memcpy(copy, &source, sizeof(tag_Site));
  return copy;
}

bool isKept(const tag_Site& site, bool skipProxy) {
  const std::optional<SiteKind> kind = kindOf(site);
  return kind && !(skipProxy && *kind == SITE_KIND_PROXY);
}

// Does the same as MergeThisSiteList with an empty result, but without copies. The list was read
// for this merge, so nobody else uses its records.
void moveIntoResult(ListOwner& list, tag_Site** tail, tag_Site** head) {
  const ADetailTrace trace(c_component, L"Merge this sitelist");
  *head = list.release();
  tag_Site* last = *head;
  while (last->pNext) last = last->pNext;
  *tail = last;
}

// Releases the result and sets it to null, unless keep() was called. This also happens after an
// exception.
class Unfinished {
 public:
  explicit Unfinished(tag_Site** list) : m_list(list) {}
  ~Unfinished() {
    if (!m_list || !*m_list) return;
    CSitesHelper::FreeSiteListMemory(*m_list);
    *m_list = nullptr;
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  void keep() { m_list = nullptr; }

 private:
  tag_Site** m_list;
};

// Returns whether a fallback of this kind is added to the list.
bool isCarriedKind(const tag_Site& site) {
  switch (static_cast<SiteKind>(site.eSiteKind)) {
    case SITE_KIND_HTTP:
    case SITE_KIND_FTP:
      return true;
    case SITE_KIND_UNC:
    case SITE_KIND_LOCAL:
    case SITE_KIND_PROXY:
      break;
  }
  return false;
}

// Adds the fallback site and the management servers of `source` to the list. If `source` has
// management servers, `result` becomes 0. Otherwise it is unchanged.
void carryOver(CSitesHelper& helper, tag_Site* source, tag_Site** tail, tag_Site** head,
               int& result) {
  tag_Site* fallback = nullptr;
  if (helper.GetFallbackSite(source, &fallback) >= 0 && fallback) {
    if (helper.UpdateFallbackSite(fallback, tail, head) < 0) releaseRecord(fallback);
  }
  ListOwner chain;  // NOLINT(clang-analyzer-unix.Malloc): a list without a tail is empty
  if (helper.GetVestaSite(source, chain.out()) >= 0 && chain.get()) {
    if (putServerChain(chain.get(), tail, head)) chain.release();
    result = c_success;
  }
}

}  // namespace

int CSitesHelper::MergeSiteLists(tag_Site* first, tag_Site* second, bool useSecond,
                                 tag_Site** finalList) {
  const ADetailTrace trace(c_component, L"Merge SiteLists");
  if (!finalList) {
    logError(c_component, L"Final SiteList parameter is invalid");
    return c_errorNoPath;
  }
  int result = c_success;
  tag_Site* tail = nullptr;
  ListOwner current;
  Unfinished unfinished(finalList);
  if (!useSecond) {
    result = ReadSiteList(std::wstring(), current.out(), true);
    if (result >= 0 && current.get()) {
      moveIntoResult(current, &tail, finalList);
      result = c_success;
    }
    if (first) carryOver(*this, first, &tail, finalList, result);
  } else {
    // The result of this step is not used. The next step gives the result.
    if (second) MergeThisSiteList(second, false, &tail, finalList);
    if (first) {
      result = MergeThisSiteList(first, true, &tail, finalList);
    } else {
      result = ReadSiteList(std::wstring(), current.out(), true);
      if (result >= 0 && current.get()) {
        carryOver(*this, current.get(), &tail, finalList, result);
      }
    }
  }
  if (result >= 0) unfinished.keep();
  return result;
}

int CSitesHelper::MergeThisSiteList(tag_Site* source, bool skipProxy, tag_Site** tail,
                                    tag_Site** head) {
  const ADetailTrace trace(c_component, L"Merge this sitelist");
  if (!source || !tail || !head) return c_errorNoPath;
  int result = c_success;
  for (; source; source = source->pNext) {
    tag_Site* const copy = copyRecord(*source);
    if (!copy) {
      result = c_errorNoMemory;
      break;
    }
    if (!isKept(*copy, skipProxy)) {
      releaseRecord(copy);
      continue;
    }
    if (*tail) {
      (*tail)->pNext = copy;
    } else {
      *head = copy;
    }
    *tail = copy;
  }
  if (*tail) (*tail)->pNext = nullptr;
  return result;
}

int CSitesHelper::GetFallbackSite(tag_Site* list, tag_Site** fallback) {
  const ADetailTrace trace(c_component, L"Getting fallback site");
  if (!list || !fallback) return c_errorNoPath;
  for (; list; list = list->pNext) {
    if (!isFallback(*list) || !isCarriedKind(*list)) continue;
    tag_Site* const copy = copyRecord(*list);
    if (!copy) return c_errorNoMemory;
    *fallback = copy;
    return c_success;
  }
  return c_errorGeneral;
}

int CSitesHelper::UpdateFallbackSite(tag_Site* fallback, tag_Site** tail, tag_Site** head) {
  const ADetailTrace trace(c_component, L"Updating fallback site");
  if (!fallback || !tail || !head) return c_errorNoPath;
  tag_Site* match = *head;
  while (match && !isFallback(*match)) match = match->pNext;
  if (!*head) {
    fallback->pNext = nullptr;
    *head = fallback;  // the tail is unchanged
  } else if (match && isCarriedKind(*fallback)) {
    fallback->pNext = match->pNext;
    std::memcpy(match, fallback, sizeof(tag_Site));
    releaseRecord(fallback);
  } else if (*tail) {
    (*tail)->pNext = fallback;
    *tail = fallback;
    fallback->pNext = nullptr;
  }
  return c_success;
}

int CSitesHelper::GetVestaSite(tag_Site* list, tag_Site** chain) {
  const ADetailTrace trace(c_component, L"Getting Vesta site");
  if (!list || !chain) return c_errorNoPath;
  int result = c_errorNoServerSite;
  for (; list; list = list->pNext) {
    if (!isServerSite(*list)) continue;
    tag_Site* const copy = copyRecord(*list);
    if (!copy) return c_errorNoMemory;
    copy->pNext = nullptr;
    *chain = copy;
    chain = &copy->pNext;
    result = c_success;
  }
  return result;
}

int CSitesHelper::UpdateVestaSite(tag_Site* chain, tag_Site** tail, tag_Site** head) {
  if (!chain || !tail || !head) {
    const ADetailTrace trace(c_component, L"Updating Sitelist site");
    return c_errorNoPath;
  }
  putServerChain(chain, tail, head);
  return c_success;
}

}  // namespace sitehlp
