#include "kwcore/platform/CException.h"
#include "kwcore/platform/CObject.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

// Named (not anonymous) so the run-time class members have external linkage
// like a host's would.
namespace runtime_class_test {

class CShape : public CObject {
    DECLARE_DYNCREATE(CShape)
};
IMPLEMENT_DYNCREATE(CShape, CObject)

class CCircle : public CShape {
    DECLARE_DYNAMIC(CCircle)
};
IMPLEMENT_DYNAMIC(CCircle, CShape)

class CDumpedObject : public CObject {
public:
    void Dump(CDumpContext& dc) const override { dc << "dumped " << 7; }
};

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
        std::strncpy(buffer, "disk full", maxChars);
        buffer[maxChars - 1] = '\0';
        return TRUE;
    }
};
IMPLEMENT_DYNAMIC(CCountedException, CException)

}  // namespace runtime_class_test

namespace {

using namespace runtime_class_test;

TEST(RuntimeClass, NamesTheClassAndItsSize) {
    const CRuntimeClass* shape = RUNTIME_CLASS(CShape);
    EXPECT_STREQ(shape->m_lpszClassName, "CShape");
    EXPECT_EQ(shape->m_nObjectSize, static_cast<int>(sizeof(CShape)));
    EXPECT_EQ(shape->m_pBaseClass, RUNTIME_CLASS(CObject));
    EXPECT_EQ(RUNTIME_CLASS(CObject)->m_pBaseClass, nullptr);
    EXPECT_EQ(CShape::GetThisClass(), shape);
}

TEST(RuntimeClass, FollowsTheBaseChain) {
    EXPECT_TRUE(RUNTIME_CLASS(CCircle)->IsDerivedFrom(RUNTIME_CLASS(CObject)));
    EXPECT_TRUE(RUNTIME_CLASS(CCircle)->IsDerivedFrom(RUNTIME_CLASS(CCircle)));
    EXPECT_FALSE(RUNTIME_CLASS(CShape)->IsDerivedFrom(RUNTIME_CLASS(CCircle)));
    EXPECT_FALSE(RUNTIME_CLASS(CShape)->IsDerivedFrom(nullptr));
}

TEST(RuntimeClass, CreatesOnlyDynCreateClasses) {
    std::unique_ptr<CObject> created(RUNTIME_CLASS(CShape)->CreateObject());
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->GetRuntimeClass(), RUNTIME_CLASS(CShape));
    EXPECT_EQ(RUNTIME_CLASS(CCircle)->CreateObject(), nullptr);
}

TEST(RuntimeClass, IsKindOfUsesTheDynamicType) {
    CCircle circle;
    const CObject& object = circle;
    EXPECT_EQ(object.GetRuntimeClass(), RUNTIME_CLASS(CCircle));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CShape)));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(object.IsKindOf(RUNTIME_CLASS(CException)));
}

TEST(RuntimeClass, LibraryClassesAreVisibleToHosts) {
    CCountedException exception(FALSE);
    EXPECT_STREQ(RUNTIME_CLASS(CException)->m_lpszClassName, "CException");
    EXPECT_TRUE(exception.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_TRUE(RUNTIME_CLASS(CCountedException)->IsDerivedFrom(RUNTIME_CLASS(CObject)));
}

TEST(DumpContext, CollectsWhatObjectsWrite) {
    CDumpContext dc;
    CDumpedObject object;
    dc << object << ", " << 2.5 << static_cast<const char*>(nullptr);
    EXPECT_EQ(dc.GetText(), "dumped 7, 2.5(null)");
}

TEST(Exception, DeleteEndsAHeapException) {
    try {
        throw new CCountedException;
    } catch (CException* caught) {
        EXPECT_EQ(g_liveExceptions, 1);
        caught->Delete();
    }
    EXPECT_EQ(g_liveExceptions, 0);
}

TEST(Exception, DeleteSparesAnExceptionThatIsNotAutoDeleting) {
    {
        CCountedException onStack(FALSE);
        onStack.Delete();
        EXPECT_EQ(g_liveExceptions, 1);
    }
    EXPECT_EQ(g_liveExceptions, 0);
}

TEST(Exception, BaseClassHasNoMessage) {
    CException exception(FALSE);
    char buffer[8] = "garbage";
    UINT help = 99;
    EXPECT_FALSE(exception.GetErrorMessage(buffer, sizeof buffer, &help));
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(help, 0u);
    EXPECT_FALSE(exception.GetErrorMessage(nullptr, 0));
}

TEST(Exception, NonConstFormReachesTheOverride) {
    CCountedException exception(FALSE);
    CException& base = exception;
    char buffer[5];
    UINT help = 0;
    EXPECT_TRUE(base.GetErrorMessage(buffer, sizeof buffer, &help));
    EXPECT_STREQ(buffer, "disk");
    EXPECT_EQ(help, 42u);
}

TEST(Exception, ReportErrorWritesToStandardError) {
    CCountedException exception(FALSE);
    testing::internal::CaptureStderr();
    EXPECT_EQ(exception.ReportError(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "disk full\n");
}

}  // namespace
