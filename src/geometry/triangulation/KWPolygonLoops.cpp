// Loop extraction: walks the planar graph of contour edges and diagonals and
// keeps each closed loop as a monotone piece (searchMonotones).
#include <algorithm>
#include <cstddef>

#include "KWPolygonTriangulationImpl.h"

namespace kwPolygonTriangulation {
namespace {

// Bits of m_edgeUsed: the edge walked from its original start, or towards it.
const unsigned char kForwardUsed = 1;
const unsigned char kBackwardUsed = 2;

// Whether, at b reached from a, the edge to c1 comes before the edge to c2
// turning clockwise from the way back to a: the sharpest left turn first,
// then straight on, then the widest right turn. Exact orientation tests
// decide, so even directions too close for their cosines to tell apart
// (a long thin wedge) are ordered right.
bool TurnsBefore(const Pointbase& a, const Pointbase& b, const Pointbase& c1, const Pointbase& c2) {
    const bool left1 = Orient(a, b, c1) > 0;
    const bool left2 = Orient(a, b, c2) > 0;
    if (left1 != left2) {
        return left1;
    }
    // Within one half-turn, c1 comes first when c2 lies clockwise of it.
    return Orient(b, c1, c2) < 0;
}

}  // namespace

// Marks the walk along `line` from its current start; an edge used in every
// direction it can be walked leaves both incident lists.
void PolygonImpl::useEdge(Linebase* line) {
    const unsigned id = line->id();
    const bool forward = line->endPoint(0)->id == m_edgeStart[id];
    m_edgeUsed[id] |= forward ? kForwardUsed : kBackwardUsed;
    if (m_edgeUsed[id] != (kForwardUsed | kBackwardUsed)) {
        return;
    }
    for (int end = 0; end < 2; ++end) {
        m_incidentEdges[line->endPoint(end)->id].erase(id);
    }
}

bool PolygonImpl::isUsedFrom(const Linebase* line, unsigned startId) const {
    const unsigned id = line->id();
    return (m_edgeUsed[id] & (startId == m_edgeStart[id] ? kForwardUsed : kBackwardUsed)) != 0;
}

Linebase* PolygonImpl::selectNextEdge(Linebase* current) {
    const Pointbase& a = *current->endPoint(0);
    const Pointbase& b = *current->endPoint(1);
    const IncidentEdges& incident = m_incidentEdges[b.id];
    const std::size_t others =
        incident.size() -
        static_cast<std::size_t>(std::count(incident.begin(), incident.end(), current->id()));
    if (others == 0) {
        return 0;
    }
    Linebase* choice = 0;
    for (unsigned id : incident) {
        if (id == current->id()) {
            continue;
        }
        Linebase* candidate = edge(id);
        // Vertices are distinct objects: comparing addresses spares a load.
        if (candidate->endPoint(0) != &b) {
            candidate->reverse();
        }
        if (others == 1) {
            return candidate;
        }
        if (choice == 0 || TurnsBefore(a, b, *candidate->endPoint(1), *choice->endPoint(1))) {
            choice = candidate;
        }
    }
    return choice;
}

void PolygonImpl::searchMonotones() {
    initializate();
    m_edgeUsed.assign(m_edgeById.size(), 0);
    for (Linebase* line : m_edgeById) {
        // A contour edge is walked once, along the contour.
        if (line != 0 && line->type() == INPUT) {
            m_edgeUsed[line->id()] = kBackwardUsed;
        }
    }
    unsigned loop = 0;
    for (Linebase* first : m_edgeById) {
        if (first == 0) {
            continue;
        }
        while (m_edgeUsed[first->id()] != (kForwardUsed | kBackwardUsed)) {
            walkLoop(first, ++loop);
        }
    }
}

// Walks one loop from `first`, along the direction of it not walked yet,
// and keeps it as a monotone piece.
void PolygonImpl::walkLoop(Linebase* first, unsigned loop) {
    const unsigned origin = m_edgeStart[first->id()];
    const bool forwardFree = (m_edgeUsed[first->id()] & kForwardUsed) == 0;
    if ((first->endPoint(0)->id == origin) != forwardFree) {
        first->reverse();
    }
    const unsigned start = first->endPoint(0)->id;
    if (m_bDebug) {
        trace() << "\nSearching for loops:" << loop << "\nvertex index:" << start;
    }
    // Collected in a reused buffer, then stored in one allocation.
    Monopoly& piece = m_pieceScratch;
    piece.assign(1, start);
    Linebase* current = first;
    useEdge(current);
    for (;;) {
        const unsigned end = current->endPoint(1)->id;
        if (end == start) {
            break;
        }
        piece.push_back(end);
        if (m_bDebug) {
            trace() << " " << end;
        }
        Linebase* nextEdge = selectNextEdge(current);
        if (nextEdge == 0 || isUsedFrom(nextEdge, end)) {
            Stop(kCheckLoops, kCheckLoopsDetails, kStopped);
        }
        useEdge(nextEdge);
        current = nextEdge;
    }
    if (m_bDebug) {
        trace() << "\nloop closed!\n\n";
    }
    m_monotonePieces.emplace_back(piece.begin(), piece.end());
}

}  // namespace kwPolygonTriangulation
