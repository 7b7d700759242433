// CKWObjCollectionFieldT<C> and CKWObjCollectionFieldDataT<C>: a field
// holding a collection of links.
//
// C is CKWObjPtrList<T> (saved and loaded in list order) or
// CKWObjGuidPtrMap<T> (in instance-ID order). Saving writes every link, then
// saves each linked object into the same document; loading empties the
// collection (without releasing anything) and adds each resolved object of
// class T. The collection never owns its elements.
//
//   using Parts = CKWObjPtrList<CMyPart>;
//   auto* field = new CKWObjCollectionFieldT<Parts>(&CKWFieldMember<&CMyPart::m_Parts>::Get);
#pragma once

#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "kwcore/object/IKWObject.h"
#include "kwcore/serial/CKWFieldAdaptor.h"
#include "kwcore/serial/CKWFieldDataAdaptor.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/IKWFieldStream.h"

// A typed collection iterator seen as one over framework objects.
template <class Iterator>
class CKWObjectIteratorAdaptor : public IKWIterator<IKWObject> {
public:
    explicit CKWObjectIteratorAdaptor(Iterator iterator) : m_iterator(std::move(iterator)) {}
    IKWObject* GetNext(int bFromStart) override { return m_iterator.GetNext(bFromStart); }
    void Reset(int bFromStart) override { m_iterator.Reset(bFromStart); }
    bool IsValid() override { return m_iterator.IsValid(); }

private:
    Iterator m_iterator;
};

// A typed collection seen as one of framework objects: adds only objects of
// class T; never releases (the field does not own the linked objects).
template <class C, class T>
class CKWObjectCollectionAdaptor : public IKWCollection<IKWObject> {
public:
    explicit CKWObjectCollectionAdaptor(C& collection) : m_collection(collection) {}
    int GetCount() override { return m_collection.GetCount(); }
    void* Find(CKWGuid instanceID) override { return m_collection.Find(instanceID); }
    void RemoveAll(bool) override { m_collection.RemoveAll(false); }
    int Add(IKWObject* element) override { return m_collection.Add(dynamic_cast<T*>(element)); }
    int Remove(IKWObject* element) override {
        return m_collection.Remove(dynamic_cast<T*>(element));
    }

private:
    C& m_collection;
};

template <class C>
class CKWObjCollectionFieldDataT : public CKWFieldDataAdaptor {
public:
    using ElementType = std::remove_pointer_t<decltype(std::declval<C&>().FindObject(CKWGuid()))>;

    CKWObjCollectionFieldDataT(IKWField* field, CKWSerialObject* origin, C* collection)
        : CKWFieldDataAdaptor(field, origin), m_pCollection(collection) {}

    C& GetCollection() const { return *m_pCollection; }

    // The number of links, for editors.
    CString GetStringValue() override {
        CString text;
        text.Format("%d", m_pCollection->GetCount());
        return text;
    }
    // The same links in the same order.
    int Equals(IKWFieldData* other) override {
        auto* same = dynamic_cast<CKWObjCollectionFieldDataT*>(other);
        return same && same->Elements() == Elements() ? 1 : 0;
    }
    // Takes the other's links (none are released).
    int SetTo(IKWFieldData* other) override {
        auto* same = dynamic_cast<CKWObjCollectionFieldDataT*>(other);
        if (!same) {
            return 0;
        }
        if (same != this) {
            m_pCollection->RemoveAll(false);
            for (ElementType* element : same->Elements()) {
                m_pCollection->Add(element);
            }
        }
        return 1;
    }
    int SerializeTo(IKWFieldStream* stream) override {
        if (!stream) {
            return 0;
        }
        CKWObjectIteratorAdaptor<typename C::Iterator> links(m_pCollection->GetIterator());
        if (!stream->WriteLinks(this, &links)) {
            return 0;
        }
        for (ElementType* element : Elements()) {
            if (!KWSaveLinkedObject(stream, element)) {
                return 0;
            }
        }
        return 1;
    }
    int SerializeFrom(IKWFieldStream* stream) override {
        if (!stream) {
            return 0;
        }
        CKWObjectCollectionAdaptor<C, ElementType> target(*m_pCollection);
        target.RemoveAll(false);
        return stream->ReadLinks(this, &target);
    }

private:
    // Saving a linked object may change the collection, so the walk uses a copy.
    std::vector<ElementType*> Elements() const {
        std::vector<ElementType*> elements;
        auto it = m_pCollection->GetIterator();
        for (ElementType* e = it.GetNext(1); e; e = it.GetNext(0)) {
            elements.push_back(e);
        }
        return elements;
    }

    C* m_pCollection;
};

template <class C>
class CKWObjCollectionFieldT : public CKWFieldAdaptor {
public:
    using Accessor = C& (*)(CKWSerialObject*);

    explicit CKWObjCollectionFieldT(Accessor accessor) : m_access(accessor) {}

    IKWFieldData* CreateFieldData(CKWSerialObject* object) override {
        if (!object || !m_access) {
            return nullptr;
        }
        return new (std::nothrow) CKWObjCollectionFieldDataT<C>(this, object, &m_access(object));
    }

private:
    Accessor m_access;
};
