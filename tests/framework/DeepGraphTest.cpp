// A chain of a million nodes is walked and released on an ordinary stack.
#include <gtest/gtest.h>

#include <vector>

#include "GraphTestTypes.h"

namespace {

// Under the sanitizers, which slow every allocation tenfold, the graphs are a
// tenth as long: still far deeper than recursion could go on any stack.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KW_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KW_TEST_SANITIZED 1
#endif
#endif
#ifdef KW_TEST_SANITIZED
constexpr int kScale = 10;
#else
constexpr int kScale = 1;
#endif

constexpr int kChainLength = 1000000 / kScale;

TEST(DeepGraph, AMillionNodeChainIsWalkedInOrderAndReleased) {
    std::vector<CKWGraphNode*> chain(kChainLength);
    for (CKWGraphNode*& node : chain) {
        node = NewNode();
        ASSERT_NE(node, nullptr);
    }
    for (int i = 1; i < kChainLength; ++i) {
        ASSERT_NE(Join(chain[i - 1], chain[i]), nullptr);
    }
    auto* recorder = NewObject<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_EQ(recorder->Start(chain[0]), 1);
    EXPECT_EQ(recorder->m_calls, chain);
    // From the middle: the half towards the front first (that edge came first).
    recorder->m_calls.clear();
    ASSERT_EQ(recorder->Start(chain[kChainLength / 2]), 1);
    ASSERT_EQ(recorder->m_calls.size(), chain.size());
    EXPECT_EQ(recorder->m_calls[1], chain[kChainLength / 2 - 1]);
    EXPECT_EQ(recorder->m_calls[kChainLength / 2], chain[0]);
    EXPECT_EQ(recorder->m_calls[kChainLength / 2 + 1], chain[kChainLength / 2 + 1]);

    auto* releaser = NewObject<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(releaser->Start(chain[0]), 1);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
    recorder->Release();
    releaser->Release();
}

}  // namespace
