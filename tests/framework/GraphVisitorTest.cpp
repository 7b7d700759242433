// Visitors: sessions, the traversal lock, depth-first order (as overrides see
// it, against a plain recursive walk), filters and release, also of a chain
// of a million nodes on an ordinary stack.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#if defined(__linux__)
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <thread>
#endif

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

TEST_F(Visitors, AnOverrideOfVisitNodeCanStopTheWalkThere) {
    // 0 - 1 - 3, 0 - 2, 1 - 2: refusing node 1 keeps the walk out of it, so 3 is never reached.
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_TRUE(Join(m_n[0], m_n[1]) && Join(m_n[0], m_n[2]) && Join(m_n[1], m_n[3]) &&
                Join(m_n[1], m_n[2]));
    recorder->m_pBlocked = m_n[1];
    ASSERT_EQ(recorder->Start(m_n[0]), 1);
    EXPECT_EQ(recorder->NodesAt(EStep::Visit),
              (std::vector<CKWGraphNode*>{m_n[0], m_n[1], m_n[2], m_n[1]}));
    EXPECT_EQ(Recorded(recorder), (std::vector<CKWGraphNode*>{m_n[0], m_n[2]}));
    EXPECT_FALSE(m_n[3]->WasVisited(recorder));
}

// The walk as defined, written plainly: the steps an override of VisitNode
// and AddToDFSList sees, one Start from root.
void ReferenceWalk(CKWGraphNode* node, std::set<const void*>& marked, std::vector<SStep>& steps) {
    steps.push_back({EStep::Visit, node});
    if (marked.insert(node).second) {
        steps.push_back({EStep::Record, node});
        steps.push_back({EStep::RecordDone, node});
        for (int i = 0; CKWGraphEdge* edge = node->GetEdge(i); ++i) {
            CKWGraphNode* next = edge->GetNeighbor(node);
            if (marked.insert(edge).second && next) {
                ReferenceWalk(next, marked, steps);
            }
        }
    }
    steps.push_back({EStep::VisitDone, node});
}

// Steps as text, nodes by index: "V0" a visit begins, "v0" it returns, "R0"
// and "r0" the same for recording.
std::string Described(const std::vector<SStep>& steps, const std::vector<CKWGraphNode*>& nodes) {
    static const char kLetters[] = {'V', 'v', 'R', 'r'};
    std::string text;
    for (const SStep& step : steps) {
        const auto index = std::find(nodes.begin(), nodes.end(), step.node) - nodes.begin();
        text += kLetters[static_cast<int>(step.step)] + std::to_string(index) + ' ';
    }
    return text;
}

struct SWalkCase {
    const char* name;
    int nodes;
    // Edges in joining order; a negative first index joins -a-1 to b one way.
    std::vector<std::pair<int, int>> edges;
    std::vector<int> roots;
};

const SWalkCase kWalkCases[] = {
    {"diamond", 4, {{0, 1}, {0, 2}, {1, 3}, {2, 3}}, {0, 3}},
    {"cycle", 3, {{0, 1}, {1, 2}, {2, 0}}, {1}},
    {"cycle with a tail", 5, {{0, 1}, {1, 2}, {2, 3}, {3, 1}, {2, 4}}, {4}},
    {"one-way ring", 3, {{-1, 1}, {-2, 2}, {-3, 0}}, {0, 2}},
    {"several roots", 6, {{0, 1}, {1, 2}, {3, 4}, {-6, 3}, {4, 1}}, {5, 0, 3, 2}},
};

