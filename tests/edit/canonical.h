#ifndef TESTS_EDIT_CANONICAL_H
#define TESTS_EDIT_CANONICAL_H

#include <string>

namespace test {

// A document in a form in which two that say the same are equal: without XML declaration, and with
// the attributes of each element sorted by name. All else stays, white space included. Throws when
// the text is not well formed.
std::string canonical(const std::string& document);

}  // namespace test

#endif
