// Symbol export for the kwcore shared library.
//
// The library is built with hidden visibility: only declarations marked
// KWCORE_API are part of its binary interface. Hosts never define
// KWCORE_BUILDING; the library's own build does.
#pragma once

#if defined(_WIN32)
#if defined(KWCORE_BUILDING)
#define KWCORE_API __declspec(dllexport)
#else
#define KWCORE_API __declspec(dllimport)
#endif
#else
#define KWCORE_API __attribute__((visibility("default")))
#endif
