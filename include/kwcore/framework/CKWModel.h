// CKWModel: a serializable observable whose views receive every observation.
//
// Views are observers registered under the base observation type, so they
// see everything the model publishes. The model is abstract (its type makes
// no instances); CKWModelVoid is the empty concrete model, and applications
// derive their own. It is serializable through IKWSerializableAdaptor and
// declares no fields of its own.
//
//   model->AddView(view);
//   CKWView* same = model->GetView(view->GetInstanceID());
//   model->RemoveView(view->GetInstanceID());
#pragma once

#include "kwcore/framework/CKWObservable.h"
#include "kwcore/framework/CKWView.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/KWSerialTypeMacros.h"

class KWCORE_API CKWModel : public CKWObservable, public IKWSerializableAdaptor {
    KW_DECLARE_SERIAL_TYPE(CKWModel)

public:
    // AddObserver under the base observation type.
    int AddView(CKWView* view);
    // The observer with that ID under the base observation type when it is a view, else null.
    CKWView* GetView(CKWGuid instanceID);
    // Removes the view with that ID from the base observation type; always 1.
    int RemoveView(CKWGuid instanceID);

    IKWObject* GetThisObject() override { return this; }
    // Answers IID_IKWSerializableAdaptor too.
    void* GetInterface(CKWGuid interfaceID) override;

protected:
    CKWModel() = default;
    ~CKWModel() override = default;

    int OnInitialize() override;
    int OnBeforeRelease() override;
};
