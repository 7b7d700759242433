// Walking a collection iterator over the items of one derived class.
#pragma once

namespace kwIteration {

// Calls visit with each item of iterator that is a Derived, from the first.
template <class Derived, class Iterator, class Visit>
void ForEachAs(Iterator iterator, Visit&& visit) {
    for (auto* item = iterator.GetNext(1); item; item = iterator.GetNext(0)) {
        if (auto* derived = dynamic_cast<Derived*>(item)) {
            visit(derived);
        }
    }
}

}  // namespace kwIteration
