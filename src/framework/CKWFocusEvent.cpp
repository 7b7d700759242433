#include "kwcore/framework/CKWFocusEvent.h"

KW_IMPLEMENT_TYPE(CKWFocusEvent, "{66D6E4CF-D167-4B40-89F0-8467A4961A4B}",
                  KW_BASE_OBSERVATION_TYPE_ID)

CKWFocusEvent* CKWFocusEvent::Create() {
    return static_cast<CKWFocusEvent*>(m_CKWFocusEventType.CreateInstance(CKWGuid()));
}
