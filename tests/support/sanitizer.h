#ifndef TESTS_SUPPORT_SANITIZER_H
#define TESTS_SUPPORT_SANITIZER_H

// 1 in a build with AddressSanitizer or ThreadSanitizer, otherwise 0. Both replace the allocator.
// GCC and newer versions of clang have their own macros for this.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TESTS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TESTS_SANITIZED 1
#endif
#endif
#ifndef TESTS_SANITIZED
#define TESTS_SANITIZED 0
#endif

#endif
