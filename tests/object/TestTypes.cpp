#include "TestTypes.h"

#include "KWTestObjects.h"

int CTestWidget::s_failNextInitialize = 0;
std::vector<CKWGuid> CTestWidget::s_releasedIDs;
int CTestWidget::s_beforeReleaseCalls = 0;

KW_IMPLEMENT_TYPE(CTestWidget, kWidgetTypeID, "{3719246B-C3B0-4AE9-9723-6E998C42484A}")
KW_IMPLEMENT_TYPE(CTestGadget, kGadgetTypeID, kWidgetTypeID)
KW_IMPLEMENT_ABSTRACT_TYPE(CTestShape, kShapeTypeID, "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

int CTestWidget::OnInitialize() {
    if (s_failNextInitialize) {
        s_failNextInitialize = 0;
        return 0;
    }
    return 1;
}

int CTestWidget::OnBeforeRelease() {
    ++s_beforeReleaseCalls;
    if (m_bRefuseRelease) {
        return 0;
    }
    if (m_pOnRelease) {
        m_pOnRelease(this);
    }
    s_releasedIDs.push_back(GetInstanceID());
    return 1;
}

void* CTestGadget::GetInterface(CKWGuid interfaceID) {
    if (void* answer = CTestWidget::GetInterface(interfaceID)) {
        return answer;
    }
    return interfaceID == CKWGuid(IID_ITestGadget) ? this : nullptr;
}

namespace {
// A plain object made by CScopedTestType; released through that type.
class CScopedObject : public CKWObjectImpl {
public:
    explicit CScopedObject(IKWObjectType* type) : m_pType(type) {}
    IKWObjectType* GetType() override { return m_pType; }
    int Release() override { return m_pType->ReleaseInstance(this); }
    ~CScopedObject() override = default;

private:
    IKWObjectType* m_pType;
};
}  // namespace

CScopedTestType::CScopedTestType(const CKWGuid& typeID, const CKWGuid& parentTypeID,
                                 const char* name) {
    SetName(name);
    SetClassName(name);
    SetParentTypeID(parentTypeID);
    SetID(typeID);
}

IKWObject* CScopedTestType::CTOR() {
    return new CScopedObject(this);
}

void CScopedTestType::DTOR(IKWObject* object) {
    m_destroyedIDs.push_back(object->GetInstanceID());
    delete static_cast<CScopedObject*>(object);
}

// The test program is a host: it collects its types once they exist.
namespace {
const SCollectTypes s_collectTestTypes(kTestRepositoryID);
}  // namespace
