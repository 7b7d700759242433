// CKWObjectImpl: the common implementation of framework objects.
//
// Holds the instance ID and answers the object interface. Derive framework
// classes from it and give each one its type with KW_DECLARE_TYPE and
// KW_IMPLEMENT_TYPE (KWTypeMacros.h). Instances are made only by their type:
//
//   IKWObject* o = CKWObjectImpl::GetCKWObjectImplType()->CreateInstance(CKWGuid());
#pragma once

#include "kwcore/object/IKWObject.h"
#include "kwcore/object/KWTypeMacros.h"

class KWCORE_API CKWObjectImpl : public IKWObject {
    KW_DECLARE_TYPE_OBJECT(CKWObjectImpl, CKWObjectTypeImpl)

public:
    // Answers IID_IKWObject with this object; anything else with null.
    // Classes with more interfaces ask this first, then check their own.
    void* GetInterface(CKWGuid interfaceID) override;
    CKWGuid GetInstanceID() override { return m_instanceID; }
    // The same, for code that holds the object as const.
    CKWGuid GetInstanceID() const { return m_instanceID; }
    int IsTypeOf(CKWGuid typeID) override;
    bool operator==(CKWGuid instanceID) override { return m_instanceID == instanceID; }
    // Does nothing and gives 1 here; every concrete class releases through its type.
    int Release() override { return 1; }

protected:
    CKWObjectImpl() = default;
    ~CKWObjectImpl() override = default;

    void SetInstanceID(CKWGuid instanceID) override { m_instanceID = instanceID; }
    int OnBeforeRelease() override { return 1; }
    int OnInitialize() override { return 1; }

private:
    CKWGuid m_instanceID;
};
