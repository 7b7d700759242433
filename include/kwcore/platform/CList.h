// CList: MFC's doubly linked list template with its POSITION interface.
//
// The list owns copies of its elements. A POSITION names one element of one
// list until that element is removed; walking functions move it on and set
// it to null past either end. Invalid requests (a null POSITION, the head of
// an empty list) do nothing or return a defaulted element instead of
// failing, and never touch memory outside the list.
//
//   CList<int, int> list;
//   list.AddTail(1); list.AddTail(2);
//   for (POSITION pos = list.GetHeadPosition(); pos;) { int value = list.GetNext(pos); }
#pragma once

#include <utility>

#include "kwcore/platform/CObject.h"
#include "kwcore/platform/CollectionFallback.h"
#include "kwcore/platform/Win32Types.h"

struct KWPosition;
// Opaque handle of a collection element.
typedef KWPosition* POSITION;

template <class TYPE, class ARG_TYPE = const TYPE&>
class CList : public CObject {
public:
    // MFC's node block size is accepted for compatibility; nodes are
    // allocated one by one.
    explicit CList(INT_PTR /*blockSize*/ = 10) {}
    CList(const CList& other) : CList() { AppendCopies(other); }
    CList(CList&& other) noexcept { Swap(other); }
    CList& operator=(const CList& other);
    CList& operator=(CList&& other) noexcept;
    ~CList() override { RemoveAll(); }

    INT_PTR GetCount() const noexcept { return m_count; }
    INT_PTR GetSize() const noexcept { return m_count; }
    BOOL IsEmpty() const noexcept { return m_count == 0; }

    TYPE& GetHead() { return ValueAt(m_head); }
    const TYPE& GetHead() const { return ValueAt(m_head); }
    TYPE& GetTail() { return ValueAt(m_tail); }
    const TYPE& GetTail() const { return ValueAt(m_tail); }

    // Both return the removed element, or a defaulted one for an empty list.
    TYPE RemoveHead();
    TYPE RemoveTail();

    POSITION AddHead(ARG_TYPE newElement) { return ToPosition(Link(nullptr, m_head, newElement)); }
    POSITION AddTail(ARG_TYPE newElement) { return ToPosition(Link(m_tail, nullptr, newElement)); }
    // Adds copies of another list's elements (the list itself is allowed).
    void AddHead(const CList* newList);
    void AddTail(const CList* newList);
    void RemoveAll() noexcept;

    POSITION GetHeadPosition() const noexcept { return ToPosition(m_head); }
    POSITION GetTailPosition() const noexcept { return ToPosition(m_tail); }
    TYPE& GetNext(POSITION& position) { return ValueAt(Step(position, &Node::next)); }
    const TYPE& GetNext(POSITION& position) const { return ValueAt(Step(position, &Node::next)); }
    TYPE& GetPrev(POSITION& position) { return ValueAt(Step(position, &Node::prev)); }
    const TYPE& GetPrev(POSITION& position) const { return ValueAt(Step(position, &Node::prev)); }

    TYPE& GetAt(POSITION position) { return ValueAt(ToNode(position)); }
    const TYPE& GetAt(POSITION position) const { return ValueAt(ToNode(position)); }
    void SetAt(POSITION position, ARG_TYPE newElement);
    void RemoveAt(POSITION position) noexcept;
    // A null position inserts at the head (before) or the tail (after).
    POSITION InsertBefore(POSITION position, ARG_TYPE newElement);
    POSITION InsertAfter(POSITION position, ARG_TYPE newElement);

    // The first element equal to value after startAfter (null: from the head).
    POSITION Find(ARG_TYPE value, POSITION startAfter = nullptr) const;
    // The element at a zero-based index, or null when out of range.
    POSITION FindIndex(INT_PTR index) const noexcept;

protected:
    void Swap(CList& other) noexcept;

private:
    struct Node {
        Node* prev;
        Node* next;
        TYPE data;
    };

    static POSITION ToPosition(Node* node) noexcept { return reinterpret_cast<POSITION>(node); }
    static Node* ToNode(POSITION position) noexcept { return reinterpret_cast<Node*>(position); }
    static TYPE& ValueAt(Node* node) {
        return node ? node->data : kwCollection::InvalidElement<TYPE>();
    }
    static Node* Step(POSITION& position, Node* Node::*direction) noexcept;

    Node* Link(Node* prev, Node* next, ARG_TYPE newElement);
    void Unlink(Node* node) noexcept;
    void AppendCopies(const CList& other);

    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    INT_PTR m_count = 0;
};

