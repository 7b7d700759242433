// CKWSerialObject: the base class of objects with persistent fields.
//
// An object and its serializable side in one: OnInitialize gives it field
// data for every field of its type's table, OnBeforeRelease frees them.
// Derived classes declare their fields with KW_DECLARE_SERIAL_TYPE and
// KW_BEGIN_FIELDS (KWSerialTypeMacros.h). Their OnInitialize overrides call
// this class's first; their OnBeforeRelease overrides call it last, once they
// agreed to go.
//
//   IKWObject* o = CKWSerialObject::GetCKWSerialObjectType()->CreateInstance(CKWGuid());
//   auto* a = static_cast<IKWSerializableAdaptor*>(o->GetInterface(IID_IKWSerializableAdaptor));
#pragma once

#include "kwcore/object/CKWObjectImpl.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/KWSerialTypeMacros.h"

class KWCORE_API CKWSerialObject : public CKWObjectImpl, public IKWSerializableAdaptor {
    KW_DECLARE_SERIAL_TYPE(CKWSerialObject)

public:
    // Answers IID_IKWSerializableAdaptor too.
    void* GetInterface(CKWGuid interfaceID) override;
    IKWObject* GetThisObject() override { return this; }

protected:
    CKWSerialObject() = default;
    ~CKWSerialObject() override = default;

    int OnInitialize() override;
    int OnBeforeRelease() override;
};
