#include "kwcore/serial/CKWTypeManifest.h"

#include "KWStoredHierarchy.h"
#include "kwcore/serial/CKWFieldStream.h"

KW_IMPLEMENT_TYPE(CKWTypeManifest, "{D13AE1B6-424A-436C-91C7-982A72F0B631}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

int CKWTypeManifest::WriteTypeHeader(IKWObjectType* type) {
    if (!type) {
        return 0;
    }
    m_bTypeHeaderWritten = true;
    return 1;
}

CKWFieldStream* CKWTypeManifest::CreateFieldStream(CKWGuid instanceID, IKWObjectType*) {
    CKWFieldStream* stream =
        kwStoredHierarchy::CreateChild(GetFieldStreamType(), instanceID, false, m_streams);
    if (stream) {
        stream->SetDocument(m_pDocument);
        stream->SetStoredInstanceID(instanceID);
    }
    return stream;
}

int CKWTypeManifest::DeleteFieldStream(CKWGuid instanceID) {
    return kwStoredHierarchy::DeleteChild(instanceID, m_streams);
}

int CKWTypeManifest::DeleteAllFieldStreams() {
    return m_streams.ReleaseAll();
}

IKWObjectType* CKWTypeManifest::GetFieldStreamType() const {
    return CKWFieldStream::GetCKWFieldStreamType();
}

int CKWTypeManifest::OnBeforeRelease() {
    DeleteAllFieldStreams();
    return CKWObjectImpl::OnBeforeRelease();
}
