// The sample serializable classes shared by the tests, the benchmarks and the
// fuzzer, declared the way a host declares them: a part holds every kind of
// value and link field, and an assembly adds a GUID-keyed link map and fields
// that go one way only. The fuzzer's seed files name these types and fields
// by the IDs below.
//
//   CSamplePart* part = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
//   part->m_Name = "wheel";
#pragma once

#include <vector>

#include "KWTestObjects.h"
#include "kwcore/serial/CKWSerialObject.h"

// Texts, not CKWGuid values: type objects are made before other statics.
inline constexpr const char* kSamplePartTypeID = "{6A1F0C3E-2B7D-4E59-A1C4-7D3E9B2F5A10}";
inline constexpr const char* kSampleAssemblyTypeID = "{5C0F2E7A-93B1-4D68-A2E5-8B7C1F4D0A39}";

// Field IDs, and the value-type IDs they are declared with.
inline constexpr const char* kNameFieldID = "{61A2B3C4-D5E6-4F70-8192-A3B4C5D6E7F8}";
inline constexpr const char* kCountFieldID = "{72B3C4D5-E6F7-4081-92A3-B4C5D6E7F809}";
inline constexpr const char* kTagFieldID = "{83C4D5E6-F708-4192-A3B4-C5D6E7F8091A}";
inline constexpr const char* kLinkFieldID = "{94D5E6F7-0819-42A3-B4C5-D6E7F8091A2B}";
inline constexpr const char* kLinksFieldID = "{A5E6F708-192A-43B4-C5D6-E7F8091A2B3C}";
inline constexpr const char* kLinkMapFieldID = "{B6F70819-2A3B-44C5-D6E7-F8091A2B3C4D}";
inline constexpr const char* kLoadOnlyFieldID = "{EA0C1E26-9DBF-41F4-9AAC-CDEF6B8CAEB0}";
inline constexpr const char* kSaveOnlyFieldID = "{FB1D2F37-AEC0-4205-8BBD-DEF07C9DBFC1}";
inline constexpr const char* kTextTypeID = "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}";
inline constexpr const char* kIntTypeID = "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}";
inline constexpr const char* kGuidTypeID = "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}";

class CSamplePart : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CSamplePart)

public:
    CString m_Name;
    int m_iCount = 0;
    CKWGuid m_Tag;
    CSamplePart* m_pLink = nullptr;
    CKWObjPtrList<CSamplePart> m_Links;

    // While on, every part records its hook calls in order ("BeforeSave",
    // "AfterSave", "BeforeLoad", "AfterLoad") and the field data whose change
    // it was told of. Off by default: the benchmarks measure the archive, not
    // this bookkeeping.
    static bool s_bRecordCalls;
    std::vector<CString> m_hookCalls;
    std::vector<IKWFieldData*> m_changedFields;
    // Refuses every pending field change.
    bool m_bRefuseChanges = false;
    // The one field data shown read-only, and the checkbox changes told of.
    IKWFieldData* m_pReadOnlyField = nullptr;
    std::vector<int> m_checkboxChanges;

    int OnBeforeSave(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) override;
    void OnAfterSave(CKWDocument*) override;
    int OnBeforeLoad(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) override;
    void OnAfterLoad(CKWDocument*) override;
    int OnBeforeFieldChanged(IKWFieldData*, CString&) override;
    void OnAfterFieldChanged(IKWFieldData* data) override;
    int IsFieldReadOnly(IKWFieldData* data) override { return data == m_pReadOnlyField; }
    void OnAfterCheckboxChanged(IKWFieldData*, int checked) override;

protected:
    CSamplePart() = default;

private:
    int RecordHook(const char* name);
};

// Derived: the part's fields come first in its table.
class CSampleAssembly : public CSamplePart {
    KW_DECLARE_SERIAL_TYPE(CSampleAssembly)

public:
    CKWObjGuidPtrMap<CSamplePart> m_LinkMap;
    CString m_LoadOnly;
    CString m_SaveOnly;

protected:
    CSampleAssembly() = default;
};
