// SplayTree and its one exported instantiation, for the triangulation's
// edges. Walks use explicit stacks: a splay tree may degenerate into a path as
// long as the polygon has vertices.
#include "kwcore/geometry/triangulation/KWSplayTree.h"

#include <utility>
#include <vector>

#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace kwPolygonTriangulation {

template <class T, class KeyType>
SplayTree<T, KeyType>::SplayTree()
    : m_pRoot(0),
      m_size(0),
      m_pSpare(0),
      m_blockUsed(0),
      m_blockSize(0),
      m_bRefresh(false),
      m_refreshAt() {}

template <class T, class KeyType>
SplayTree<T, KeyType>::SplayTree(const SplayTree& other)
    : m_pRoot(0),
      m_size(other.m_size),
      m_pSpare(0),
      m_blockUsed(0),
      m_blockSize(0),
      m_bRefresh(other.m_bRefresh),
      m_refreshAt(other.m_refreshAt) {
    m_pRoot = clone(other.m_pRoot);
}

template <class T, class KeyType>
SplayTree<T, KeyType>& SplayTree<T, KeyType>::operator=(const SplayTree& other) {
    if (this != &other) {
        Node* copy = clone(other.m_pRoot);
        MakeEmpty();
        m_pRoot = copy;
        m_size = other.m_size;
        m_bRefresh = other.m_bRefresh;
        m_refreshAt = other.m_refreshAt;
    }
    return *this;
}

// Every node lives in a block: they go with the blocks.
template <class T, class KeyType>
SplayTree<T, KeyType>::~SplayTree() {}

