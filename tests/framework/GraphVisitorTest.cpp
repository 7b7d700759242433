// Visitors: sessions, the traversal lock, depth-first order, filters and release,
// also of a chain of a million nodes on an ordinary stack.
#include <gtest/gtest.h>

#include <vector>

#include "GraphTestTypes.h"
#include "KWTestScale.h"

namespace {

std::vector<CKWGraphNode*> Recorded(const CKWDFSVisitor* visitor) {
    return ElementsOf(visitor->GetDFSNodeIterator());
}

class Visitors : public ::testing::Test {
protected:
    void SetUp() override {
        m_dfs = KWTestCreate<CKWDFSVisitor>(CKWDFSVisitor::GetCKWDFSVisitorType());
        ASSERT_NE(m_dfs, nullptr);
        for (CKWGraphNode*& n : m_n) {
            n = NewNode();
        }
    }
    void TearDown() override {
        ReleaseAllGraphObjects();
        EXPECT_EQ(LiveGraphObjects(), 0);
    }
    std::vector<CKWGraphNode*> Walk(CKWGraphNode* from) {
        m_dfs->ClearDFSNodeList();
        EXPECT_EQ(m_dfs->Start(from), 1);
        return Recorded(m_dfs);
    }

    CKWDFSVisitor* m_dfs = nullptr;
    CKWGraphNode* m_n[6] = {};
};

TEST_F(Visitors, ACycleIsRecordedOnceInPreOrder) {
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[1], m_n[2]) && Join(m_n[2], m_n[0]));
    EXPECT_EQ(Walk(m_n[0]), (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[2]}));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(m_n[i]->WasVisited(m_dfs));
        EXPECT_TRUE(m_n[i]->GetEdge(0)->WasVisited(m_dfs));
    }
    EXPECT_FALSE(m_n[3]->WasVisited(m_dfs));
}

TEST_F(Visitors, TheWalkGoesDeepFirstAndTakesEdgesInListOrder) {
    // 0 - 1 - 3, 0 - 2 - 4, 1 - 4, 2 - 5: recursion from 0 gives 0 1 3 4 2 5.
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[0], m_n[2]) && Join(m_n[1], m_n[3]) &&
                Join(m_n[1], m_n[4]) && Join(m_n[4], m_n[2]) && Join(m_n[2], m_n[5]));
    EXPECT_EQ(Walk(m_n[0]),
              (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[3], m_n[4], m_n[2], m_n[5]}));
    EXPECT_EQ(Walk(m_n[5]),
              (std::vector<CKWGraphNode*>{m_n[5], m_n[2], m_n[0], m_n[1], m_n[3], m_n[4]}));
    EXPECT_EQ(ElementsOf(m_dfs->GetDFSNodeReverseIterator()),
              (std::vector<CKWGraphNode*>{m_n[4], m_n[3], m_n[1], m_n[0], m_n[2], m_n[5]}));
    EXPECT_EQ(m_dfs->GetDFSNodeCollection()->GetCount(), 6);
}

TEST_F(Visitors, AOneWayEdgeIsCrossedOnlyForwardButMarkedFromBothSides) {
    CKWGraphEdge* edge = Join(m_n[0], m_n[1], COneWayEdge::GetCOneWayEdgeType());
    ASSERT_NE(edge, nullptr);
    EXPECT_EQ(Walk(m_n[0]), (std::vector<CKWGraphNode*>{m_n[0], m_n[1]}));
    EXPECT_EQ(Walk(m_n[1]), (std::vector<CKWGraphNode*>{m_n[1]}));
    EXPECT_TRUE(edge->WasVisited(m_dfs));
    EXPECT_FALSE(m_n[0]->WasVisited(m_dfs));
}

TEST_F(Visitors, StartDoesNotClearTheRecordedNodes) {
    ASSERT_TRUE(Join(m_n[0], m_n[1]));
    ASSERT_EQ(m_dfs->Start(m_n[0]), 1);
    ASSERT_EQ(m_dfs->Start(m_n[2]), 1);
    EXPECT_EQ(Recorded(m_dfs), (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[2]}));
    EXPECT_EQ(m_dfs->Start(nullptr), 0);
    EXPECT_EQ(m_dfs->VisitNode(nullptr), 0);
}

