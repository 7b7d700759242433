// Fallback element for the MFC-style collections.
//
// MFC asserts on an invalid index or position; these collections instead
// hand out a freshly defaulted stand-in element, so bad arguments read a
// defined value and writes through it land nowhere.
//
//   CStringArray names;
//   CString& name = names[5];   // out of range: a defaulted stand-in, ""
#pragma once

namespace kwCollection {

template <typename Element>
Element& InvalidElement() {
    static thread_local Element standIn;
    standIn = Element();
    return standIn;
}

}  // namespace kwCollection
