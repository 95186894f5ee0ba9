#ifndef TESTS_SUPPORT_SANITIZER_H
#define TESTS_SUPPORT_SANITIZER_H

// Which sanitizers the build has: 1 or 0. GCC tells by macros of its own, and so do newer versions
// of clang.
#if defined(__SANITIZE_ADDRESS__)
#define TESTS_ADDRESS_SANITIZED 1
#elif defined(__SANITIZE_THREAD__)
#define TESTS_THREAD_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TESTS_ADDRESS_SANITIZED 1
#elif __has_feature(thread_sanitizer)
#define TESTS_THREAD_SANITIZED 1
#endif
#endif
#ifndef TESTS_ADDRESS_SANITIZED
#define TESTS_ADDRESS_SANITIZED 0
#endif
#ifndef TESTS_THREAD_SANITIZED
#define TESTS_THREAD_SANITIZED 0
#endif

// Either of them: both replace the allocator.
#define TESTS_SANITIZED (TESTS_ADDRESS_SANITIZED || TESTS_THREAD_SANITIZED)

#endif
