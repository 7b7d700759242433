// The last phase: cuts each monotone piece into triangles with a stack walk
// down the piece (triangulateMonotones).
#include <algorithm>
#include <cstddef>
#include <utility>

#include "KWPolygonTriangulationImpl.h"

namespace kwPolygonTriangulation {

void PolygonImpl::addTriangle(unsigned a, unsigned b, unsigned c) {
    if (Orient(*point(a), *point(b), *point(c)) < 0) {
        std::swap(b, c);
    }
    m_triangles.push_back(Triangle{{a, b, c}});
    if (m_bDebug) {
        trace() << "\nAdd triangle:" << a << " " << b << " " << c;
    }
}

// The loop runs counter-clockwise: from the top vertex it goes down the left
// chain to the bottom vertex, and up the right chain back.
void PolygonImpl::markChains(std::vector<Pointbase*>& loop) {
    const std::size_t count = loop.size();
    std::size_t top = 0, bottom = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (*loop[i] > *loop[top]) {
            top = i;
        }
        if (*loop[i] < *loop[bottom]) {
            bottom = i;
        }
    }
    for (std::size_t i = top; i != bottom; i = (i + 1) % count) {
        loop[i]->left = true;
    }
    for (std::size_t i = bottom; i != top; i = (i + 1) % count) {
        loop[i]->left = false;
    }
}

void PolygonImpl::triangulateMonotone(const Monopoly& piece) {
    std::vector<Pointbase*>& loop = m_loopScratch;
    loop.clear();
    for (unsigned id : piece) {
        loop.push_back(point(id));
    }
    const std::size_t count = loop.size();
    if (count < 3) {
        return;
    }
    markChains(loop);
    std::sort(loop.begin(), loop.end(),
              [](const Pointbase* a, const Pointbase* b) { return *a > *b; });

    std::vector<Pointbase*>& stack = m_stackScratch;
    stack.clear();
    stack.push_back(loop[0]);
    stack.push_back(loop[1]);
    for (std::size_t j = 2; j + 1 < count; ++j) {
        Pointbase* u = loop[j];
        if (m_bDebug) {
            trace() << "\ncurrent top queue vertex index=" << u->id
                    << "\nCurrent top stack vertex index=" << stack.back()->id;
            if (stack.size() > 1) {
                trace() << "\nSecond stack vertex index=" << stack[stack.size() - 2]->id;
            }
        }
        if (u->left != stack.back()->left) {
            // Across the piece: u sees every stacked vertex.
            for (std::size_t k = stack.size() - 1; k > 0; --k) {
                addTriangle(u->id, stack[k]->id, stack[k - 1]->id);
            }
            Pointbase* previous = stack.back();
            stack.clear();
            stack.push_back(previous);
            stack.push_back(u);
        } else {
            // Along one chain: cut off the stacked vertices u sees while the
            // triangle lies inside the piece.
            Pointbase* last = stack.back();
            stack.pop_back();
            while (!stack.empty()) {
                const double turn = Orient(*stack.back(), *u, *last);
                if (u->left ? !(turn < 0) : !(turn > 0)) {
                    break;
                }
                addTriangle(u->id, last->id, stack.back()->id);
                last = stack.back();
                stack.pop_back();
            }
            stack.push_back(last);
            stack.push_back(u);
        }
    }
    Pointbase* lowest = loop[count - 1];
    for (std::size_t k = stack.size() - 1; k > 0; --k) {
        addTriangle(lowest->id, stack[k]->id, stack[k - 1]->id);
    }
}

void PolygonImpl::triangulateMonotones() {
    std::size_t triangles = 0;
    for (const Monopoly& piece : m_monotonePieces) {
        triangles += piece.size() >= 2 ? piece.size() - 2 : 0;
    }
    m_triangles.reserve(m_triangles.size() + triangles);
    for (const Monopoly& piece : m_monotonePieces) {
        triangulateMonotone(piece);
    }
}

}  // namespace kwPolygonTriangulation
