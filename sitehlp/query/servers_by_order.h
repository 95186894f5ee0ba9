#ifndef SITEHLP_QUERY_SERVERS_BY_ORDER_H
#define SITEHLP_QUERY_SERVERS_BY_ORDER_H

#include <cstdint>
#include <map>
#include <string>

#include "sitehlp/site.h"

// How GetPYXServerInfo chooses servers and values. The functions are inline, because the tool uses
// them as well.
namespace sitehlp {

// Returns the sites of a list by their order. If several have the same order, only the first is
// returned.
inline std::map<std::int32_t, const tag_Site*> sitesByOrder(const tag_Site* list) {
  std::map<std::int32_t, const tag_Site*> sites;
  for (; list; list = list->pNext) sites.emplace(list->iOrder, list);
  return sites;
}

// Returns an address. An IPv6 literal loses its brackets.
inline std::wstring plainAddress(const wchar_t* text) {
  const std::wstring address = text;
  if (address.find(L'[') == std::wstring::npos) return address;
  return address.size() < 2 ? std::wstring() : address.substr(1, address.size() - 2);
}

}  // namespace sitehlp

#endif
