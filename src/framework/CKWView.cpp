#include "kwcore/framework/CKWView.h"

KW_IMPLEMENT_ABSTRACT_TYPE(CKWView, "{DCC62E4B-249A-470F-87E1-DEB9E4E976DD}",
                           "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}")

void CKWView::OnUpdate(CKWObservation*) {}