template <class TYPE, class ARG_TYPE>
CList<TYPE, ARG_TYPE>& CList<TYPE, ARG_TYPE>::operator=(const CList& other) {
    if (this != &other) {
        CList copy(other);
        Swap(copy);
    }
    return *this;
}

template <class TYPE, class ARG_TYPE>
CList<TYPE, ARG_TYPE>& CList<TYPE, ARG_TYPE>::operator=(CList&& other) noexcept {
    if (this != &other) {
        RemoveAll();
        Swap(other);
    }
    return *this;
}

template <class TYPE, class ARG_TYPE>
TYPE CList<TYPE, ARG_TYPE>::RemoveHead() {
    if (!m_head) {
        return TYPE();
    }
    TYPE removed(std::move(m_head->data));
    Unlink(m_head);
    return removed;
}

template <class TYPE, class ARG_TYPE>
TYPE CList<TYPE, ARG_TYPE>::RemoveTail() {
    if (!m_tail) {
        return TYPE();
    }
    TYPE removed(std::move(m_tail->data));
    Unlink(m_tail);
    return removed;
}

// Copies exactly the elements present on entry, so adding a list to itself
// doubles it once.
template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AddHead(const CList* newList) {
    if (!newList) {
        return;
    }
    Node* source = newList->m_tail;
    for (INT_PTR remaining = newList->m_count; remaining > 0; --remaining, source = source->prev) {
        AddHead(source->data);
    }
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AddTail(const CList* newList) {
    if (!newList) {
        return;
    }
    Node* source = newList->m_head;
    for (INT_PTR remaining = newList->m_count; remaining > 0; --remaining, source = source->next) {
        AddTail(source->data);
    }
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::RemoveAll() noexcept {
    for (Node* node = m_head; node;) {
        Node* next = node->next;
        delete node;
        node = next;
    }
    m_head = m_tail = nullptr;
    m_count = 0;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::SetAt(POSITION position, ARG_TYPE newElement) {
    if (Node* node = ToNode(position)) {
        node->data = newElement;
    }
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::RemoveAt(POSITION position) noexcept {
    if (Node* node = ToNode(position)) {
        Unlink(node);
    }
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::InsertBefore(POSITION position, ARG_TYPE newElement) {
    Node* next = ToNode(position);
    return next ? ToPosition(Link(next->prev, next, newElement)) : AddHead(newElement);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::InsertAfter(POSITION position, ARG_TYPE newElement) {
    Node* prev = ToNode(position);
    return prev ? ToPosition(Link(prev, prev->next, newElement)) : AddTail(newElement);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::Find(ARG_TYPE value, POSITION startAfter) const {
    Node* node = startAfter ? ToNode(startAfter)->next : m_head;
    for (; node; node = node->next) {
        if (node->data == value) {
            return ToPosition(node);
        }
    }
    return nullptr;
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::FindIndex(INT_PTR index) const noexcept {
    if (index < 0 || index >= m_count) {
        return nullptr;
    }
    Node* node = m_head;
    for (; index > 0; --index) {
        node = node->next;
    }
    return ToPosition(node);
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::Swap(CList& other) noexcept {
    std::swap(m_head, other.m_head);
    std::swap(m_tail, other.m_tail);
    std::swap(m_count, other.m_count);
}

template <class TYPE, class ARG_TYPE>
typename CList<TYPE, ARG_TYPE>::Node* CList<TYPE, ARG_TYPE>::Step(POSITION& position,
                                                                  Node* Node::*direction) noexcept {
    Node* node = ToNode(position);
    position = node ? ToPosition(node->*direction) : nullptr;
    return node;
}

template <class TYPE, class ARG_TYPE>
typename CList<TYPE, ARG_TYPE>::Node* CList<TYPE, ARG_TYPE>::Link(Node* prev, Node* next,
                                                                  ARG_TYPE newElement) {
    Node* node = new Node{prev, next, TYPE(newElement)};
    (prev ? prev->next : m_head) = node;
    (next ? next->prev : m_tail) = node;
    ++m_count;
    return node;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::Unlink(Node* node) noexcept {
    (node->prev ? node->prev->next : m_head) = node->next;
    (node->next ? node->next->prev : m_tail) = node->prev;
    delete node;
    --m_count;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AppendCopies(const CList& other) {
    for (Node* node = other.m_head; node; node = node->next) {
        AddTail(node->data);
    }
}
