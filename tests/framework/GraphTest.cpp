// Nodes and edges: connecting, disconnecting, neighbours, marks and release.
#include <gtest/gtest.h>

#include <vector>

#include "GraphTestTypes.h"

namespace {

class Graph : public ::testing::Test {
protected:
    void SetUp() override {
        m_a = NewNode();
        m_b = NewNode();
        m_c = NewNode();
        ASSERT_TRUE(m_a && m_b && m_c);
    }
    void TearDown() override {
        ReleaseAllGraphObjects();
        EXPECT_EQ(LiveGraphObjects(), 0);
    }
    CKWGraphEdge* NewEdge() {
        return KWTestCreate<CKWGraphEdge>(CKWGraphEdge::GetCKWGraphEdgeType());
    }

    CKWGraphNode* m_a = nullptr;
    CKWGraphNode* m_b = nullptr;
    CKWGraphNode* m_c = nullptr;
};

TEST_F(Graph, ConnectAddsTheEdgeToBothNodesInAttachOrder) {
    CKWGraphEdge* ab = Join(m_a, m_b);
    CKWGraphEdge* ca = Join(m_c, m_a);
    ASSERT_TRUE(ab && ca);
    EXPECT_TRUE(ab->IsConnected());
    using Edges = std::vector<CKWGraphEdge*>;
    EXPECT_EQ((Edges{m_a->GetEdge(-1), m_a->GetEdge(0), m_a->GetEdge(1), m_a->GetEdge(2)}),
              (Edges{nullptr, ab, ca, nullptr}));
    EXPECT_EQ(
        (std::vector<CKWGraphNode*>{m_a->GetNeighbor(0), m_a->GetNeighbor(1), m_a->GetNeighbor(2)}),
        (std::vector<CKWGraphNode*>{m_b, m_c, nullptr}));
    EXPECT_EQ((Edges{m_b->GetEdgeToNeighbor(m_a), m_b->GetEdgeToNeighbor(m_c),
                     m_b->GetEdgeToNeighbor(nullptr)}),
              (Edges{ab, nullptr, nullptr}));
    EXPECT_EQ(m_a->GetEdgeCollection()->GetCount(), 2);
    EXPECT_EQ(m_a->GetEdgeCollection()->Find(ca->GetInstanceID()), ca);
    EXPECT_TRUE(ab->HasNode(m_a) && ab->HasNode(m_b));
    EXPECT_FALSE(ab->HasNode(m_c) || ab->HasNode(nullptr));
}

TEST_F(Graph, SetNodesAndConnectRefuseBadInput) {
    CKWGraphEdge* edge = NewEdge();
    EXPECT_FALSE(edge->IsConnected());
    EXPECT_EQ(edge->GetDirection(), CKWGraphEdge::BothWays);
    EXPECT_EQ(edge->Connect(), 0);  // no nodes yet
    EXPECT_EQ(edge->SetNodes(m_a, nullptr), 0);
    EXPECT_EQ(edge->SetNodes(nullptr, m_b), 0);
    EXPECT_EQ(edge->GetPrimary(), nullptr);
    // A self-loop takes its nodes but cannot connect, and leaves the list as it was.
    ASSERT_EQ(edge->SetNodes(m_a, m_a), 1);
    EXPECT_EQ(edge->Connect(), 0);
    EXPECT_EQ(m_a->m_EdgeList.GetCount(), 0);
    EXPECT_FALSE(edge->IsConnected());
    // A connected edge keeps its nodes and cannot connect twice.
    ASSERT_EQ(edge->SetNodes(m_a, m_b), 1);
    ASSERT_EQ(edge->Connect(), 1);
    EXPECT_EQ(edge->SetNodes(m_b, m_c), 0);
    EXPECT_EQ(edge->GetSecondary(), m_b);
    EXPECT_EQ(edge->Connect(), 0);
    EXPECT_EQ(m_a->m_EdgeList.GetCount(), 1);
    EXPECT_EQ(m_b->m_EdgeList.GetCount(), 1);
}

TEST_F(Graph, DisconnectAndReleaseTakeTheEdgeOutOfBothNodes) {
    ASSERT_EQ(Join(m_a, m_c)->Release(), 1);
    EXPECT_EQ(m_a->m_EdgeList.GetCount() + m_c->m_EdgeList.GetCount(), 0);
    CKWGraphEdge* ab = Join(m_a, m_b);
    ASSERT_EQ(ab->Disconnect(), 1);
    EXPECT_FALSE(ab->IsConnected());
    EXPECT_EQ(ab->GetPrimary(), nullptr);
    EXPECT_EQ(ab->GetSecondary(), nullptr);
    EXPECT_EQ(m_a->m_EdgeList.GetCount() + m_b->m_EdgeList.GetCount(), 0);
    EXPECT_EQ(ab->Disconnect(), 0);  // nothing to disconnect
    // Set but never connected: the removals fail, the nodes are cleared.
    ASSERT_EQ(ab->SetNodes(m_b, m_c), 1);
    EXPECT_EQ(ab->Disconnect(), 0);
    EXPECT_EQ(ab->GetPrimary(), nullptr);
}

TEST_F(Graph, SwapNodesCopiesTheSecondaryIntoThePrimaryOnlyWhenConnected) {
    CKWGraphEdge* edge = NewEdge();
    ASSERT_EQ(edge->SetNodes(m_a, m_b), 1);
    EXPECT_EQ(edge->SwapNodes(), 0);
    EXPECT_EQ(edge->GetPrimary(), m_a);
    ASSERT_EQ(edge->Connect(), 1);
    EXPECT_EQ(edge->SwapNodes(), 1);
    EXPECT_EQ(edge->GetPrimary(), m_b);
    EXPECT_EQ(edge->GetSecondary(), m_b);
    EXPECT_TRUE(m_a->m_EdgeList.Contains(edge));  // the lists are untouched
}

TEST_F(Graph, NeighboursFollowTheDirection) {
    CKWGraphEdge* both = Join(m_a, m_b);
    CKWGraphEdge* oneWay = Join(m_a, m_c, COneWayEdge::GetCOneWayEdgeType());
    ASSERT_TRUE(both && oneWay);
    EXPECT_EQ(oneWay->GetDirection(), CKWGraphEdge::ToSecondary);
    EXPECT_EQ(both->GetNeighbor(m_a), m_b);
    EXPECT_EQ(both->GetNeighbor(m_b), m_a);
    EXPECT_EQ(oneWay->GetNeighbor(m_a), m_c);
    EXPECT_EQ(oneWay->GetNeighbor(m_c), nullptr);
    EXPECT_EQ(both->GetNeighbor(m_c), nullptr);
    EXPECT_EQ(both->GetNeighbor(nullptr), nullptr);
    EXPECT_EQ(m_c->GetNeighbor(0), nullptr);
    EXPECT_EQ(m_c->GetEdgeToNeighbor(m_a), nullptr);
}

TEST_F(Graph, ReleasingANodeReleasesItsEdgesAndTakesThemFromItsNeighbours) {
    ASSERT_TRUE(Join(m_a, m_b) && Join(m_c, m_a) && Join(m_b, m_c));
    const int edges = CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount();
    ASSERT_EQ(edges, 3);
    ASSERT_EQ(m_a->Release(), 1);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 1);
    EXPECT_EQ(m_b->m_EdgeList.GetCount(), 1);
    EXPECT_EQ(m_c->m_EdgeList.GetCount(), 1);
    EXPECT_EQ(m_b->GetNeighbor(0), m_c);
}

TEST_F(Graph, AnyReleaseOrderLeavesNothingBehind) {
    for (int order = 0; order < 3; ++order) {
        CKWGraphNode* nodes[3] = {NewNode(), NewNode(), NewNode()};
        CKWGraphEdge* edges[3] = {Join(nodes[0], nodes[1]), Join(nodes[1], nodes[2]),
                                  Join(nodes[2], nodes[0])};
        ASSERT_TRUE(edges[0] && edges[1] && edges[2]);
        if (order == 0) {
            edges[1]->Release();
        }
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(nodes[(i + order) % 3]->Release(), 1);
        }
    }
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 3);  // the fixture's
}

}  // namespace
