// CKWObjFieldT<T> and CKWObjFieldDataT<T>: a field holding one link.
//
// The member is a T* (T a framework class). Saving writes the link as a
// (type ID, instance ID) pair and then saves the linked object into the same
// document, so a graph is saved from any of its objects; loading resolves the
// pair through the document, loading the linked object on demand. The link
// is not owned: neither the field data nor the stream releases it.
//
//   auto* field = new CKWObjFieldT<CMyPart>(&CKWFieldMember<&CMyPart::m_pNext>::Get);
#pragma once

#include <new>
#include <type_traits>

#include "kwcore/object/IKWObject.h"
#include "kwcore/serial/CKWFieldAdaptor.h"
#include "kwcore/serial/CKWFieldDataAdaptor.h"
#include "kwcore/serial/IKWFieldStream.h"

// Saves a linked object into the stream's document; 1 for null or an object
// that is not serializable (its link alone is stored).
KWCORE_API int KWSaveLinkedObject(IKWFieldStream* stream, IKWObject* object);

template <class T>
class CKWObjFieldDataT : public CKWFieldDataAdaptor {
public:
    static_assert(std::is_base_of_v<IKWObject, T>, "links point to framework objects");

    CKWObjFieldDataT(IKWField* field, CKWSerialObject* origin, T** link)
        : CKWFieldDataAdaptor(field, origin), m_ppLink(link) {}

    T* GetLink() const { return *m_ppLink; }
    void SetLink(T* object) { *m_ppLink = object; }

    // The linked object's instance ID; "Not Set" without one.
    CString GetStringValue() override {
        return *m_ppLink ? (*m_ppLink)->GetInstanceID().GetCString() : CString("Not Set");
    }
    int Equals(IKWFieldData* other) override {
        auto* same = dynamic_cast<CKWObjFieldDataT*>(other);
        return same && same->GetLink() == GetLink() ? 1 : 0;
    }
    int SetTo(IKWFieldData* other) override {
        auto* same = dynamic_cast<CKWObjFieldDataT*>(other);
        if (!same) {
            return 0;
        }
        SetLink(same->GetLink());
        return 1;
    }
    int SerializeTo(IKWFieldStream* stream) override {
        if (!stream || !stream->WriteLink(this, *m_ppLink)) {
            return 0;
        }
        return KWSaveLinkedObject(stream, *m_ppLink);
    }
    // An object of another class than T reads as an unset link.
    int SerializeFrom(IKWFieldStream* stream) override {
        if (!stream) {
            return 0;
        }
        *m_ppLink = dynamic_cast<T*>(stream->ReadLink(this));
        return 1;
    }

private:
    T** m_ppLink;
};

template <class T>
class CKWObjFieldT : public CKWFieldAdaptor {
public:
    using Accessor = T*& (*)(CKWSerialObject*);

    explicit CKWObjFieldT(Accessor accessor) : m_access(accessor) {}

    IKWFieldData* CreateFieldData(CKWSerialObject* object) override {
        if (!object || !m_access) {
            return nullptr;
        }
        return new (std::nothrow) CKWObjFieldDataT<T>(this, object, &m_access(object));
    }

private:
    Accessor m_access;
};
