// The splay tree that holds the sweep status of the polygon triangulation:
// the edges crossing the sweep line, ordered by the x at which they cross it.
//
// A node stores a pointer to an item that knows its own key (`keyValue()`),
// so the tree owns its nodes and never the items. Inserting an item whose key
// equals a stored one raises the new key by 1e-10 (`increaseKeyValue`) until
// it is unique. Keys of sweep edges change as the sweep line moves; with
// `SetKeyRefresh` the tree recomputes (`setKeyValue`) the key of every node a search passes,
// which keeps each operation logarithmic (amortised) instead of refreshing
// all keys before each search.
//
//   SplayTree<Linebase*, double> status;
//   status.SetKeyRefresh(sweepY);
//   status.Insert(edge);
//   BTreeNode<Linebase*, double>* left = 0;
//   status.FindMaxSmallerThan(x, left);
//
// Explicitly instantiated for <Linebase*, double> only.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <vector>

namespace kwPolygonTriangulation {

template <class T, class KeyType>
class SplayTree;

template <class T, class KeyType>
class BTreeNode {
public:
    BTreeNode() : m_data(), m_pLeft(0), m_pRight(0), m_bVisited(false) {}
    BTreeNode(const T& data, BTreeNode* left, BTreeNode* right)
        : m_data(data), m_pLeft(left), m_pRight(right), m_bVisited(false) {}

    T data() const { return m_data; }
    // Replaces the item; the caller keeps the tree's order.
    void setData(const T& data) { m_data = data; }
    KeyType keyValue() const { return m_data->keyValue(); }
    BTreeNode* left() const { return m_pLeft; }
    BTreeNode* right() const { return m_pRight; }
    bool GetVisited() const { return m_bVisited; }
    void SetVisited(bool visited) { m_bVisited = visited; }

private:
    friend class SplayTree<T, KeyType>;
    T m_data;
    BTreeNode* m_pLeft;
    BTreeNode* m_pRight;
    bool m_bVisited;
};

template <class T, class KeyType>
class SplayTree {
public:
    typedef BTreeNode<T, KeyType> Node;
    typedef void (*Visitor)(Node*);
    typedef void (*KeyVisitor)(Node*, KeyType);
    typedef void (*StreamVisitor)(Node*, std::ostream&);

    SplayTree();
    SplayTree(const SplayTree& other);
    SplayTree& operator=(const SplayTree& other);
    ~SplayTree();

    // Adds x; a key equal to a stored one is raised by 1e-10 until unique.
    void Insert(const T& x);
    // Removes the node with this key, if any.
    void Delete(const KeyType& key);
    // Removes the node with this key and hands it to the caller, who deletes
    // it (a node of its own, allocated with new); null when there is none.
    void Delete(const KeyType& key, Node*& removed);
    // Remove the smallest (largest) node and hand it to the caller.
    void DeleteMin(Node*& removed);
    void DeleteMax(Node*& removed);

    // Null when absent. Searches splay the tree, so they are not const.
    Node* Find(const KeyType& key);
    Node* FindMin();
    Node* FindMax();
    // The node with the largest key smaller than `key`, or null.
    void FindMaxSmallerThan(const KeyType& key, Node*& result);

    void MakeEmpty();
    bool IsEmpty() const { return m_pRoot == 0; }
    long Size() const { return m_size; }
    // Nodes on the longest root-to-leaf path (0 for an empty tree).
    int Height() const;
    Node* Root() const { return m_pRoot; }

    void PreOrder(Visitor visit) const;
    void InOrder(Visitor visit) const;
    void InOrder(KeyVisitor visit, KeyType value) const;
    void InOrder(StreamVisitor visit, std::ostream& out) const;
    void PostOrder(Visitor visit) const;

    // From now on every node a search passes first gets item->setKeyValue(at).
    void SetKeyRefresh(KeyType at) {
        m_bRefresh = true;
        m_refreshAt = at;
    }
    void ClearKeyRefresh() { m_bRefresh = false; }

private:
    void refresh(Node* node) const;
    void splay(const KeyType& key, Node*& t);
    static void rotateWithLeftChild(Node*& k2);
    static void rotateWithRightChild(Node*& k1);
    Node* clone(const Node* t);
    void reclaimMemory(Node* t);
    template <class Visit>
    void inOrderWalk(Visit visit) const;

    Node* newNode(const T& x);
    void recycle(Node* node);
    // Takes the node with this key out of the tree, without handing it over.
    void detach(const KeyType& key, Node*& removed);
    // A removed node handed to the caller: a heap copy, the pooled one reused.
    Node* handOver(Node* node);

    Node* m_pRoot;
    long m_size;
    // The tree's nodes come from blocks it owns, so that a large status is
    // not spread over the heap and goes in a few frees. Removed nodes wait in
    // a list (through their right links) to be reused.
    Node* m_pSpare;
    std::vector<std::unique_ptr<Node[]> > m_blocks;
    std::size_t m_blockUsed;
    std::size_t m_blockSize;
    bool m_bRefresh;
    KeyType m_refreshAt;
};

}  // namespace kwPolygonTriangulation
