#include "kwcore/platform/Arrays.h"

#include <type_traits>

namespace {

template <typename Array>
void StoreElements(CArchive& ar, const Array& array) {
    ar.WriteCount(static_cast<DWORD_PTR>(array.GetSize()));
    for (INT_PTR i = 0; i < array.GetSize(); ++i) {
        ar << array[i];
    }
}

// Loads into a fresh array and takes it over only when every element read,
// so a failed load leaves the target unchanged.
template <typename Array>
void LoadElements(CArchive& ar, Array& target) {
    using Element = std::remove_reference_t<decltype(target[0])>;
    // A stored string takes at least its one-byte length.
    constexpr std::size_t kMinStoredBytes = std::is_same_v<Element, CString> ? 1 : sizeof(Element);
    const DWORD_PTR count = ar.ReadCount();
    if (!ar.CheckAvailable(count, kMinStoredBytes)) {
        return;
    }
    Array loaded;
    loaded.SetSize(static_cast<INT_PTR>(count));
    for (INT_PTR i = 0; i < loaded.GetSize() && !ar.HasFailed(); ++i) {
        ar >> loaded[i];
    }
    if (!ar.HasFailed()) {
        target = std::move(loaded);
    }
}

template <typename Array>
void SerializeArray(CArchive& ar, Array& array) {
    if (ar.IsStoring()) {
        StoreElements(ar, array);
    } else {
        LoadElements(ar, array);
    }
}

}  // namespace

IMPLEMENT_DYNAMIC(CByteArray, CObject)
IMPLEMENT_DYNAMIC(CWordArray, CObject)
IMPLEMENT_DYNAMIC(CDWordArray, CObject)
IMPLEMENT_DYNAMIC(CUIntArray, CObject)
IMPLEMENT_DYNAMIC(CStringArray, CObject)

void CByteArray::Serialize(CArchive& ar) {
    SerializeArray(ar, *this);
}
void CWordArray::Serialize(CArchive& ar) {
    SerializeArray(ar, *this);
}
void CDWordArray::Serialize(CArchive& ar) {
    SerializeArray(ar, *this);
}
void CUIntArray::Serialize(CArchive& ar) {
    SerializeArray(ar, *this);
}
void CStringArray::Serialize(CArchive& ar) {
    SerializeArray(ar, *this);
}
