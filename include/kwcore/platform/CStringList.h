// CStringList: a list of CString with MFC's stored form.
//
// Serialize writes the element count (WriteCount) and then each string with
// its length prefix. Loading appends the stored strings to the list, as MFC
// does; a load that fails (short or malformed bytes) leaves the list as it
// was.
//
//   CStringList names;
//   names.AddTail("alpha");
//   CArchive ar(CArchive::store);
//   names.Serialize(ar);  // 01 00 05 'a' 'l' 'p' 'h' 'a'
#pragma once

#include "kwcore/platform/CArchive.h"
#include "kwcore/platform/CList.h"
#include "kwcore/platform/CObject.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class KWCORE_API CStringList : public CList<CString, const CString&> {
    DECLARE_DYNAMIC(CStringList)

public:
    using CList::CList;

    void Serialize(CArchive& ar) override;
};
