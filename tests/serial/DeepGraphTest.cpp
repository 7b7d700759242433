// Graphs deeper than any call stack: a million linked objects are saved and
// loaded on an ordinary thread stack, in the order recursion would take.
#include <gtest/gtest.h>

#include <vector>

#include "GraphBuilders.h"
#include "KWTestScale.h"
#include "MemArchiveTest.h"
#include "kwcore/framework/CKWReleaseVisitor.h"

namespace {

// Far deeper than recursive saving and loading could go on an 8 MiB stack.
constexpr int kChainLength = 1000000 / kKWTestScale;
constexpr int kRingLength = 200000 / kKWTestScale;

class DeepGraph : public MemArchiveTest {
protected:
    void TearDown() override {
        CKWGraphEdge::GetCKWGraphEdgeType()->ReleaseInstances();
        CKWGraphNode::GetCKWGraphNodeType()->ReleaseInstances();
        MemArchiveTest::TearDown();
    }
};

TEST_F(DeepGraph, ARingOfLinkedPartsIsSavedAndLoadedInRecursiveOrder) {
    std::vector<CSamplePart*> chain(kRingLength);
    std::vector<CKWGuid> ids(kRingLength);
    for (int i = kRingLength - 1; i >= 0; --i) {
        chain[i] = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        ASSERT_NE(chain[i], nullptr);
        chain[i]->m_iCount = i;
        chain[i]->m_pLink = i + 1 < kRingLength ? chain[i + 1] : nullptr;
        ids[i] = chain[i]->GetInstanceID();
    }
    chain.back()->m_pLink = chain[0];  // a ring
    chain[0]->m_Links.Add(chain[kRingLength / 2]);
    ASSERT_EQ(chain[0]->SerializeTo(m_pDocument), 1);
    // Each object was written once, and the whole ring before the link list's link.
    EXPECT_EQ(m_pDocument->FindStream(CKWGuid(kSamplePartTypeID), ids.back())->m_iHeaderWrites, 1);
    EXPECT_EQ(chain[0]->m_hookCalls, (std::vector<CString>{"BeforeSave", "AfterSave"}));
    CSamplePart::GetCSamplePartType()->ReleaseInstances();

    auto* first =
        dynamic_cast<CSamplePart*>(m_pDocument->GetObjectA(CKWGuid(kSamplePartTypeID), ids[0]));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(CSamplePart::GetCSamplePartType()->GetInstanceCount(), kRingLength);
    CSamplePart* part = first;
    for (int i = 0; i < kRingLength; ++i) {
        ASSERT_EQ(part->GetInstanceID(), ids[i]);
        ASSERT_EQ(part->m_iCount, i);
        // The last part finished loading first: hooks run as recursion would run them.
        ASSERT_EQ(part->m_hookCalls.size(), 2u);
        part = part->m_pLink;
    }
    EXPECT_EQ(part, first);
    ASSERT_EQ(first->m_Links.GetCount(), 1);
    EXPECT_EQ((*first->m_Links.begin())->m_iCount, kRingLength / 2);
}

TEST_F(DeepGraph, AMillionNodeChainIsSavedLoadedWholeAndReleased) {
    const std::vector<CKWGraphNode*> chain = NewChain(kChainLength);
    ASSERT_EQ(chain.size(), static_cast<std::size_t>(kChainLength));
    std::vector<CKWGuid> nodeIDs;
    for (CKWGraphNode* node : chain) {
        nodeIDs.push_back(node->GetInstanceID());
    }
    ASSERT_EQ(chain[kChainLength - 1]->SerializeTo(m_pDocument), 1);
    CKWGraphNode::GetCKWGraphNodeType()->ReleaseInstances();
    ASSERT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);

    auto* end = dynamic_cast<CKWGraphNode*>(
        m_pDocument->GetObjectA(CKWGraphNode::GetCKWGraphNodeType()->GetID(), nodeIDs.back()));
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), kChainLength);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), kChainLength - 1);
    CKWGraphNode* node = end;
    for (int i = kChainLength - 1; i > 0; --i) {
        ASSERT_EQ(node->GetInstanceID(), nodeIDs[i]);
        CKWGraphEdge* back = node->GetEdge(0);
        ASSERT_TRUE(back && back->IsConnected());
        ASSERT_EQ(back->GetSecondary(), node);
        node = back->GetPrimary();
    }
    EXPECT_EQ(node->GetInstanceID(), nodeIDs[0]);

    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(releaser->Start(end), 1);
    releaser->Release();
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
}

}  // namespace
