#ifndef TOOLS_SITELIST_DIFF_UNREAD_PASSWORDS_H
#define TOOLS_SITELIST_DIFF_UNREAD_PASSWORDS_H

#include <map>
#include <string>
#include <utility>

#include "tools/sitelist/model/site_list.h"

namespace tool {

// The encrypted texts of passwords, by record and name of the field.
using EncryptedPasswords = std::map<std::pair<const sitehlp::tag_Site*, std::string>, std::wstring>;

// Returns the passwords of the list that the password key of the current agent does not decrypt.
// They are empty in the records of the list. Fails when the file was changed after the list was
// read.
EncryptedPasswords unreadPasswordsOf(const SiteList& list);

}  // namespace tool

#endif
