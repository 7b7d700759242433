// Serializable classes declared the way a host declares them, and a memory
// back-end that keeps what is saved, for the serialization tests.
#pragma once

#include <map>
#include <vector>

#include "kwcore/serial/CKWArchive.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/CKWTypeManifest.h"

inline constexpr const char* kSerialTestRepositoryID = "{B1D3E5F7-0A2C-4E6B-8D1F-3A5C7E9B1D2F}";
inline constexpr const char* kSerialObjectTypeID = "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}";
inline constexpr const char* kObjectImplTypeID = "{3719246B-C3B0-4AE9-9723-6E998C42484A}";
inline constexpr const char* kPartTypeID = "{C2E4F6A8-1B3D-4F7C-9E2A-4B6D8F0A2C3E}";
inline constexpr const char* kAssemblyTypeID = "{D3F5A7B9-2C4E-4A8D-8F3B-5C7E9A1B3D4F}";

// Texts, not CKWGuid values: type objects are made before other statics.
// Field IDs, and the value-type IDs they are declared with.
inline constexpr const char* kNameFieldID = "{E4A6B8C0-3D5F-4B9E-9A4C-6D8F0B2C4E5A}";
inline constexpr const char* kCountFieldID = "{F5B7C9D1-4E6A-4CAF-8B5D-7E9A1C3D5F6B}";
inline constexpr const char* kTagFieldID = "{A6C8DAE2-5F7B-4DB0-9C6E-8FAB2D4E6A7C}";
inline constexpr const char* kNextFieldID = "{B7D9EBF3-6A8C-4EC1-8D7F-9ABC3E5F7B8D}";
inline constexpr const char* kPartsFieldID = "{C8EAFC04-7B9D-4FD2-9E8A-ABCD4F6A8C9E}";
inline constexpr const char* kIndexFieldID = "{D9FB0D15-8CAE-40E3-8F9B-BCDE5A7B9DAF}";
inline constexpr const char* kLoadOnlyFieldID = "{EA0C1E26-9DBF-41F4-9AAC-CDEF6B8CAEB0}";
inline constexpr const char* kSaveOnlyFieldID = "{FB1D2F37-AEC0-4205-8BBD-DEF07C9DBFC1}";
inline constexpr const char* kTextTypeID = "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}";
inline constexpr const char* kIntTypeID = "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}";
inline constexpr const char* kGuidTypeID = "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}";

// A part with a text, an int, a GUID, a link and a link list.
class CTestPart : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CTestPart)

public:
    CString m_Name;
    int m_iCount = 0;
    CKWGuid m_Tag;
    CTestPart* m_pNext = nullptr;
    CKWObjPtrList<CTestPart> m_Parts;

    // Hook calls, in order: "BeforeSave", "AfterSave", "BeforeLoad", "AfterLoad".
    std::vector<CString> m_hookCalls;
    bool m_bRefuseChanges = false;
    std::vector<IKWFieldData*> m_changedFields;

    int OnBeforeSave(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) override {
        return Hook("BeforeSave");
    }
    void OnAfterSave(CKWDocument*) override { Hook("AfterSave"); }
    int OnBeforeLoad(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) override {
        return Hook("BeforeLoad");
    }
    void OnAfterLoad(CKWDocument*) override { Hook("AfterLoad"); }
    int OnBeforeFieldChanged(IKWFieldData*, CString&) override { return m_bRefuseChanges ? 0 : 1; }
    void OnAfterFieldChanged(IKWFieldData* data) override { m_changedFields.push_back(data); }

protected:
    CTestPart() = default;

private:
    int Hook(const char* name) {
        m_hookCalls.push_back(name);
        return 1;
    }
};

// Derived: the base fields come first; adds a GUID-keyed link map and
// fields that go one way only.
class CTestAssembly : public CTestPart {
    KW_DECLARE_SERIAL_TYPE(CTestAssembly)

public:
    CKWObjGuidPtrMap<CTestPart> m_Index;
    CString m_LoadOnly;
    CString m_SaveOnly;

protected:
    CTestAssembly() = default;
};

// ---------------------------------------------------------------- memory back-end

struct SStoredField {
    CString text;
    std::vector<std::pair<CKWGuid, CKWGuid>> links;  // (type ID, instance ID)
};

class CMemFieldStream : public CKWFieldStream {
    KW_DECLARE_TYPE(CMemFieldStream, CKWObjectTypeImpl)

public:
    // A field whose Write fails, for every stream.
    static CKWGuid s_failingFieldID;

    int WriteObjectHeader(IKWObject* object) override;
    int Write(IKWFieldData* fieldData) override;
    int ReadObjectHeader(IKWObject* object) override;
    int Read(IKWFieldData* fieldData) override;
    IKWObject* ReadLink(IKWFieldData* fieldData) override;
    int ReadLinks(IKWFieldData* fieldData, IKWCollection<IKWObject>* collection) override;
    int WriteLink(IKWFieldData* fieldData, IKWObject* object) override;
    int WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) override;

    std::map<CKWGuid, SStoredField> m_fields;  // by field ID
    std::vector<CKWGuid> m_writeOrder;         // field IDs, as written
    int m_iHeaderWrites = 0;
    int m_iHeaderReads = 0;
    bool m_bHeaderStored = false;

protected:
    CMemFieldStream() = default;

private:
    SStoredField* Stored(IKWFieldData* fieldData);
    SStoredField* NewRecord(IKWFieldData* fieldData);
};

class CMemTypeManifest : public CKWTypeManifest {
    KW_DECLARE_TYPE(CMemTypeManifest, CKWObjectTypeImpl)

public:
    CMemFieldStream* FindStream(const CKWGuid& instanceID);

protected:
    CMemTypeManifest() = default;
    IKWObjectType* GetFieldStreamType() const override;
};

class CMemDocument : public CKWDocument {
    KW_DECLARE_TYPE(CMemDocument, CKWObjectTypeImpl)

public:
    CMemTypeManifest* FindManifest(const CKWGuid& typeID);
    // The stream of that stored object, or null.
    CMemFieldStream* FindStream(const CKWGuid& typeID, const CKWGuid& instanceID);

protected:
    CMemDocument() = default;
    IKWObjectType* GetTypeManifestType() const override;
};

class CMemArchive : public CKWArchive {
    KW_DECLARE_TYPE(CMemArchive, CKWObjectTypeImpl)

protected:
    CMemArchive() = default;
    IKWObjectType* GetDocumentType() const override;
};

// Creation and release helpers.
template <class T>
T* KWTestCreate(IKWObjectType* type, const CKWGuid& id = CKWGuid()) {
    return dynamic_cast<T*>(type->CreateInstance(id));
}

inline IKWSerializableAdaptor* AdaptorOf(IKWObject* object) {
    return static_cast<IKWSerializableAdaptor*>(object->GetInterface(IID_IKWSerializableAdaptor));
}
