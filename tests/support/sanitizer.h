#ifndef TESTS_SUPPORT_SANITIZER_H
#define TESTS_SUPPORT_SANITIZER_H

// Each macro is 1 in a build with the sanitizer of its name, otherwise 0. GCC and newer versions of
// clang have their own macros for this.
#if defined(__has_feature)
#define TESTS_HAS_FEATURE(name) __has_feature(name)
#else
#define TESTS_HAS_FEATURE(name) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || TESTS_HAS_FEATURE(address_sanitizer)
#define TESTS_ADDRESS_SANITIZED 1
#else
#define TESTS_ADDRESS_SANITIZED 0
#endif

#if defined(__SANITIZE_THREAD__) || TESTS_HAS_FEATURE(thread_sanitizer)
#define TESTS_THREAD_SANITIZED 1
#else
#define TESTS_THREAD_SANITIZED 0
#endif

// Nonzero with either of them. Both replace the allocator.
#define TESTS_SANITIZED (TESTS_ADDRESS_SANITIZED || TESTS_THREAD_SANITIZED)

#endif
