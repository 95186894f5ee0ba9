#include "sitehlp/records/record.h"

#include <cstdlib>
#include <cwchar>

#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/fields.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {
namespace {

using korvel_com::orb::xmlschema::sitelist::WX_XML_SITELIST_VESTA_SITE;

template <std::size_t N>
void wipeField(wchar_t (&field)[N]) noexcept {
  // A field is zero after its text, so only the text must be wiped.
  wipeMemory(field, ::wcsnlen(field, N) * sizeof(wchar_t));
}

template <const auto& Table, typename Record, typename Wipe>
void eachPassword(Record& record, const Wipe& wipe) noexcept {
  eachField<Table>([&](auto at) {
    constexpr const auto& row = decltype(at)::row;
    if constexpr (row.form == FieldForm::Password) wipe(record.*row.member);
  });
}

// A record may have had another kind before. Its password is then at the place for that kind.
void wipePasswords(tag_Site& record) noexcept {
  if (record.eSiteKind == SITE_KIND_PROXY) {
    // It may have the data of any site element in its ProxyConfigList.
    return wipeMemory(&record.proxy, sizeof record.proxy);
  }
  // The whole field is wiped, because a later field of another kind may have put a zero into the
  // password.
  const auto wipeInFull = [](auto& password) { wipeMemory(password, sizeof password); };
  eachPassword<c_httpFields>(record.http, wipeInFull);
  eachPassword<c_ftpFields>(record.ftp, wipeInFull);
  eachPassword<c_uncFields>(record.unc, wipeInFull);
  eachPassword<c_localFields>(record.local, wipeInFull);
  // The records of the other kinds are too small to reach these fields.
  eachPassword<c_proxyFields>(record.proxy, [](auto& password) { wipeField(password); });
}

}  // namespace

void releaseRecord(tag_Site* record) noexcept {
  wipePasswords(*record);
  std::free(record);
}

std::optional<SiteKind> kindOf(const tag_Site& record) {
  const auto kind = static_cast<SiteKind>(record.eSiteKind);
  switch (kind) {
    case SITE_KIND_HTTP:
    case SITE_KIND_FTP:
    case SITE_KIND_UNC:
    case SITE_KIND_LOCAL:
    case SITE_KIND_PROXY:
      return kind;
  }
  return std::nullopt;
}

bool isServerSite(const tag_Site& record) {
  return record.eSiteKind == SITE_KIND_HTTP &&
         wcsicmp(record.http.szElement, WX_XML_SITELIST_VESTA_SITE) == 0;
}

bool isVersionedServer(const tag_Site& record) {
  return isServerSite(record) && record.http.szVersion[0] != L'\0';
}

bool isFallback(const tag_Site& record) { return wcsicmp(record.szType, c_fallbackType) == 0; }

void CSitesHelper::CopyWStr(wchar_t* dest, const wchar_t* src, unsigned long capacity) {
  std::wcsncpy(dest, src, capacity);  // fills the rest of the field with zeros
  if (dest[capacity - 1] == L'\0') return;
  dest[capacity - 1] = L'\0';
  if (!logEnabled(LogLevel::Detail)) return;
  logDetail(c_component, AString(L"String ")
                             .append(src)
                             .append(L" is truncated to ")
                             .append(dest)
                             .append(L" in CopyWStr"));
}

int CSitesHelper::FreeSiteListMemory(tag_Site* head) {
  const ADetailTrace trace(c_component, L"Free memory for Sitelist");
  while (head) {
    tag_Site* const next = head->pNext;
    releaseRecord(head);
    head = next;
  }
  return 0;
}

}  // namespace sitehlp
