// The sweep: classifies every vertex, then meets them top to bottom and adds
// the diagonals that leave only monotone pieces (partition2Monotone).
#include <algorithm>
#include <cstddef>
#include <utility>

#include "KWPolygonTriangulationImpl.h"
#include "platform/Prefetch.h"

namespace kwPolygonTriangulation {
namespace {

// How many events ahead the sweep fetches edges.
const std::size_t kPrefetchDistance = 8;

}  // namespace

void PolygonImpl::initializate() {
    if (m_bInitialized) {
        return;
    }
    m_bInitialized = true;
    Finish();
    m_incidentEdges.clear();
    m_incidentEdges.resize(m_pointById.size());
    m_mergeFlags.assign(m_pointById.size(), 0);
    std::vector<SEvent> events;
    events.reserve(m_pointCount);
    for (unsigned id = 1; id < m_pointById.size(); ++id) {
        Pointbase* v = m_pointById[id];
        if (v == 0) {
            continue;
        }
        v->type = classify(*v, id);
        m_mergeFlags[id] = v->type == MERGE;
        const SEvent event = {v->y, v->x, edge(id), edge(prev(id)), v, id, v->type};
        events.push_back(event);
        IncidentEdges& incident = m_incidentEdges[id];
        if (edge(id) != 0) {
            incident.push_back(id);
        }
        if (edge(prev(id)) != 0 && prev(id) != id) {
            incident.push_back(prev(id));
        }
        incident.sort();
    }
    // Top first. Vertices are distinct and finite once consistent(), so the
    // order is total; otherwise the sweep stops before it reads the order.
    if (consistent()) {
        std::sort(events.begin(), events.end(), [](const SEvent& a, const SEvent& b) {
            return a.y > b.y || (a.y == b.y && a.x < b.x);
        });
    }
    m_events = std::move(events);
    m_nextEvent = 0;
}

// The class of v from its contour neighbours, "above" and "below" in the
// sweep order; a vertex without both neighbours keeps its type.
Type PolygonImpl::classify(const Pointbase& v, unsigned id) const {
    const Pointbase* p = point(prev(id));
    const Pointbase* n = point(next(id));
    if (p == 0 || n == 0) {
        return v.type;
    }
    if (*p > v && *n < v) {
        return REGULAR_DOWN;
    }
    if (*p<v&& * n> v) {
        return REGULAR_UP;
    }
    if (*p > v && *n > v) {
        return Orient(*p, v, *n) > 0 ? END : MERGE;
    }
    if (*p < v && *n < v) {
        return Orient(*p, v, *n) > 0 ? START : SPLIT;
    }
    return v.type;
}

void PolygonImpl::partition2Monotone() {
    initializate();
    if (m_nextEvent == m_events.size()) {
        return;
    }
    if (!consistent() || m_events[m_nextEvent].type != START) {
        Stop(kCheckInput, kStopped);
    }
    while (m_nextEvent < m_events.size()) {
        // The edges of a vertex a few events ahead are scattered in memory:
        // ask for them now, so that they arrive while this one is handled.
        const std::size_t ahead = m_nextEvent + kPrefetchDistance;
        if (ahead < m_events.size()) {
            const SEvent& next = m_events[ahead];
            kwMemory::Prefetch(next.leaving);
            kwMemory::Prefetch(next.entering);
            kwMemory::Prefetch(next.vertex);
            kwMemory::Prefetch(&m_incidentEdges[next.id]);
        }
        const SEvent& v = m_events[m_nextEvent++];
        m_status.SetKeyRefresh(v.y);
        if (m_bDebug) {
            trace() << "\n\nHandle vertex:" << v.id << " type:" << TypeName(v.type);
        }
        dispatch(v);
    }
}

void PolygonImpl::dispatch(const SEvent& v) {
    switch (v.type) {
        case START:
            handleStartVertex(v);
            break;
        case END:
            handleEndVertex(v);
            break;
        case MERGE:
            handleMergeVertex(v);
            break;
        case SPLIT:
            handleSplitVertex(v);
            break;
        case REGULAR_UP:
            handleRegularVertexUp(v);
            break;
        case REGULAR_DOWN:
            handleRegularVertexDown(v);
            break;
        default:
            Stop(kNoDuplicates);
    }
}

void PolygonImpl::insertEdge(Linebase* line, unsigned helper, double y) {
    line->setKeyValue(y);
    m_status.Insert(line);
    line->setHelper(helper);
    if (m_bDebug) {
        trace() << "\nInsert e" << line->id() << " to splay tree\n"
                << "Insert key:" << line->keyValue() << "\nSet e" << line->id() << " helper to "
                << helper;
    }
}

void PolygonImpl::removeEdge(Linebase* line, double y) {
    line->setKeyValue(y);
    m_status.Delete(line->keyValue());
    if (m_bDebug) {
        trace() << "\nRemove e" << line->id() << " from splay tree\n"
                << "key:" << line->keyValue();
    }
}

// END, MERGE and REGULAR_DOWN close the edge entering the vertex.
Linebase* PolygonImpl::closeEnteringEdge(const SEvent& v) {
    Linebase* entering = v.entering;
    if (entering == 0) {
        Stop(kCheckInput, kStopped);
    }
    const unsigned helper = entering->helper();
    if (m_bDebug) {
        trace() << "\ne" << entering->id() << " helper is " << helper;
    }
    if (isMergeVertex(helper)) {
        addDiagonal(v.id, helper);
    }
    return entering;
}

void PolygonImpl::endEdge(const SEvent& v) {
    removeEdge(closeEnteringEdge(v), v.y);
}

Linebase* PolygonImpl::findLeftEdge(const SEvent& v) {
    EdgeBST::Node* found = 0;
    m_status.FindMaxSmallerThan(v.x, found);
    if (found == 0) {
        Stop(kCheckInput, kStopped);
    }
    Linebase* left = found->data();
    if (m_bDebug) {
        trace() << "\nSearch key:" << v.x << " edge key:" << left->keyValue() << " found:e"
                << left->id() << " is directly left to v" << v.id
                << " and its helper is:" << left->helper();
    }
    return left;
}

void PolygonImpl::setHelper(Linebase* line, unsigned helper) {
    line->setHelper(helper);
    if (m_bDebug) {
        trace() << "\nset e" << line->id() << " helper to " << helper;
    }
}

void PolygonImpl::handleStartVertex(const SEvent& v) {
    if (v.leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    insertEdge(v.leaving, v.id, v.y);
}

void PolygonImpl::handleEndVertex(const SEvent& v) {
    endEdge(v);
}

void PolygonImpl::handleSplitVertex(const SEvent& v) {
    Linebase* left = findLeftEdge(v);
    addDiagonal(v.id, left->helper());
    setHelper(left, v.id);
    if (v.leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    insertEdge(v.leaving, v.id, v.y);
}

void PolygonImpl::handleMergeVertex(const SEvent& v) {
    endEdge(v);
    Linebase* left = findLeftEdge(v);
    if (isMergeVertex(left->helper())) {
        addDiagonal(v.id, left->helper());
    }
    setHelper(left, v.id);
}

void PolygonImpl::handleRegularVertexUp(const SEvent& v) {
    Linebase* left = findLeftEdge(v);
    if (isMergeVertex(left->helper())) {
        addDiagonal(v.id, left->helper());
    }
    setHelper(left, v.id);
}

void PolygonImpl::handleRegularVertexDown(const SEvent& v) {
    Linebase* entering = closeEnteringEdge(v);
    Linebase* leaving = v.leaving;
    if (leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    // The leaving edge takes the entering one's place in the status (they
    // meet at v, and no edge lies between them): one search instead of a
    // removal and an insertion.
    const double y = v.y;
    entering->setKeyValue(y);
    EdgeBST::Node* node = m_status.Find(entering->keyValue());
    if (node == 0 || node->data() != entering) {
        removeEdge(entering, y);
        insertEdge(leaving, v.id, y);
        return;
    }
    leaving->setKeyValue(y);
    node->setData(leaving);
    leaving->setHelper(v.id);
    if (m_bDebug) {
        trace() << "\nRemove e" << entering->id() << " from splay tree\n"
                << "key:" << entering->keyValue() << "\nInsert e" << leaving->id()
                << " to splay tree\n"
                << "Insert key:" << leaving->keyValue() << "\nSet e" << leaving->id()
                << " helper to " << v.id;
    }
}

void PolygonImpl::addDiagonal(unsigned i, unsigned j) {
    Pointbase* a = point(i);
    Pointbase* b = point(j);
    if (a == 0 || b == 0 || i == j) {
        Stop(kCheckInput, kStopped);
    }
    const unsigned id = ++m_lastEdgeId;
    Linebase* diagonal = m_lineStore.add(Linebase(a, b, INSERT, id));
    m_bEdgesStale = true;
    m_bDiagonalsStale = true;
    if (m_edgeById.size() <= id) {
        m_edgeById.resize(id + 1, 0);
        m_edgeStart.resize(id + 1, 0);
    }
    m_edgeById[id] = diagonal;
    m_edgeStart[id] = i;
    // Identifiers only grow, so the incident lists stay sorted.
    m_incidentEdges[i].push_back(id);
    m_incidentEdges[j].push_back(id);
    if (m_bDebug) {
        trace() << "\nAdd Diagonal from " << i << " to " << j << "\n";
    }
}

}  // namespace kwPolygonTriangulation
