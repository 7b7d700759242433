// CKWView: an observer of a model that receives every observation it raises.
//
// CKWModel::AddView registers a view under the base observation type. Derive
// from it and override OnUpdate; the base does nothing.
//
//   model->AddView(view);
//   model->NotifyObservers(observation);   // view->OnUpdate(observation)
#pragma once

#include "kwcore/framework/CKWObserver.h"

class KWCORE_API CKWView : public CKWObserver {
    KW_DECLARE_ABSTRACT_TYPE(CKWView, CKWObjectTypeImpl)

public:
    void OnUpdate(CKWObservation* observation) override;

protected:
    CKWView() = default;
    ~CKWView() override = default;
};
