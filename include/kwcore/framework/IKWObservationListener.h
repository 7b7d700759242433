// IKWObservationListener: a plain receiver of observations.
//
// For classes that cannot derive from CKWObserver (a tool is a serial object):
// a CKWObserverAdapter registered with the observable forwards each
// observation to its listener.
//
//   class CMyTool : public CKWSerialObject, public IKWObservationListener {
//       void OnUpdate(CKWObservation* observation) override { ... }
//   };
//   adapter->SetListener(tool);
#pragma once

#include "kwcore/platform/Export.h"

class CKWObservation;

class KWCORE_API IKWObservationListener {
public:
    virtual void OnUpdate(CKWObservation* observation) = 0;

protected:
    ~IKWObservationListener() = default;
};
