// IKWCallback: the common base of the library's callback interfaces.
//
// It carries no operation of its own; concrete callback interfaces derive
// from it so that hosts can hold any of them through one pointer type.
#pragma once

#include "kwcore/platform/Export.h"

class KWCORE_API IKWCallback {
public:
    virtual ~IKWCallback() = default;
};
