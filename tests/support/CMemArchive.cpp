#include "CMemArchive.h"

#include "KWTestObjects.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"

KW_IMPLEMENT_TYPE(CMemFieldStream, "{3F51737B-E204-4649-8FF1-1234B0D1F205}",
                  "{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}")
KW_IMPLEMENT_TYPE(CMemTypeManifest, "{4062848C-F315-475A-90F2-2345C1E20316}",
                  "{D13AE1B6-424A-436C-91C7-982A72F0B631}")
KW_IMPLEMENT_TYPE(CMemDocument, "{5173959D-0426-486B-A103-3456D2F31427}",
                  "{4F87AD20-AE52-43A7-882C-599156B30828}")
KW_IMPLEMENT_TYPE(CMemArchive, "{6284A6AE-1537-497C-B214-4567E3042538}",
                  "{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}")

CKWGuid CMemFieldStream::s_failingFieldID;

// A new write of the object replaces what was stored.
int CMemFieldStream::WriteObjectHeader(IKWObject* object) {
    if (!object) {
        return 0;
    }
    ++m_iHeaderWrites;
    m_bHeaderStored = true;
    m_fields.clear();
    m_writeOrder.clear();
    return 1;
}

SStoredField* CMemFieldStream::NewRecord(IKWFieldData* fieldData) {
    IKWField* field = fieldData ? fieldData->GetField() : nullptr;
    if (!field || field->GetFieldID() == s_failingFieldID) {
        return nullptr;
    }
    m_writeOrder.push_back(field->GetFieldID());
    SStoredField& record = m_fields[field->GetFieldID()];
    record = SStoredField();
    return &record;
}

SStoredField* CMemFieldStream::Stored(IKWFieldData* fieldData) {
    IKWField* field = fieldData ? fieldData->GetField() : nullptr;
    if (!field) {
        return nullptr;
    }
    auto found = m_fields.find(field->GetFieldID());
    return found == m_fields.end() ? nullptr : &found->second;
}

int CMemFieldStream::Write(IKWFieldData* fieldData) {
    SStoredField* record = NewRecord(fieldData);
    if (!record) {
        return 0;
    }
    record->text = fieldData->GetStringValue();
    return 1;
}

int CMemFieldStream::ReadObjectHeader(IKWObject* object) {
    ++m_iHeaderReads;
    return object && m_bHeaderStored ? 1 : 0;
}

int CMemFieldStream::Read(IKWFieldData* fieldData) {
    SStoredField* record = Stored(fieldData);
    return record ? fieldData->SetValueFromString(record->text) : 0;
}

IKWObject* CMemFieldStream::ReadLink(IKWFieldData* fieldData) {
    SStoredField* record = Stored(fieldData);
    if (!record || record->links.empty() || !GetDocument()) {
        return nullptr;
    }
    return GetDocument()->GetObjectA(record->links[0].first, record->links[0].second);
}

int CMemFieldStream::ReadLinks(IKWFieldData* fieldData, IKWCollection<IKWObject>* collection) {
    SStoredField* record = Stored(fieldData);
    if (!record || !collection || !GetDocument()) {
        return 0;
    }
    for (const auto& link : record->links) {
        collection->Add(GetDocument()->GetObjectA(link.first, link.second));
    }
    return 1;
}

int CMemFieldStream::WriteLink(IKWFieldData* fieldData, IKWObject* object) {
    SStoredField* record = NewRecord(fieldData);
    if (!record) {
        return 0;
    }
    if (object) {
        record->links.emplace_back(object->GetType()->GetID(), object->GetInstanceID());
    }
    return 1;
}

int CMemFieldStream::WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) {
    SStoredField* record = NewRecord(fieldData);
    if (!record || !iterator) {
        return 0;
    }
    for (IKWObject* object = iterator->GetNext(1); object; object = iterator->GetNext(0)) {
        record->links.emplace_back(object->GetType()->GetID(), object->GetInstanceID());
    }
    return 1;
}

CMemFieldStream* CMemTypeManifest::FindStream(const CKWGuid& instanceID) {
    return static_cast<CMemFieldStream*>(
        static_cast<CKWFieldStream*>(GetInstanceFieldStreamCollection()->Find(instanceID)));
}

IKWObjectType* CMemTypeManifest::GetFieldStreamType() const {
    return CMemFieldStream::GetCMemFieldStreamType();
}

CMemTypeManifest* CMemDocument::FindManifest(const CKWGuid& typeID) {
    return static_cast<CMemTypeManifest*>(
        static_cast<CKWTypeManifest*>(GetTypeManifestCollection()->Find(typeID)));
}

CMemFieldStream* CMemDocument::FindStream(const CKWGuid& typeID, const CKWGuid& instanceID) {
    CMemTypeManifest* manifest = FindManifest(typeID);
    return manifest ? manifest->FindStream(instanceID) : nullptr;
}

IKWObjectType* CMemDocument::GetTypeManifestType() const {
    return CMemTypeManifest::GetCMemTypeManifestType();
}

IKWObjectType* CMemArchive::GetDocumentType() const {
    return CMemDocument::GetCMemDocumentType();
}

namespace {
const SCollectTypes s_collectMemoryBackEnd(kKWTestRepositoryID);
}  // namespace
