// Keeps Xerces' exceptions inside the archive: archive operations report
// failure by their results and never throw.
#pragma once

namespace kwXerces {

// The result of work, or fallback when it throws.
template <class Result, class Work>
Result Guarded(Result fallback, Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return fallback;
    }
}

}  // namespace kwXerces
