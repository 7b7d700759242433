// CKWObjectTypeImpl: the common implementation of type objects.
//
// Concrete classes do not derive from it by hand: KW_DECLARE_TYPE and
// KW_IMPLEMENT_TYPE (KWTypeMacros.h) write the nested type class, whose
// constructor names the type and registers it with the type system.
//
// Creation: CTOR, then the instance ID, then OnInitialize, then tracking.
// Release: OnBeforeRelease may refuse; otherwise untrack, then DTOR.
//
//   CKWObjectTypeImpl* type = CMyShape::GetCMyShapeType();
//   IKWObject* shape = type->CreateInstance(CKWGuid());
//   int alive = type->GetInstanceCount();   // 1
//   shape->Release();                        // handed back to its type
#pragma once

#include <map>
#include <memory>

#include "kwcore/object/IKWObject.h"
#include "kwcore/object/IKWObjectType.h"

namespace kwInstanceTracking {
class InstanceTable;
}  // namespace kwInstanceTracking

class KWCORE_API CKWObjectTypeImpl : public IKWObjectType {
public:
    CKWGuid GetID() override { return m_typeID; }
    CKWGuid GetParentTypeID() override { return m_parentTypeID; }
    void Release() override;
    void SetName(CString name) override { m_name = name; }
    CString GetName() override { return m_name; }
    CString GetClassNameA() override { return m_className; }
    int IsAbstract() override { return m_iAbstract; }
    int HasDerivedTypes() override { return m_derivedTypes.empty() ? 0 : 1; }
    void InitializeType() override {}
    int RegisterWithParentType(IKWObjectType* parent) override;
    IKWObjectType* GetParentType() override { return m_pParentType; }
    CKWGuid GetRepositoryID() override { return m_repositoryID; }
    IKWObject* CreateInstance(CKWGuid instanceID) override;
    int ReleaseInstance(IKWObject* object) override;
    int AddChildType(IKWObjectType* child) override;
    int IsTypeOf(IKWObjectType* type) override;
    int IsTypeOf(CKWGuid typeID) override;
    void GetInstanceList(std::list<CKWGuid>& instanceIDs) override;
    void GetDerivedTypes(std::list<IKWObjectType*>& types) override;
    void RemoveTrackedInstance(IKWObject* object) override;
    void AddTrackedInstance(IKWObject* object) override;
    void SetClassName(CString className) override { m_className = className; }

    // Gives a live object another instance ID and re-files it under that ID
    // with its type: for archives that restore the IDs objects were stored with.
    static void ChangeInstanceID(IKWObject* object, const CKWGuid& instanceID);

    // Releases every live instance this type made, lowest instance ID first;
    // an instance that refuses stays alive and tracked. Gives the number released.
    int ReleaseInstances();

    // The number of live instances this type made (not those of derived types).
    int GetInstanceCount() const;
    // The tracked instance with that ID, or null.
    IKWObject* FindInstance(const CKWGuid& instanceID) const;

protected:
    CKWObjectTypeImpl();
    // A type object that goes away (a plug-in module unloaded) leaves the type system.
    ~CKWObjectTypeImpl() override;

    // Stores the ID and registers the type; every type constructor calls it.
    void SetID(CKWGuid typeID) override;
    void SetParentTypeID(CKWGuid parentTypeID) override { m_parentTypeID = parentTypeID; }
    void SetRepositoryID(CKWGuid repositoryID) override { m_repositoryID = repositoryID; }
    void SetAbstract(int abstract) { m_iAbstract = abstract; }

private:
    void ReleaseTrackedInstances();

    int m_iAbstract = 0;
    CKWGuid m_typeID;
    CKWGuid m_repositoryID;
    CKWGuid m_parentTypeID;
    CString m_name;
    CString m_className;
    // Keyed by instance ID; listed and released in ascending ID order.
    std::unique_ptr<kwInstanceTracking::InstanceTable> m_pTrackedInstances;
    IKWObjectType* m_pParentType = nullptr;
    std::map<CKWGuid, IKWObjectType*> m_derivedTypes;
};
