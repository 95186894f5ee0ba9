#ifndef TOOLS_SITELIST_AGENT_LOST_PASSWORDS_H
#define TOOLS_SITELIST_AGENT_LOST_PASSWORDS_H

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace AdvXMLParser {
class Document;
}

namespace tool {

// passwordKeyPath returns the path of an agent's password key. passwordKeyError returns 0, or the
// errno if the key file cannot be examined.
std::string passwordKeyPath(const std::string& dataDirectory);
int passwordKeyError(const std::string& dataDirectory);

// Returns whether the password key of the current agent can be used for encryption. Creates the
// key if it is missing.
bool canEncryptWithAgentKey();

// Each function below finds the passwords that its comment describes and returns their sites as
// texts: `site "Depot"` or `the proxy settings`. A file that is not a document has none.

// Passwords that cannot be decrypted with the password key of the current agent. The library reads
// such a password as empty.
std::vector<std::string> sitesWithLostPasswords(const std::string& path);
std::vector<std::string> sitesWithLostPasswords(const AdvXMLParser::Document& document);
// The places of these sites among the elements of the list, from 0. The records of the list are in
// the same order.
std::set<std::size_t> placesOfLostPasswords(const std::string& path);
// The same as sitesWithLostPasswords, without the passwords whose encrypted text is also in
// `before`.
std::vector<std::string> sitesWithNewLostPasswords(const std::string& path,
                                                   const std::string& before);
// Passwords of a server list that cannot be decrypted with the keys of the current agent.
std::vector<std::string> sitesWithLostServerPasswords(const AdvXMLParser::Document& document);
// Passwords that are not empty.
std::vector<std::string> sitesWithPasswords(const std::string& path);
std::vector<std::string> sitesWithPasswords(const AdvXMLParser::Document& document);

// Warns if passwords of `path` were read as empty because they cannot be decrypted with the
// password key of the current agent.
void warnOfUnreadPasswords(const std::string& path, bool isOwnList);
// Warns of the passwords of several lists. Both texts have a number, for example "2 passwords".
void warnOfUnreadPasswordsInLists(const std::string& passwords, const std::string& lists);

}  // namespace tool

#endif
