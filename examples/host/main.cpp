// The example host: registers its own framework class, makes instances
// through the type system, and releases everything at the end.
#include <cstdio>

#include "CExampleShape.h"

int main() {
    // One call files the host's types; the library's own are already there.
    CKWTypeSystem::Initialize(CKWGuid(kHostRepositoryID));

    IKWObjectType* type = CKWTypeSystem::FindType(CKWGuid("{1E5B9C72-08D3-4F6A-B1E4-5A9C3D7F2B60}"));
    if (!type) {
        std::fprintf(stderr, "CExampleShape is not registered\n");
        return 1;
    }
    std::printf("type %s %s, parent %s\n", static_cast<const char*>(type->GetName()),
                static_cast<const char*>(type->GetID().GetCString()),
                static_cast<const char*>(type->GetParentType()->GetName()));

    auto* circle = static_cast<CExampleShape*>(type->CreateInstance(CKWGuid()));
    auto* square = static_cast<CExampleShape*>(type->CreateInstance(CKWGuid()));
    circle->SetLabel("circle");
    square->SetLabel("square");

    CKWObjGuidPtrMap<CExampleShape> shapes;
    shapes.Add(circle);
    shapes.Add(square);
    std::printf("%d shapes live, circle is a CKWObjectImpl: %d\n",
                CExampleShape::GetCExampleShapeType()->GetInstanceCount(),
                circle->IsTypeOf(CKWGuid("{3719246B-C3B0-4AE9-9723-6E998C42484A}")));

    shapes.RemoveAll(true);  // releases both, lowest instance ID first
    CKWTypeSystem::Release();
    std::printf("example host: ok\n");
    return 0;
}
