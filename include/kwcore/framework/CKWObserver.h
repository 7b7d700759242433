// CKWObserver: receives the observations an observable delivers.
//
// Register an observer with CKWObservable::AddObserver under an observation
// type ID; OnUpdate is then called for every observation of that type or of
// a type derived from it. The observable does not own its observers: an
// observer must stay alive while it is registered anywhere.
//
//   class CMyObserver : public CKWObserver {
//       KW_DECLARE_TYPE(CMyObserver, CKWObjectTypeImpl)
//   public:
//       void OnUpdate(CKWObservation* observation) override { ... }
//   };
#pragma once

#include "kwcore/object/CKWObjectImpl.h"

class CKWObservation;

class KWCORE_API CKWObserver : public CKWObjectImpl {
    KW_DECLARE_ABSTRACT_TYPE(CKWObserver, CKWObjectTypeImpl)

public:
    // Does nothing here.
    virtual void OnUpdate(CKWObservation* observation);

protected:
    CKWObserver() = default;
    ~CKWObserver() override = default;
};
