#ifndef TESTS_EDIT_CANONICAL_H
#define TESTS_EDIT_CANONICAL_H

#include <string>

namespace test {

// Returns a document in a form in which equivalent documents are equal. It has no XML declaration,
// and the attributes of each element are sorted by name. Everything else is unchanged, including
// white space. Throws when the text is not well formed.
std::string canonical(const std::string& document);

}  // namespace test

#endif
