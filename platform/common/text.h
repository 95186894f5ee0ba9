#ifndef PLATFORM_COMMON_TEXT_H
#define PLATFORM_COMMON_TEXT_H

#include <string>

#include "platform/export.h"

// Compares two zero-terminated texts without regard to case: negative, 0 or positive as the first
// sorts before, with or after the second. Neither may be null. Independent of the process locale.
// Any thread; throws nothing.
PLATFORM_API int wcsicmp(const wchar_t* a, const wchar_t* b);

// Reduces a fully qualified host name to its NetBIOS form in place: everything from the first dot
// on is cut off. Returns true when something was cut. Any thread; throws nothing.
PLATFORM_API bool convertFqdnToNetbios(std::wstring& name);

#endif
