#include "kwcore/platform/CException.h"
#include "kwcore/platform/CObject.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

// Named (not anonymous) so the run-time class members have external linkage
// like a host's would.
namespace runtime_class_test {

class CShape : public CObject {
    DECLARE_DYNCREATE(CShape)

public:
    void Dump(CDumpContext& dc) const override { dc << "shape " << 7; }
};
IMPLEMENT_DYNCREATE(CShape, CObject)

class CCircle : public CShape {
    DECLARE_DYNAMIC(CCircle)
};
IMPLEMENT_DYNAMIC(CCircle, CShape)

int g_liveExceptions = 0;

class CCountedException : public CException {
    DECLARE_DYNAMIC(CCountedException)

public:
    explicit CCountedException(BOOL autoDelete = TRUE) : CException(autoDelete) {
        ++g_liveExceptions;
    }
    ~CCountedException() override { --g_liveExceptions; }

    BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) const override {
        if (helpContext) {
            *helpContext = 42;
        }
        std::snprintf(buffer, maxChars, "%s", "disk full");
        return TRUE;
    }
};
IMPLEMENT_DYNAMIC(CCountedException, CException)

}  // namespace runtime_class_test

namespace {

using namespace runtime_class_test;

TEST(RuntimeClass, DescribesTheClassAndFollowsTheBaseChainIntoTheLibrary) {
    const CRuntimeClass *object = RUNTIME_CLASS(CObject), *shape = RUNTIME_CLASS(CShape),
                        *circle = RUNTIME_CLASS(CCircle);
    EXPECT_STREQ(shape->m_lpszClassName, "CShape");
    EXPECT_STREQ(RUNTIME_CLASS(CException)->m_lpszClassName, "CException");
    EXPECT_EQ(shape->m_nObjectSize, static_cast<int>(sizeof(CShape)));
    EXPECT_TRUE(shape->m_pBaseClass == object && object->m_pBaseClass == nullptr);
    EXPECT_TRUE(circle->IsDerivedFrom(object) && circle->IsDerivedFrom(circle) &&
                RUNTIME_CLASS(CCountedException)->IsDerivedFrom(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(shape->IsDerivedFrom(circle) || shape->IsDerivedFrom(nullptr));
}

TEST(RuntimeClass, CreatesOnlyDynCreateClassesAndIsKindOfAndDumpFollowTheDynamicType) {
    std::unique_ptr<CObject> created(RUNTIME_CLASS(CShape)->CreateObject());
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->GetRuntimeClass(), RUNTIME_CLASS(CShape));
    EXPECT_EQ(RUNTIME_CLASS(CCircle)->CreateObject(), nullptr);
    CCircle circle;
    const CObject& object = circle;
    EXPECT_EQ(object.GetRuntimeClass(), RUNTIME_CLASS(CCircle));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CShape)) && object.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(object.IsKindOf(RUNTIME_CLASS(CException)));
    CDumpContext dc;
    dc << object << ", " << 2.5 << static_cast<const char*>(nullptr);
    EXPECT_EQ(dc.GetText(), "shape 7, 2.5(null)");
}

TEST(Exception, DeleteEndsOnlyAutoDeletingExceptions) {
    (new CCountedException)->Delete();
    EXPECT_EQ(g_liveExceptions, 0);
    CCountedException onStack(FALSE);
    onStack.Delete();
    EXPECT_EQ(g_liveExceptions, 1);
}

TEST(Exception, MessagesComeFromTheOverrideAndTheBaseClassHasNone) {
    char buffer[8] = "garbage";
    UINT help = 99;
    EXPECT_FALSE(CException(FALSE).GetErrorMessage(buffer, sizeof buffer, &help));
    EXPECT_TRUE(buffer[0] == '\0' && help == 0);
    CCountedException counted(FALSE);
    CException& base = counted;  // the non-const overload must reach the override
    EXPECT_TRUE(base.GetErrorMessage(buffer, 5, &help));
    EXPECT_STREQ(buffer, "disk");
    EXPECT_EQ(help, 42u);
    testing::internal::CaptureStderr();
    EXPECT_EQ(base.ReportError(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "disk full\n");
}

}  // namespace
