#ifndef TOOLS_SITELIST_DIFF_UNREAD_PASSWORDS_H
#define TOOLS_SITELIST_DIFF_UNREAD_PASSWORDS_H

#include <map>
#include <string>
#include <utility>

#include "tools/sitelist/model/site_list.h"

namespace tool {

// The encrypted texts of passwords, by record and name of the field.
using EncryptedPasswords = std::map<std::pair<const sitehlp::tag_Site*, std::string>, std::wstring>;

// The passwords of the list that cannot be decrypted with the password key of the agent that is
// served. Their records have them as empty. Fails when the file no longer is the list.
EncryptedPasswords unreadPasswordsOf(const SiteList& list);

}  // namespace tool

#endif
