// CKWTrace: the library's debug diagnostics (leaked instances and the like).
//
// Diagnostics are for developers, never shown to users. By default they go
// to the debugger on Windows, and to standard error in debug builds of the
// library elsewhere. A host routes them wherever it likes with SetSink; a
// null sink restores the default.
//
//   CKWTrace::SetSink([](const char* text, void*) { myLog(text); }, nullptr);
#pragma once

#include "kwcore/platform/Export.h"

class KWCORE_API CKWTrace {
public:
    typedef void (*Sink)(const char* text, void* context);

    static void SetSink(Sink sink, void* context);
    // Formats with printf rules and hands the text to the sink.
    static void Write(const char* format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 1, 2)))
#endif
        ;
};
