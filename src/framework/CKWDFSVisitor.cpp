#include "kwcore/framework/CKWDFSVisitor.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"

#include "platform/Prefetch.h"
#include "platform/SideStack.h"

KW_IMPLEMENT_TYPE(CKWDFSVisitor, "{797F206F-C5AD-4521-AD2F-64064A981555}",
                  "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}")

namespace {
// Edges fetched ahead when a node is entered.
constexpr int kEdgesAhead = 4;
constexpr int kCacheLine = 64;
// How much of the caller's stack a walk takes before it moves on to side
// stacks; how much room it leaves below its deepest visit on a side stack,
// for what overrides call there and for a walk that another visitor starts
// there; and how large each side stack is.
constexpr std::uintptr_t kCallerStackBudget = 256 << 10;
constexpr std::uintptr_t kVisitHeadroom = 512 << 10;
constexpr std::size_t kSideStackSize =
    std::min<std::size_t>(16 << 20, kwStack::SideStack::kLargestSize);

// The first side stack of the last walk on this thread that needed one,
// kept with its first pages for the next: walks that go a little deeper
// than the caller's stack allows reserve and touch nothing new.
thread_local std::unique_ptr<kwStack::SideStack> t_pKeptSideStack;
constexpr std::size_t kKeptSideStackBytes = 1 << 20;
}  // namespace

