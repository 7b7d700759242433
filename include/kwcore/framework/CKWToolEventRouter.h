// CKWToolEventRouter: the observable to which views publish tool and focus
// events and to which tools subscribe through their observer adapters.
//
//   router->AddObserver(tool->GetObserver(), CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
//   router->NotifyObservers(event);
//   router->RemoveObserver(tool->GetObserver(), CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
#pragma once

#include "kwcore/framework/CKWObservable.h"

class KWCORE_API CKWToolEventRouter : public CKWObservable {
    KW_DECLARE_TYPE(CKWToolEventRouter, CKWObjectTypeImpl)

protected:
    CKWToolEventRouter() = default;
    ~CKWToolEventRouter() override = default;
};