template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::newNode(const T& x) {
    Node* node = m_pSpare;
    if (node != 0) {
        m_pSpare = node->m_pRight;
    } else {
        if (m_blockUsed == m_blockSize) {
            m_blockSize = m_blockSize == 0 ? 64 : 2 * m_blockSize;
            m_blocks.emplace_back(new Node[m_blockSize]);
            m_blockUsed = 0;
        }
        node = &m_blocks.back()[m_blockUsed++];
    }
    *node = Node(x, 0, 0);
    return node;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::recycle(Node* node) {
    node->m_pLeft = 0;
    node->m_pRight = m_pSpare;
    m_pSpare = node;
}

template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::handOver(Node* node) {
    Node* copy = new Node(node->m_data, 0, 0);
    copy->m_bVisited = node->m_bVisited;
    recycle(node);
    return copy;
}

template <class T, class KeyType>
inline void SplayTree<T, KeyType>::refresh(Node* node) const {
    if (m_bRefresh) {
        node->m_data->setKeyValue(m_refreshAt);
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::Insert(const T& x) {
    Node* node = newNode(x);
    if (m_pRoot == 0) {
        m_pRoot = node;
        ++m_size;
        return;
    }
    T item = x;
    for (;;) {
        const KeyType key = item->keyValue();
        splay(key, m_pRoot);
        const KeyType rootKey = m_pRoot->keyValue();
        if (key < rootKey) {
            node->m_pLeft = m_pRoot->m_pLeft;
            node->m_pRight = m_pRoot;
            m_pRoot->m_pLeft = 0;
        } else if (rootKey < key) {
            node->m_pRight = m_pRoot->m_pRight;
            node->m_pLeft = m_pRoot;
            m_pRoot->m_pRight = 0;
        } else {
            item->increaseKeyValue(1e-10);
            continue;
        }
        m_pRoot = node;
        ++m_size;
        return;
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::Delete(const KeyType& key) {
    Node* removed = 0;
    detach(key, removed);
    if (removed != 0) {
        recycle(removed);
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::Delete(const KeyType& key, Node*& removed) {
    detach(key, removed);
    if (removed != 0) {
        removed = handOver(removed);
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::detach(const KeyType& key, Node*& removed) {
    removed = 0;
    if (m_pRoot == 0) {
        return;
    }
    splay(key, m_pRoot);
    if (m_pRoot->keyValue() != key) {
        return;
    }
    removed = m_pRoot;
    if (m_pRoot->m_pLeft == 0) {
        m_pRoot = m_pRoot->m_pRight;
    } else {
        Node* right = m_pRoot->m_pRight;
        m_pRoot = m_pRoot->m_pLeft;
        splay(key, m_pRoot);  // the largest of the left part comes up, without a right child
        m_pRoot->m_pRight = right;
    }
    removed->m_pLeft = removed->m_pRight = 0;
    --m_size;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::DeleteMin(Node*& removed) {
    removed = FindMin();
    if (removed != 0) {
        m_pRoot = removed->m_pRight;
        --m_size;
        removed = handOver(removed);
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::DeleteMax(Node*& removed) {
    removed = FindMax();
    if (removed != 0) {
        m_pRoot = removed->m_pLeft;
        --m_size;
        removed = handOver(removed);
    }
}

template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::Find(const KeyType& key) {
    if (m_pRoot == 0) {
        return 0;
    }
    splay(key, m_pRoot);
    return m_pRoot->keyValue() == key ? m_pRoot : 0;
}

// Min and max rotate the extreme node to the root (a splay by position).
template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::FindMin() {
    if (m_pRoot == 0) {
        return 0;
    }
    while (m_pRoot->m_pLeft != 0) {
        rotateWithLeftChild(m_pRoot);
    }
    return m_pRoot;
}

template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::FindMax() {
    if (m_pRoot == 0) {
        return 0;
    }
    while (m_pRoot->m_pRight != 0) {
        rotateWithRightChild(m_pRoot);
    }
    return m_pRoot;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::FindMaxSmallerThan(const KeyType& key, Node*& result) {
    result = 0;
    if (m_pRoot == 0) {
        return;
    }
    splay(key, m_pRoot);
    if (m_pRoot->keyValue() < key) {
        result = m_pRoot;
    } else if (m_pRoot->m_pLeft != 0) {
        result = m_pRoot->m_pLeft;
        while (result->m_pRight != 0) {
            result = result->m_pRight;
        }
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::MakeEmpty() {
    reclaimMemory(m_pRoot);
    m_pRoot = 0;
    m_size = 0;
}

template <class T, class KeyType>
int SplayTree<T, KeyType>::Height() const {
    int height = 0;
    std::vector<std::pair<const Node*, int> > pending;
    if (m_pRoot != 0) {
        pending.push_back(std::make_pair(m_pRoot, 1));
    }
    while (!pending.empty()) {
        const std::pair<const Node*, int> top = pending.back();
        pending.pop_back();
        height = top.second > height ? top.second : height;
        if (top.first->m_pLeft != 0) {
            pending.push_back(std::make_pair(top.first->m_pLeft, top.second + 1));
        }
        if (top.first->m_pRight != 0) {
            pending.push_back(std::make_pair(top.first->m_pRight, top.second + 1));
        }
    }
    return height;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::PreOrder(Visitor visit) const {
    std::vector<Node*> pending;
    if (m_pRoot != 0) {
        pending.push_back(m_pRoot);
    }
    while (!pending.empty()) {
        Node* node = pending.back();
        pending.pop_back();
        visit(node);
        if (node->m_pRight != 0) {
            pending.push_back(node->m_pRight);
        }
        if (node->m_pLeft != 0) {
            pending.push_back(node->m_pLeft);
        }
    }
}

template <class T, class KeyType>
template <class Visit>
void SplayTree<T, KeyType>::inOrderWalk(Visit visit) const {
    std::vector<Node*> pending;
    Node* node = m_pRoot;
    while (node != 0 || !pending.empty()) {
        while (node != 0) {
            pending.push_back(node);
            node = node->m_pLeft;
        }
        node = pending.back();
        pending.pop_back();
        visit(node);
        node = node->m_pRight;
    }
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::InOrder(Visitor visit) const {
    inOrderWalk([visit](Node* node) { visit(node); });
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::InOrder(KeyVisitor visit, KeyType value) const {
    inOrderWalk([visit, value](Node* node) { visit(node, value); });
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::InOrder(StreamVisitor visit, std::ostream& out) const {
    inOrderWalk([visit, &out](Node* node) { visit(node, out); });
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::PostOrder(Visitor visit) const {
    // Reversed (node, right, left) pre-order is post-order.
    std::vector<Node*> pending;
    std::vector<Node*> order;
    if (m_pRoot != 0) {
        pending.push_back(m_pRoot);
    }
    while (!pending.empty()) {
        Node* node = pending.back();
        pending.pop_back();
        order.push_back(node);
        if (node->m_pLeft != 0) {
            pending.push_back(node->m_pLeft);
        }
        if (node->m_pRight != 0) {
            pending.push_back(node->m_pRight);
        }
    }
    for (typename std::vector<Node*>::reverse_iterator it = order.rbegin(); it != order.rend();
         ++it) {
        visit(*it);
    }
}

// Top-down splay: afterwards t is the node with the key, or the last node
// the search for it reached.
template <class T, class KeyType>
void SplayTree<T, KeyType>::splay(const KeyType& key, Node*& t) {
    if (t == 0) {
        return;
    }
    Node header;
    Node* leftTreeMax = &header;
    Node* rightTreeMin = &header;
    for (;;) {
        refresh(t);
        if (key < t->keyValue()) {
            if (t->m_pLeft == 0) {
                break;
            }
            refresh(t->m_pLeft);
            if (key < t->m_pLeft->keyValue()) {
                rotateWithLeftChild(t);
                if (t->m_pLeft == 0) {
                    break;
                }
            }
            rightTreeMin->m_pLeft = t;
            rightTreeMin = t;
            t = t->m_pLeft;
        } else if (t->keyValue() < key) {
            if (t->m_pRight == 0) {
                break;
            }
            refresh(t->m_pRight);
            if (t->m_pRight->keyValue() < key) {
                rotateWithRightChild(t);
                if (t->m_pRight == 0) {
                    break;
                }
            }
            leftTreeMax->m_pRight = t;
            leftTreeMax = t;
            t = t->m_pRight;
        } else {
            break;
        }
    }
    leftTreeMax->m_pRight = t->m_pLeft;
    rightTreeMin->m_pLeft = t->m_pRight;
    t->m_pLeft = header.m_pRight;
    t->m_pRight = header.m_pLeft;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::rotateWithLeftChild(Node*& k2) {
    Node* k1 = k2->m_pLeft;
    k2->m_pLeft = k1->m_pRight;
    k1->m_pRight = k2;
    k2 = k1;
}

template <class T, class KeyType>
void SplayTree<T, KeyType>::rotateWithRightChild(Node*& k1) {
    Node* k2 = k1->m_pRight;
    k1->m_pRight = k2->m_pLeft;
    k2->m_pLeft = k1;
    k1 = k2;
}

template <class T, class KeyType>
typename SplayTree<T, KeyType>::Node* SplayTree<T, KeyType>::clone(const Node* t) {
    if (t == 0) {
        return 0;
    }
    Node* copy = newNode(t->m_data);
    std::vector<std::pair<const Node*, Node*> > pending(1, std::make_pair(t, copy));
    while (!pending.empty()) {
        const std::pair<const Node*, Node*> top = pending.back();
        pending.pop_back();
        top.second->m_bVisited = top.first->m_bVisited;
        if (top.first->m_pLeft != 0) {
            top.second->m_pLeft = newNode(top.first->m_pLeft->m_data);
            pending.push_back(std::make_pair(top.first->m_pLeft, top.second->m_pLeft));
        }
        if (top.first->m_pRight != 0) {
            top.second->m_pRight = newNode(top.first->m_pRight->m_data);
            pending.push_back(std::make_pair(top.first->m_pRight, top.second->m_pRight));
        }
    }
    return copy;
}

// Puts every node of the subtree on the spare list.
template <class T, class KeyType>
void SplayTree<T, KeyType>::reclaimMemory(Node* t) {
    std::vector<Node*> pending;
    if (t != 0) {
        pending.push_back(t);
    }
    while (!pending.empty()) {
        Node* node = pending.back();
        pending.pop_back();
        if (node->m_pLeft != 0) {
            pending.push_back(node->m_pLeft);
        }
        if (node->m_pRight != 0) {
            pending.push_back(node->m_pRight);
        }
        recycle(node);
    }
}

// Exported through the extern declaration in KWPolygonTriangulation.h.
template class SplayTree<Linebase*, double>;

}  // namespace kwPolygonTriangulation
