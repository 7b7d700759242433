#include "kwcore/framework/CKWObserver.h"

KW_IMPLEMENT_ABSTRACT_TYPE(CKWObserver, "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}",
                           "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

void CKWObserver::OnUpdate(CKWObservation*) {}
