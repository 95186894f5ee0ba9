#ifndef PLATFORM_COMMON_TEXT_H
#define PLATFORM_COMMON_TEXT_H

#include <string>

#include "platform/export.h"

// Compares two zero-terminated texts and ignores case. Returns a negative number, 0 or a positive
// number when `a` sorts before, with or after `b`. Neither may be null. Does not depend on the
// process locale. Any thread; throws nothing.
PLATFORM_API int wcsicmp(const wchar_t* a, const wchar_t* b);

// Turns a fully qualified host name into a computer name: cuts it off at the first dot, in place.
// Returns true if something was cut. Any thread; throws nothing.
PLATFORM_API bool convertFqdnToNetbios(std::wstring& name);

#endif
