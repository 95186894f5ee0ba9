#ifndef TOOLS_SITELIST_AGENT_LOST_PASSWORDS_H
#define TOOLS_SITELIST_AGENT_LOST_PASSWORDS_H

#include <string>
#include <vector>

namespace AdvXMLParser {
class Document;
}

namespace tool {

// The file of an agent's password key, and 0 or the errno of looking at it.
std::string passwordKeyPath(const std::string& dataDirectory);
int passwordKeyError(const std::string& dataDirectory);

// Whether the password key of the current agent can be used for encryption. Creates it if it is
// missing.
bool canEncryptWithAgentKey();

// Each gives the sites with passwords of some sort in words: `site "Depot"`, "the proxy settings".
// A file that is not a document has none.

// The passwords that the key of the current agent does not open. The reader gives such a password
// as an empty one.
std::vector<std::string> sitesWithLostPasswords(const std::string& path);
std::vector<std::string> sitesWithLostPasswords(const AdvXMLParser::Document& document);
// The same, but only passwords that `before` does not have in the same protected form.
std::vector<std::string> sitesWithNewLostPasswords(const std::string& path,
                                                   const std::string& before);
// The passwords of a server list that the keys of the current agent do not open.
std::vector<std::string> sitesWithLostServerPasswords(const AdvXMLParser::Document& document);
// Any password that is not empty.
std::vector<std::string> sitesWithPasswords(const std::string& path);
std::vector<std::string> sitesWithPasswords(const AdvXMLParser::Document& document);

// Warns of the passwords of `path` that were just read as empty because the key of the current
// agent does not open them, if any were.
void warnOfUnreadPasswords(const std::string& path, bool isOwnList);

}  // namespace tool

#endif
