#include "kwcore/platform/CKWTrace.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

#if defined(_WIN32)
#include "kwcore/platform/Win32Types.h"
#endif

namespace {

void WriteToDefaultSink(const char* text, void*) {
#if defined(_WIN32)
    OutputDebugStringA(text);
#elif !defined(NDEBUG)
    std::fputs(text, stderr);
#else
    (void)text;
#endif
}

struct SinkSetting {
    std::mutex mutex;
    CKWTrace::Sink sink = WriteToDefaultSink;
    void* context = nullptr;
};

SinkSetting& Setting() {
    static SinkSetting* setting = new SinkSetting;  // outlives static destruction
    return *setting;
}

std::string FormatText(const char* format, va_list args) {
    va_list measure;
    va_copy(measure, args);
    int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0) {
        return std::string();
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(&text[0], text.size(), format, args);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

}  // namespace

void CKWTrace::SetSink(Sink sink, void* context) {
    SinkSetting& setting = Setting();
    std::lock_guard<std::mutex> lock(setting.mutex);
    setting.sink = sink ? sink : WriteToDefaultSink;
    setting.context = sink ? context : nullptr;
}

void CKWTrace::Write(const char* format, ...) {
    if (!format) {
        return;
    }
    va_list args;
    va_start(args, format);
    std::string text = FormatText(format, args);
    va_end(args);

    SinkSetting& setting = Setting();
    std::lock_guard<std::mutex> lock(setting.mutex);
    setting.sink(text.c_str(), setting.context);
}
