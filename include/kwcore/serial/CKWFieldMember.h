// CKWFieldMember<&Class::m_member>: how a field reaches its member in an object.
//
// A field is declared once per class but bound to the member of each object;
// this turns a pointer to member into a plain accessor function, checked at
// compile time against the serializable class. Used by the field templates
// and the field declarations of KWSerialTypeMacros.h.
//
//   CString& (*access)(CKWSerialObject*) = &CKWFieldMember<&CMyPart::m_Name>::Get;
#pragma once

#include <type_traits>

class CKWSerialObject;

template <class MemberPointer>
struct KWMemberPointerTraits;

template <class Class, class Value>
struct KWMemberPointerTraits<Value Class::*> {
    using ClassType = Class;
    using ValueType = Value;
};

template <auto Member>
struct CKWFieldMember {
    using ClassType = typename KWMemberPointerTraits<decltype(Member)>::ClassType;
    using ValueType = typename KWMemberPointerTraits<decltype(Member)>::ValueType;
    static_assert(std::is_base_of_v<CKWSerialObject, ClassType>,
                  "fields are members of classes derived from CKWSerialObject");

    // The object must be of ClassType: fields bind only objects of their class.
    static ValueType& Get(CKWSerialObject* object) {
        return static_cast<ClassType*>(object)->*Member;
    }
};
