// A small framework class for the benchmarks, and a pool of live instances.
#pragma once

#include <vector>

#include "kwcore/object/CKWObjectImpl.h"

class CBenchWidget : public CKWObjectImpl {
    KW_DECLARE_TYPE(CBenchWidget, CKWObjectTypeImpl)

public:
    // Public only so the baseline can use plain new and delete on the same class.
    CBenchWidget() = default;
    ~CBenchWidget() override = default;

    int m_iValue = 0;
};

// n live widgets, made once per size and kept for the whole run.
const std::vector<CBenchWidget*>& LiveWidgets(std::size_t n);
