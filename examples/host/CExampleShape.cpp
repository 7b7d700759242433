#include "CExampleShape.h"

#include <cstdio>

// The type GUID of CExampleShape, then its parent's: CKWObjectImpl.
KW_IMPLEMENT_TYPE(CExampleShape, "{1E5B9C72-08D3-4F6A-B1E4-5A9C3D7F2B60}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

int CExampleShape::OnInitialize() {
    m_label = "unnamed";
    return 1;
}

int CExampleShape::OnBeforeRelease() {
    std::printf("releasing %s (%s)\n", m_label.c_str(),
                static_cast<const char*>(GetInstanceID().GetCString()));
    return 1;
}
