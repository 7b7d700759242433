#include "kwcore/serial/CKWFieldStream.h"

KW_IMPLEMENT_ABSTRACT_TYPE(CKWFieldStream, "{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}",
                           "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

void* CKWFieldStream::GetInterface(CKWGuid interfaceID) {
    if (void* answer = CKWObjectImpl::GetInterface(interfaceID)) {
        return answer;
    }
    if (interfaceID.IsValid() && interfaceID == CKWGuid(IID_IKWFieldStream)) {
        return static_cast<IKWFieldStream*>(this);
    }
    return nullptr;
}

int CKWFieldStream::ObjectHasBeenSerialized(CKWGuid sessionID) {
    return sessionID.IsValid() && sessionID == m_sessionID ? 1 : 0;
}
