#include "kwcore/object/CKWObjectImpl.h"

KW_IMPLEMENT_TYPE_OBJECT(CKWObjectImpl, "{3719246B-C3B0-4AE9-9723-6E998C42484A}", CKWGuid())

void* CKWObjectImpl::GetInterface(CKWGuid interfaceID) {
    if (interfaceID.IsValid() && interfaceID == CKWGuid(IID_IKWObject)) {
        return static_cast<IKWObject*>(this);
    }
    return nullptr;
}

int CKWObjectImpl::IsTypeOf(CKWGuid typeID) {
    IKWObjectType* type = GetType();
    return type ? type->IsTypeOf(typeID) : 0;
}
