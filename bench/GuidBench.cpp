// CKWGuid's text forms and generation, each beside libuuid doing the nearest
// job: libuuid has only the 36-character text, so it is the peer of both the
// brace form and the XML64 form. libuuid writes into a caller's buffer, while
// the CKWGuid getters return a new string, allocation included.
#include <benchmark/benchmark.h>

#include "kwcore/object/CKWGuid.h"

#if defined(KWCORE_BENCH_WITH_LIBUUID)
#include <uuid/uuid.h>
#endif

namespace {

const char* const kBraceText = "{95e11590-e209-41b1-811a-263330087175}";

void GuidGetCString(benchmark::State& state) {
    const CKWGuid guid(kBraceText);
    for (auto _ : state) {
        CString text = guid.GetCString();
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GuidGetCString);

// The like-for-like peer of uuid_unparse: text into the caller's buffer.
void GuidWriteCString(benchmark::State& state) {
    const CKWGuid guid(kBraceText);
    char text[CKWGuid::BRACE_TEXT_SIZE];
    for (auto _ : state) {
        guid.WriteCString(text);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GuidWriteCString);

void GuidWriteCStringXML64(benchmark::State& state) {
    const CKWGuid guid(kBraceText);
    char text[CKWGuid::XML64_TEXT_SIZE];
    for (auto _ : state) {
        guid.WriteCStringXML64(text);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GuidWriteCStringXML64);

void GuidSetCString(benchmark::State& state) {
    CKWGuid guid;
    for (auto _ : state) {
        guid.SetCString(kBraceText);
        benchmark::DoNotOptimize(guid);
    }
}
BENCHMARK(GuidSetCString);

void GuidGetCStringXML64(benchmark::State& state) {
    const CKWGuid guid(kBraceText);
    for (auto _ : state) {
        CString text = guid.GetCStringXML64();
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GuidGetCStringXML64);

void GuidSetCStringXML64(benchmark::State& state) {
    const CString text = CKWGuid(kBraceText).GetCStringXML64();
    CKWGuid guid;
    for (auto _ : state) {
        guid.SetCStringXML64(text);
        benchmark::DoNotOptimize(guid);
    }
}
BENCHMARK(GuidSetCStringXML64);

void GuidCreateNewGUID(benchmark::State& state) {
    for (auto _ : state) {
        CKWGuid guid = CKWGuid::CreateNewGUID();
        benchmark::DoNotOptimize(guid);
    }
}
BENCHMARK(GuidCreateNewGUID);

#if defined(KWCORE_BENCH_WITH_LIBUUID)

void LibUuidUnparseLower(benchmark::State& state) {
    uuid_t uuid;
    uuid_parse(kBraceText + 1, uuid);
    char text[37];
    for (auto _ : state) {
        uuid_unparse_lower(uuid, text);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(LibUuidUnparseLower);

// The like-for-like peer of the getters: the text as a new string.
void LibUuidUnparseLowerToCString(benchmark::State& state) {
    uuid_t uuid;
    uuid_parse(kBraceText + 1, uuid);
    char text[37];
    for (auto _ : state) {
        uuid_unparse_lower(uuid, text);
        CString copy(text);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(LibUuidUnparseLowerToCString);

void LibUuidParse(benchmark::State& state) {
    const char* const text = "95e11590-e209-41b1-811a-263330087175";
    uuid_t uuid;
    for (auto _ : state) {
        uuid_parse(text, uuid);
        benchmark::DoNotOptimize(uuid);
    }
}
BENCHMARK(LibUuidParse);

void LibUuidGenerateRandom(benchmark::State& state) {
    uuid_t uuid;
    for (auto _ : state) {
        uuid_generate_random(uuid);
        benchmark::DoNotOptimize(uuid);
    }
}
BENCHMARK(LibUuidGenerateRandom);

#endif

}  // namespace
