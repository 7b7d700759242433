// IKWUnknown: the root interface of every framework object.
//
// GetInterface answers an interface GUID with the sub-object implementing it,
// or null. There is no reference count and no virtual destructor: objects are
// destroyed only by their type object (see IKWObject::Release).
//
//   auto* object = static_cast<IKWObject*>(unknown->GetInterface(IID_IKWObject));
#pragma once

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/Export.h"

// {95E11590-E209-41B1-811A-263330087175}: the framework-object interface.
inline constexpr GUID IID_IKWObject = {
    0x95E11590, 0xE209, 0x41B1, {0x81, 0x1A, 0x26, 0x33, 0x30, 0x08, 0x71, 0x75}};

class KWCORE_API IKWUnknown {
public:
    virtual void* GetInterface(CKWGuid interfaceID) = 0;

protected:
    ~IKWUnknown() = default;
};
