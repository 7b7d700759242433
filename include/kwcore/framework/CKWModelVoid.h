// CKWModelVoid: the empty concrete model, for hosts that need a model to
// publish through and nothing else.
//
//   auto* model = static_cast<CKWModelVoid*>(
//       CKWModelVoid::GetCKWModelVoidType()->CreateInstance(CKWGuid()));
#pragma once

#include "kwcore/framework/CKWModel.h"

class KWCORE_API CKWModelVoid : public CKWModel {
    KW_DECLARE_SERIAL_TYPE(CKWModelVoid)

protected:
    CKWModelVoid() = default;
    ~CKWModelVoid() override = default;
};
