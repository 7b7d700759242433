// How much to shrink the largest test inputs. Under the sanitizers, which slow
// every allocation tenfold, deep graphs are a tenth as long: still far deeper
// than recursion could go on any stack.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KW_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KW_TEST_SANITIZED 1
#endif
#endif

#ifdef KW_TEST_SANITIZED
constexpr int kKWTestScale = 10;
#else
constexpr int kKWTestScale = 1;
#endif
