// Framework classes defined the way a host defines them, for the object tests.
#pragma once

#include <vector>

#include "KWTestObjects.h"
#include "kwcore/object/CKWObjectImpl.h"

// {4A1C7D20-3B5E-4F61-8D2A-9E0B1C2D3E4F}
inline constexpr GUID kTestRepositoryID = {
    0x4A1C7D20, 0x3B5E, 0x4F61, {0x8D, 0x2A, 0x9E, 0x0B, 0x1C, 0x2D, 0x3E, 0x4F}};
inline const char* const kWidgetTypeID = "{5B2D8E31-4C6F-4A72-9E3B-AF1C2D3E4F50}";
inline const char* const kGadgetTypeID = "{6C3E9F42-5D7A-4B83-8F4C-B02D3E4F5061}";
inline const char* const kShapeTypeID = "{7D4FA053-6E8B-4C94-9A5D-C13E4F506172}";

// Records its life cycle; individual instances can refuse to go.
class CTestWidget : public CKWObjectImpl {
    KW_DECLARE_TYPE(CTestWidget, CKWObjectTypeImpl)

public:
    static int s_failNextInitialize;
    static std::vector<CKWGuid> s_releasedIDs;
    static int s_beforeReleaseCalls;

    void SetRefuseRelease(bool refuse) { m_bRefuseRelease = refuse; }
    // Changes the instance ID after creation, as an archive does on load, and
    // keeps the type tracking the widget under its new ID.
    void ChangeInstanceID(const CKWGuid& id) { CKWObjectTypeImpl::ChangeInstanceID(this, id); }
    // A hook run by OnBeforeRelease, for tests of release during a walk.
    void (*m_pOnRelease)(CTestWidget* self) = nullptr;
    void* m_pContext = nullptr;

protected:
    CTestWidget() = default;
    int OnInitialize() override;
    int OnBeforeRelease() override;

private:
    bool m_bRefuseRelease = false;
};

// Derives from CTestWidget: a second level for IsTypeOf and derived-type walks.
class CTestGadget : public CTestWidget {
    KW_DECLARE_TYPE(CTestGadget, CKWObjectTypeImpl)

public:
    // {0E1F2A3B-4C5D-4E6F-8071-8293A4B5C6D7}: an extra interface of gadgets.
    static constexpr GUID IID_ITestGadget = {
        0x0E1F2A3B, 0x4C5D, 0x4E6F, {0x80, 0x71, 0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7}};
    void* GetInterface(CKWGuid interfaceID) override;

protected:
    CTestGadget() = default;
};

// An abstract class: its type makes nothing.
class CTestShape : public CKWObjectImpl {
    KW_DECLARE_ABSTRACT_TYPE(CTestShape, CKWObjectTypeImpl)

public:
    virtual double Area() const = 0;
};

// A stand-alone type object whose lifetime a test controls: registers under
// the given ID and parent and makes CTestWidget-like objects of its own.
class CScopedTestType : public CKWObjectTypeImpl {
public:
    CScopedTestType(const CKWGuid& typeID, const CKWGuid& parentTypeID, const char* name);
    ~CScopedTestType() override = default;

    std::vector<CKWGuid> m_destroyedIDs;  // in the order DTOR freed them

protected:
    IKWObject* CTOR() override;
    void DTOR(IKWObject* object) override;
};
