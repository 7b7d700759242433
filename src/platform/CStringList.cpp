#include "kwcore/platform/CStringList.h"

IMPLEMENT_DYNAMIC(CStringList, CObject)

void CStringList::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<DWORD_PTR>(GetCount()));
        for (POSITION position = GetHeadPosition(); position;) {
            ar << GetNext(position);
        }
        return;
    }
    // Every stored string takes at least its one-byte length.
    const DWORD_PTR count = ar.ReadCount();
    if (!ar.CheckAvailable(count)) {
        return;
    }
    CStringList loaded;
    CString text;
    for (DWORD_PTR i = 0; i < count && !ar.HasFailed(); ++i) {
        ar >> text;
        loaded.AddTail(text);
    }
    if (ar.HasFailed()) {
        return;
    }
    if (IsEmpty()) {
        Swap(loaded);
    } else {
        AddTail(&loaded);
    }
}
