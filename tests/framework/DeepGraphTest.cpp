// A chain of a million nodes is walked and released on an ordinary stack.
#include <gtest/gtest.h>

#include <vector>

#include "GraphTestTypes.h"
#include "KWTestScale.h"

namespace {

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
