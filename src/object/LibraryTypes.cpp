// Files the library's own types into the library repository while the
// library loads, so hosts find them without any call of their own.
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/object/KWTypeMacros.h"

namespace {

struct LibraryTypeCollector {
    LibraryTypeCollector() { CKWTypeSystem::Initialize(CKWTypeSystem::LIBRARY_REPOSITORY_ID); }
};

// Right after the type objects, before any other static object of the library.
#if defined(__GNUC__)
LibraryTypeCollector s_libraryTypeCollector __attribute__((init_priority(KW_TYPE_OBJECT_PRIORITY + 1)));
#else
LibraryTypeCollector s_libraryTypeCollector;
#endif

}  // namespace
