// A memory back-end that keeps what is saved, field by field, so the
// serialization tests can look at it and change it before a load.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "kwcore/serial/CKWArchive.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWTypeManifest.h"

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