TEST_F(Visitors, ThePlainVisitorMarksOnlyTheStartNode) {
    auto* plain = KWTestCreate<CPlainVisitor>(CPlainVisitor::GetCPlainVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]));
    ASSERT_EQ(plain->Start(m_n[0]), 1);
    EXPECT_TRUE(m_n[0]->WasVisited(plain));
    EXPECT_FALSE(m_n[1]->WasVisited(plain));
    EXPECT_EQ(plain->VisitNode(m_n[0]), 0);
    EXPECT_EQ(plain->VisitNode(m_n[1]), 1);
    EXPECT_FALSE(m_n[0]->WasVisited(nullptr));
}

TEST_F(Visitors, SessionNumbersAdvanceModulo65535) {
    auto* plain = KWTestCreate<CPlainVisitor>(CPlainVisitor::GetCPlainVisitorType());
    ASSERT_EQ(plain->Start(m_n[0]), 1);
    const unsigned first = plain->GetSessionID();
    ASSERT_EQ(m_dfs->Start(m_n[1]), 1);
    EXPECT_EQ(m_dfs->GetSessionID(), (first + 1) % 65535);  // one counter for all visitors
    // 65535 starts later the number comes back, and the old mark counts again.
    for (int i = 0; i < 65534; ++i) {
        ASSERT_EQ(m_dfs->Start(m_n[2]), 1);
    }
    EXPECT_EQ(m_dfs->GetSessionID(), first);
    EXPECT_TRUE(m_n[0]->WasVisited(m_dfs));
    // Somewhere in that run the number was 0 and never 65535.
    EXPECT_LT(m_dfs->GetSessionID(), 65535);
}

TEST_F(Visitors, NoTraversalStartsInsideAnother) {
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]));
    recorder->m_bStartInside = true;
    ASSERT_EQ(recorder->Start(m_n[0]), 1);
    EXPECT_EQ(recorder->m_nestedStarts, (std::vector<int>{0, 0}));
    EXPECT_FALSE(CKWGraphNodeVisitorImpl::IsLocked());
    EXPECT_EQ(m_dfs->Start(m_n[0]), 1);  // unlocked again
}

TEST_F(Visitors, SubclassesSeeOneAddToDFSListCallPerNodeInVisitingOrder) {
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[0], m_n[2]) && Join(m_n[1], m_n[2]));
    ASSERT_EQ(recorder->Start(m_n[2]), 1);
    EXPECT_EQ(recorder->m_calls, (std::vector<CKWGraphNode*>{m_n[2], m_n[0], m_n[1]}));
}

TEST_F(Visitors, SubclassesSeeVisitNodeForEveryNeighbourAndCanStopTheWalkThere) {
    // 0 - 1 - 3, 0 - 2, 1 - 2: neighbours are offered in recursive order.
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[0], m_n[2]) && Join(m_n[1], m_n[3]) &&
                Join(m_n[1], m_n[2]));
    ASSERT_EQ(recorder->Start(m_n[0]), 1);
    EXPECT_EQ(recorder->m_visits,
              (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[3], m_n[2], m_n[0]}));
    EXPECT_EQ(Recorded(recorder), (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[3], m_n[2]}));
    // Refusing node 1 keeps the walk out of it, so 3 is never reached.
    recorder->ClearDFSNodeList();
    recorder->m_visits.clear();
    recorder->m_pBlocked = m_n[1];
    ASSERT_EQ(recorder->Start(m_n[0]), 1);
    EXPECT_EQ(recorder->m_visits, (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[2], m_n[1]}));
    EXPECT_EQ(Recorded(recorder), (std::vector<CKWGraphNode*>{m_n[0], m_n[2]}));
    EXPECT_FALSE(m_n[3]->WasVisited(recorder));
}