TEST_F(Visitors, OverridesSeeTheStepsOfTheRecursiveWalk) {
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    for (const SWalkCase& walkCase : kWalkCases) {
        SCOPED_TRACE(walkCase.name);
        std::vector<CKWGraphNode*> nodes(walkCase.nodes);
        std::generate(nodes.begin(), nodes.end(), NewNode);
        for (const auto& [a, b] : walkCase.edges) {
            ASSERT_TRUE(a >= 0 ? Join(nodes[a], nodes[b])
                               : Join(nodes[-a - 1], nodes[b], COneWayEdge::GetCOneWayEdgeType()));
        }
        std::vector<SStep> expected;
        recorder->m_steps.clear();
        for (int root : walkCase.roots) {
            std::set<const void*> marked;
            ReferenceWalk(nodes[root], marked, expected);
            ASSERT_EQ(recorder->Start(nodes[root]), 1);
        }
        EXPECT_EQ(Described(recorder->m_steps, nodes), Described(expected, nodes));
    }
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
constexpr int kMiddle = kChainLength / 2;

TEST(DeepGraph, AMillionNodeChainIsWalkedRecursivelyAndReleased) {
    const std::vector<CKWGraphNode*> chain = NewChain(kChainLength);
    ASSERT_EQ(chain.size(), static_cast<std::size_t>(kChainLength));
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    ASSERT_EQ(recorder->Start(chain[0]), 1);
    EXPECT_EQ(recorder->NodesAt(EStep::Record), chain);
    // Each visit returns once the rest of the chain is walked: the last node's first.
    ASSERT_EQ(recorder->m_steps.size(), 4 * chain.size());
    EXPECT_EQ(recorder->m_steps[3 * kChainLength - 1].step, EStep::RecordDone);
    EXPECT_EQ(recorder->m_steps[3 * kChainLength].step, EStep::VisitDone);
    EXPECT_EQ(recorder->NodesAt(EStep::VisitDone),
              std::vector<CKWGraphNode*>(chain.rbegin(), chain.rend()));

    // From the middle: the half towards the front first (that edge came first).
    recorder->m_steps.clear();
    ASSERT_EQ(recorder->Start(chain[kMiddle]), 1);
    const std::vector<CKWGraphNode*> recorded = recorder->NodesAt(EStep::Record);
    const std::vector<CKWGraphNode*> done = recorder->NodesAt(EStep::VisitDone);
    ASSERT_EQ(recorded.size(), chain.size());
    ASSERT_EQ(done.size(), chain.size());
    EXPECT_EQ(recorded[1], chain[kMiddle - 1]);
    EXPECT_EQ(recorded[kMiddle], chain[0]);
    EXPECT_EQ(recorded[kMiddle + 1], chain[kMiddle + 1]);
    EXPECT_EQ(done[0], chain[0]);
    EXPECT_EQ(done[kMiddle - 1], chain[kMiddle - 1]);
    EXPECT_EQ(done[kMiddle], chain.back());
    EXPECT_EQ(done.back(), chain[kMiddle]);

    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(releaser->Start(chain[0]), 1);
    EXPECT_EQ(CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount(), 0);
    recorder->Release();
    releaser->Release();
}

TEST(DeepGraph, AnExceptionThrownDeepInAWalkReachesTheCallerOfStart) {
    const std::vector<CKWGraphNode*> chain = NewChain(kChainLength / 10);
    auto* recorder = KWTestCreate<CRecordingVisitor>(CRecordingVisitor::GetCRecordingVisitorType());
    recorder->m_pThrowAt = chain.back();
    EXPECT_THROW(recorder->Start(chain[0]), std::runtime_error);
    EXPECT_FALSE(CKWGraphNodeVisitorImpl::IsLocked());
    // The visitor walks again, the whole chain.
    recorder->m_pThrowAt = nullptr;
    recorder->ClearDFSNodeList();
    ASSERT_EQ(recorder->Start(chain[0]), 1);
    EXPECT_EQ(Recorded(recorder), chain);
    ReleaseAllGraphObjects();
}

#if defined(__linux__) && !defined(KW_TEST_SANITIZED)
// Walks the chain with the address space capped so that no side stack can
// be reserved, then again without the cap; the exit code tells what failed.
int WalkWithoutRoomForSideStacks(const std::vector<CKWGraphNode*>& chain, CKWDFSVisitor* dfs) {
    rlimit uncapped{};
    long pagesMapped = 0;
    std::ifstream("/proc/self/statm") >> pagesMapped;
    if (getrlimit(RLIMIT_AS, &uncapped) != 0 || pagesMapped <= 0) {
        return 10;
    }
    const rlimit capped{static_cast<rlim_t>(pagesMapped) * sysconf(_SC_PAGESIZE) + (4 << 20),
                        uncapped.rlim_max};
    if (setrlimit(RLIMIT_AS, &capped) != 0) {
        return 11;
    }
    const int started = dfs->Start(chain[0]);
    setrlimit(RLIMIT_AS, &uncapped);
    const auto reached = std::count_if(chain.begin(), chain.end(),
                                       [dfs](CKWGraphNode* n) { return n->WasVisited(dfs); });
    if (started != 1 || reached == 0 || reached == static_cast<long>(chain.size())) {
        return 1;
    }
    if (!chain[reached - 1]->WasVisited(dfs) || chain[reached]->WasVisited(dfs)) {
        return 2;  // not a walk that stopped at one depth
    }
    return dfs->Start(chain[0]) == 1 && chain.back()->WasVisited(dfs) ? 0 : 3;
}

TEST(DeepGraph, AWalkThatCannotReserveAStackStopsDeepeningWithoutHarm) {
    const std::vector<CKWGraphNode*> chain = NewChain(kChainLength / 10);
    auto* dfs = KWTestCreate<CKWDFSVisitor>(CKWDFSVisitor::GetCKWDFSVisitorType());
    // On a new thread, which has no side stack kept from earlier walks.
    EXPECT_EXIT(
        {
            int failure = -1;
            std::thread([&] { failure = WalkWithoutRoomForSideStacks(chain, dfs); }).join();
            std::exit(failure);
        },
        ::testing::ExitedWithCode(0), "");
    ReleaseAllGraphObjects();
}
#endif

}  // namespace