struct CKWDFSVisitor::Walk {
    explicit Walk(std::uintptr_t limit) : stackLimit(limit) {}
    ~Walk() {
        if (!sideStacks.empty() && !t_pKeptSideStack &&
            sideStacks.front()->Trim(kKeptSideStackBytes)) {
            t_pKeptSideStack = std::move(sideStacks.front());
        }
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    // A visit made from a frame below this goes on to the next side stack.
    std::uintptr_t stackLimit;
    // The side stacks reserved so far, and how many of them are running.
    std::vector<std::unique_ptr<kwStack::SideStack>> sideStacks;
    std::size_t sideStacksInUse = 0;
};

// Starts fetching what a walk reads of a node: its mark and its edge list.
inline void CKWDFSVisitor::PrefetchNode(const CKWGraphNode* node) {
    const char* line = reinterpret_cast<const char*>(&node->m_iVisitedSession);
    const char* end = reinterpret_cast<const char*>(&node->m_EdgeList + 1);
    for (; line < end; line += kCacheLine) {
        kwMemory::Prefetch(line);
    }
}

inline void CKWDFSVisitor::PrefetchEdges(const CKWGraphNode* node) {
    const auto end = node->m_EdgeList.end();
    int ahead = 0;
    for (auto edge = node->m_EdgeList.begin(); edge != end && ahead < kEdgesAhead; ++edge) {
        kwMemory::Prefetch(*edge);
        ++ahead;
    }
}

inline CKWGraphNode* CKWDFSVisitor::Across(const CKWGraphEdge* edge, const CKWGraphNode* from) {
    const std::int16_t direction = edge->m_iDirection;
    const bool bothWays = direction == CKWGraphEdge::BothWays;
    if (from == edge->m_pPrimaryNode && (bothWays || direction == CKWGraphEdge::ToSecondary)) {
        return edge->m_pSecondaryNode;
    }
    if (from == edge->m_pSecondaryNode && (bothWays || direction == CKWGraphEdge::ToPrimary)) {
        return edge->m_pPrimaryNode;
    }
    return nullptr;
}

// The outermost call sets up the walk; the calls it makes, through the
// visitor interface, walk on within it. Both end in a tail call, so a level
// of the recursion costs one frame of WalkFrom.
int CKWDFSVisitor::VisitNode(CKWGraphNode* node) {
    const std::uint16_t session = GetSessionID();
    if (!node || node->m_iVisitedSession == session) {
        return 0;
    }
    node->m_iVisitedSession = session;
    return m_pWalk ? WalkFrom(node, session) : BeginWalk(node, session);
}

int CKWDFSVisitor::BeginWalk(CKWGraphNode* node, std::uint16_t session) {
    const std::uintptr_t here = kwStack::Position();
    Walk walk(here > kCallerStackBudget ? here - kCallerStackBudget : 0);
    struct EndOfWalk {
        ~EndOfWalk() { visitor->m_pWalk = nullptr; }
        CKWDFSVisitor* visitor;
    } endOfWalk{this};
    m_pWalk = &walk;
    m_pFreshNode = nullptr;
    m_iFreshChanges =
        m_DFSNodeList.GetCount() == 0 ? m_DFSNodeList.GetChangeCount() : kNoFreshChanges;
    return WalkFrom(node, session);
}

// The neighbour across each edge, in list order, each edge crossed at most
// once; marks and neighbours are those of WasVisited, SetVisited and
// GetNeighbor, read in place: this loop is the hot path of every walk.
int CKWDFSVisitor::WalkFrom(CKWGraphNode* node, std::uint16_t session) {
    PrefetchEdges(node);
    m_pFreshNode = node;
    OnFirstVisit(node);
    for (CKWGraphEdge* edge : node->m_EdgeList) {
        if (edge->m_iVisitedSession == session) {
            continue;
        }
        edge->m_iVisitedSession = session;
        CKWGraphNode* next = Across(edge, node);
        if (!next) {
            continue;
        }
        PrefetchNode(next);
        if (kwStack::Position() > m_pWalk->stackLimit) {
            VisitNode(next);
        } else {
            VisitOnSideStack(next);
        }
    }
    return 1;
}

namespace {
// One visit run on a side stack: the walk may go as deep there as the
// stack allows, and back on the stack below, as deep as before.
struct SideStackVisit {
    static void Run(void* self) {
        auto* visit = static_cast<SideStackVisit*>(self);
        *visit->limit = kwStack::Position() - kSideStackSize + kCallerStackBudget + kVisitHeadroom;
        visit->visitor->VisitNode(visit->node);
    }
    ~SideStackVisit() {
        *limit = outerLimit;
        --*inUse;
    }
    IKWGraphNodeVisitor* visitor;
    CKWGraphNode* node;
    std::uintptr_t* limit;
    std::size_t* inUse;
    std::uintptr_t outerLimit;
};
}  // namespace

// Each side stack serves one stretch of the recursion and is kept until the
// walk ends, so a walk that moves back and forth across a stretch's end
// reserves it once.
void CKWDFSVisitor::VisitOnSideStack(CKWGraphNode* node) {
    Walk& walk = *m_pWalk;
    if (walk.sideStacksInUse == walk.sideStacks.size()) {
        std::unique_ptr<kwStack::SideStack> stack =
            t_pKeptSideStack ? std::move(t_pKeptSideStack)
                             : kwStack::SideStack::Reserve(kSideStackSize);
        if (!stack) {
            return;
        }
        walk.sideStacks.push_back(std::move(stack));
    }
    kwStack::SideStack& stack = *walk.sideStacks[walk.sideStacksInUse++];
    SideStackVisit visit{this, node, &walk.stackLimit, &walk.sideStacksInUse, walk.stackLimit};
    stack.Run(&SideStackVisit::Run, &visit);
}

// While the recorded nodes are exactly those first visited by this walk,
// the node being visited for the first time cannot be among them, so it is
// appended without a lookup. Any other change to the list ends that.
int CKWDFSVisitor::AddToDFSList(CKWGraphNode* node) {
    if (node && node == m_pFreshNode && m_DFSNodeList.GetChangeCount() == m_iFreshChanges) {
        m_pFreshNode = nullptr;
        m_DFSNodeList.AddNew(node);
        m_iFreshChanges = m_DFSNodeList.GetChangeCount();
        return 1;
    }
    return m_DFSNodeList.Add(node);
}