TEST_F(Visitors, NodesRecordedAheadOfTheirVisitAreRecordedOnce) {
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[1], m_n[2]));
    recorder->m_pAlsoRecord = m_n[2];
    ASSERT_EQ(recorder->Start(m_n[0]), 1);
    EXPECT_EQ(Recorded(recorder), (std::vector<CKWGraphNode*>{m_n[2], m_n[0], m_n[1]}));
    // A second walk into the same list records only what is new to it.
    ASSERT_TRUE(Join(m_n[2], m_n[3]));
    ASSERT_EQ(recorder->Start(m_n[3]), 1);
    EXPECT_EQ(Recorded(recorder), (std::vector<CKWGraphNode*>{m_n[2], m_n[0], m_n[1], m_n[3]}));
}

TEST_F(Visitors, TheFilterLimitsWhatIsRecordedNotHowFarTheWalkGoes) {
    auto* filtered =
        KWTestCreate<CKWFilteredDFSVisitor>(CKWFilteredDFSVisitor::GetCKWFilteredDFSVisitorType());
    auto* city = KWTestCreate<CCityNode>(CCityNode::GetCCityNodeType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[1], city));
    EXPECT_EQ(filtered->Start(m_n[0]), 0);  // no seek types
    EXPECT_FALSE(m_n[0]->WasVisited(filtered));
    filtered->AddSeekType(CKWGuid(kCityTypeID));
    ASSERT_EQ(filtered->Start(m_n[0]), 1);
    EXPECT_EQ(Recorded(filtered), (std::vector<CKWGraphNode*>{city}));
    filtered->ClearDFSNodeList();
    filtered->AddSeekType(CKWGraphNode::GetCKWGraphNodeType()->GetID());
    ASSERT_EQ(filtered->Start(m_n[0]), 1);  // subclasses count as nodes
    EXPECT_EQ(Recorded(filtered), (std::vector<CKWGraphNode*>{m_n[0], m_n[1], city}));
    filtered->ClearSeekTypes();
    EXPECT_EQ(filtered->Start(m_n[0]), 0);
}

TEST_F(Visitors, TheReleaseVisitorReleasesWhatIsReachableAndNothingElse) {
    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[1], m_n[2]) && Join(m_n[2], m_n[0]));
    ASSERT_TRUE(Join(m_n[3], m_n[0], COneWayEdge::GetCOneWayEdgeType()));
    ASSERT_EQ(releaser->Start(m_n[0]), 1);
    EXPECT_EQ(releaser->GetDFSNodeCollection()->GetCount(), 0);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 3);  // 3, 4, 5
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
    EXPECT_EQ(COneWayEdge::GetCOneWayEdgeType()->GetInstanceCount(), 0);
    EXPECT_EQ(m_n[3]->m_EdgeList.GetCount(), 0);
    EXPECT_EQ(releaser->Start(nullptr), 0);
}

// Far deeper than recursion could go on an 8 MiB stack.
constexpr int kChainLength = 1000000 / kKWTestScale;

TEST(DeepGraph, AMillionNodeChainIsWalkedInOrderAndReleased) {
    const std::vector<CKWGraphNode*> chain = NewChain(kChainLength);
    ASSERT_EQ(chain.size(), static_cast<std::size_t>(kChainLength));
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_EQ(recorder->Start(chain[0]), 1);
    EXPECT_EQ(recorder->m_calls, chain);
    // From the middle: the half towards the front first (that edge came first).
    recorder->m_calls.clear();
    ASSERT_EQ(recorder->Start(chain[kChainLength / 2]), 1);
    ASSERT_EQ(recorder->m_calls.size(), chain.size());
    EXPECT_EQ(recorder->m_calls[1], chain[kChainLength / 2 - 1]);
    EXPECT_EQ(recorder->m_calls[kChainLength / 2], chain[0]);
    EXPECT_EQ(recorder->m_calls[kChainLength / 2 + 1], chain[kChainLength / 2 + 1]);

    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(releaser->Start(chain[0]), 1);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
    recorder->Release();
    releaser->Release();
}

}  // namespace
