// Matching an edge and its nodes after a load. Edges and nodes finish
// loading in any order, each knowing only what the archive said of it;
// whichever of an edge-node pair finishes last matches the two
// (CKWGraphEdge::MatchLoaded), so the result is that of the complete data.
#pragma once

#include <vector>

namespace kwGraphLoading {

// Called when self finished loading. Each counterpart still loading takes
// self onto its waiting list (waitingListOf gives that list, or null once the
// counterpart is done); the others are matched now, and so is every
// counterpart that waited for self.
template <class Self, class Other, class WaitingListOf, class Match>
void MatchOnceBothLoaded(Self* self, const std::vector<Other*>& counterparts,
                         std::vector<Other*>& waitingForSelf, WaitingListOf waitingListOf,
                         Match match) {
    for (Other* other : counterparts) {
        if (!other) {
            continue;
        }
        if (std::vector<Self*>* waiting = waitingListOf(other)) {
            waiting->push_back(self);
        } else {
            match(other);
        }
    }
    std::vector<Other*> waited;
    waited.swap(waitingForSelf);
    for (Other* other : waited) {
        match(other);
    }
}

}  // namespace kwGraphLoading
