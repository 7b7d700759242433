// IKWIterator<T>: a forward walk over a framework collection.
//
// Iterators are handed out by value, attached to their collection; they do
// not follow changes made to it during a walk, so code that removes elements
// while walking starts the walk again.
//
//   auto it = node->GetEdgeIterator();
//   for (CKWGraphEdge* e = it.GetNext(1); e; e = it.GetNext(0)) { ... }
#pragma once

template <class T>
class IKWIterator {
public:
    // With bFromStart nonzero, first goes back to the first element. Gives the
    // current element and steps past it, or null at the end.
    virtual T* GetNext(int bFromStart) = 0;
    // With bFromStart nonzero and a collection attached, goes to the first element.
    virtual void Reset(int bFromStart) = 0;
    // Whether the iterator is attached to a collection (not whether it is at the end).
    virtual bool IsValid() = 0;

protected:
    ~IKWIterator() = default;
};
