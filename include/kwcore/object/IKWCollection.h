// IKWReadOnlyCollection and IKWCollection<T>: how framework objects expose
// the objects they hold. The containers behind them never own their
// elements; only RemoveAll(true) releases them.
//
//   IKWReadOnlyCollection* edges = node->GetEdgeCollection();
//   auto* edge = static_cast<CKWGraphEdge*>(edges->Find(edgeID));
#pragma once

#include "kwcore/object/CKWGuid.h"

class IKWReadOnlyCollection {
public:
    virtual int GetCount() = 0;
    // The element whose instance ID equals instanceID, untyped, or null.
    virtual void* Find(CKWGuid instanceID) = 0;

protected:
    ~IKWReadOnlyCollection() = default;
};

template <class T>
class IKWCollection : public IKWReadOnlyCollection {
public:
    // Empties the collection; with bRelease, releases every element too.
    virtual void RemoveAll(bool bRelease) = 0;
    // 1 when added; 0 for null or an element already held.
    virtual int Add(T* element) = 0;
    // 1 when removed; 0 when not found. The element itself is left alone.
    virtual int Remove(T* element) = 0;

protected:
    ~IKWCollection() = default;
};
