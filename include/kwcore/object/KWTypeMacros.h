// The per-class type pattern, written once.
//
// Every framework class X carries a nested type class X::XType, a static
// type object m_XType (registered with the type system while the module
// loads), a static accessor GetXType(), and overrides of GetType() and
// Release(). Two macros write all of it:
//
//   // MyShape.h
//   class MyShape : public CKWObjectImpl {
//       KW_DECLARE_TYPE(MyShape, CKWObjectTypeImpl)
//   public:
//       ...
//   protected:
//       MyShape() = default;   // only the type object makes instances
//   };
//
//   // MyShape.cpp
//   // type ID, then the parent type ID (here CKWObjectImpl's)
//   KW_IMPLEMENT_TYPE(MyShape, "{6E0D...}", "{3719246B-C3B0-4AE9-9723-6E998C42484A}")
//
// KW_DECLARE_TYPE leaves the class body at private access, like the start of
// a class. Abstract classes (never instantiated themselves) use
// KW_DECLARE_ABSTRACT_TYPE and KW_IMPLEMENT_ABSTRACT_TYPE: their type makes
// nothing and frees nothing.
//
// The type ID and parent type ID are anything CKWGuid accepts: a brace text
// "{...}", a GUID record, or a CKWGuid. The type's name and class name are
// the class name.
//
// Type objects are constructed ahead of the module's other static objects
// (they may be looked up from any static constructor); their constructors
// must therefore not rely on other statics. A module collects its types with
// one CKWTypeSystem::Initialize call once they exist (in main, or when a
// plug-in starts); the library does so for its own types while it loads.
#pragma once

#include <new>

#include "kwcore/object/CKWObjectTypeImpl.h"

#if defined(__GNUC__)
#define KW_TYPE_OBJECT_PRIORITY 1000
#define KW_TYPE_OBJECT_STORAGE __attribute__((init_priority(KW_TYPE_OBJECT_PRIORITY)))
#else
#define KW_TYPE_OBJECT_STORAGE
#endif

// Everything but Release(), with extra members ending the nested type class
// (public at their start): how a layer above adds its type hooks.
#define KW_DECLARE_TYPE_OBJECT_WITH(Class, TypeBase, TypeMembers) \
public:                                                           \
    class Class##Type : public TypeBase {                         \
    public:                                                       \
        Class##Type();                                            \
                                                                  \
    protected:                                                    \
        IKWObject* CTOR() override;                               \
        void DTOR(IKWObject* object) override;                    \
                                                                  \
    public:                                                       \
        TypeMembers                                               \
    };                                                            \
    static Class##Type* Get##Class##Type();                       \
    IKWObjectType* GetType() override;                            \
                                                                  \
protected:                                                        \
    static Class##Type m_##Class##Type;                           \
                                                                  \
private:

// Everything but Release(): for classes whose Release is written by hand.
#define KW_DECLARE_TYPE_OBJECT(Class, TypeBase) KW_DECLARE_TYPE_OBJECT_WITH(Class, TypeBase, )

#define KW_DECLARE_TYPE_WITH(Class, TypeBase, TypeMembers)    \
    KW_DECLARE_TYPE_OBJECT_WITH(Class, TypeBase, TypeMembers) \
public:                                                       \
    int Release() override;                                   \
                                                              \
private:

#define KW_DECLARE_TYPE(Class, TypeBase) KW_DECLARE_TYPE_WITH(Class, TypeBase, )

#define KW_DECLARE_ABSTRACT_TYPE(Class, TypeBase) KW_DECLARE_TYPE(Class, TypeBase)

#define KW_IMPLEMENT_TYPE_COMMON_(Class, TypeID, ParentTypeID, IsAbstract) \
    Class::Class##Type::Class##Type() {                                    \
        SetAbstract(IsAbstract);                                           \
        SetName(#Class);                                                   \
        SetClassName(#Class);                                              \
        SetParentTypeID(CKWGuid(ParentTypeID));                            \
        SetID(CKWGuid(TypeID));                                            \
    }                                                                      \
    Class::Class##Type* Class::Get##Class##Type() {                        \
        return &m_##Class##Type;                                           \
    }                                                                      \
    IKWObjectType* Class::GetType() {                                      \
        return &m_##Class##Type;                                           \
    }                                                                      \
    Class::Class##Type Class::m_##Class##Type KW_TYPE_OBJECT_STORAGE;

// Everything but Release(), for a class declared with KW_DECLARE_TYPE_OBJECT.
// DTOR destroys the object as its own class, so members are freed with it;
// what an object holds in other objects is still given back in OnBeforeRelease.
#define KW_IMPLEMENT_TYPE_OBJECT(Class, TypeID, ParentTypeID) \
    KW_IMPLEMENT_TYPE_COMMON_(Class, TypeID, ParentTypeID, 0) \
    IKWObject* Class::Class##Type::CTOR() {                   \
        return new (std::nothrow) Class();                    \
    }                                                         \
    void Class::Class##Type::DTOR(IKWObject* object) {        \
        delete static_cast<Class*>(object);                   \
    }

#define KW_IMPLEMENT_TYPE(Class, TypeID, ParentTypeID)    \
    KW_IMPLEMENT_TYPE_OBJECT(Class, TypeID, ParentTypeID) \
    int Class::Release() {                                \
        return m_##Class##Type.ReleaseInstance(this);     \
    }

#define KW_IMPLEMENT_ABSTRACT_TYPE(Class, TypeID, ParentTypeID) \
    KW_IMPLEMENT_TYPE_COMMON_(Class, TypeID, ParentTypeID, 1)   \
    IKWObject* Class::Class##Type::CTOR() {                     \
        return nullptr;                                         \
    }                                                           \
    void Class::Class##Type::DTOR(IKWObject*) {}                \
    int Class::Release() {                                      \
        return m_##Class##Type.ReleaseInstance(this);           \
    }
