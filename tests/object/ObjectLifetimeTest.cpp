// Creation, identity, interfaces and release of framework objects.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "TestTypes.h"

namespace {

CTestWidget* NewWidget(const CKWGuid& id = CKWGuid()) {
    return KWTestCreate<CTestWidget>(CTestWidget::GetCTestWidgetType(), id);
}

class ObjectLifetime : public ::testing::Test {
protected:
    void SetUp() override {
        CTestWidget::s_releasedIDs.clear();
        CTestWidget::s_beforeReleaseCalls = 0;
        m_liveBefore = CTestWidget::GetCTestWidgetType()->GetInstanceCount();
    }
    int LiveWidgets() const {
        return CTestWidget::GetCTestWidgetType()->GetInstanceCount() - m_liveBefore;
    }
    int m_liveBefore = 0;
};

TEST_F(ObjectLifetime, CreationGivesAFreshIDOrExactlyTheOneAskedFor) {
    const CKWGuid id("{0A0B0C0D-1111-2222-3333-444455556666}");
    CTestWidget* a = NewWidget();
    CTestWidget* b = NewWidget();
    CTestWidget* c = NewWidget(id);
    ASSERT_TRUE(a && b && c);
    EXPECT_TRUE(a->GetInstanceID().IsValid());
    EXPECT_NE(a->GetInstanceID(), b->GetInstanceID());
    EXPECT_EQ(c->GetInstanceID(), id);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(id), c);
    EXPECT_EQ(LiveWidgets(), 3);
    for (CTestWidget* w : {a, b, c}) {
        EXPECT_EQ(w->Release(), 1);
    }
    EXPECT_EQ(LiveWidgets(), 0);
}

TEST_F(ObjectLifetime, FailedInitialisationGivesNullAndReleasesTheHalfMadeObject) {
    CTestWidget::s_failNextInitialize = 1;
    EXPECT_EQ(NewWidget(), nullptr);
    EXPECT_EQ(LiveWidgets(), 0);
    EXPECT_EQ(CTestWidget::s_beforeReleaseCalls, 1);
}

TEST_F(ObjectLifetime, RefusedReleaseKeepsTheObjectAliveAndTracked) {
    CTestWidget* w = NewWidget();
    w->SetRefuseRelease(true);
    EXPECT_EQ(w->Release(), 0);
    std::list<CKWGuid> ids;
    CTestWidget::GetCTestWidgetType()->GetInstanceList(ids);
    EXPECT_NE(std::find(ids.begin(), ids.end(), w->GetInstanceID()), ids.end());
    w->SetRefuseRelease(false);
    EXPECT_EQ(w->Release(), 1);
    EXPECT_EQ(LiveWidgets(), 0);
}

TEST_F(ObjectLifetime, IsTypeOfFollowsTheParentChain) {
    CTestWidget* gadget = KWTestCreate<CTestWidget>(CTestGadget::GetCTestGadgetType());
    CTestWidget* widget = NewWidget();
    const CKWGuid gadgetID(kGadgetTypeID), widgetID(kWidgetTypeID), shapeID(kShapeTypeID);
    EXPECT_EQ(
        (std::vector<int>{gadget->IsTypeOf(gadgetID), gadget->IsTypeOf(widgetID),
                          gadget->IsTypeOf(CKWGuid(kObjectImplTypeID)), widget->IsTypeOf(gadgetID),
                          widget->IsTypeOf(shapeID), widget->IsTypeOf(CKWGuid())}),
        (std::vector<int>{1, 1, 1, 0, 0, 0}));
    gadget->Release();
    widget->Release();
}

TEST_F(ObjectLifetime, GadgetsAnswerTheirInterfacesAndAreTrackedByTheirOwnType) {
    auto* gadgetType = CTestGadget::GetCTestGadgetType();
    const int gadgetsBefore = gadgetType->GetInstanceCount();
    IKWObject* gadget = gadgetType->CreateInstance(CKWGuid());
    EXPECT_EQ(gadgetType->GetInstanceCount(), gadgetsBefore + 1);
    EXPECT_EQ(LiveWidgets(), 0);
    EXPECT_EQ(gadget->GetInterface(CKWGuid(IID_IKWObject)), static_cast<void*>(gadget));
    EXPECT_EQ(gadget->GetInterface(CKWGuid(CTestGadget::IID_ITestGadget)),
              static_cast<void*>(static_cast<CTestGadget*>(gadget)));
    EXPECT_EQ(gadget->GetInterface(CKWGuid()), nullptr);
    EXPECT_EQ(gadget->GetInterface(CKWGuid::CreateNewGUID()), nullptr);
    gadget->Release();
    EXPECT_EQ(gadgetType->GetInstanceCount(), gadgetsBefore);
}

TEST_F(ObjectLifetime, PlainObjectImplAnswersOnlyTheObjectInterface) {
    IKWObjectType* type = CKWObjectImpl::GetCKWObjectImplType();
    IKWObject* object = type->CreateInstance(CKWGuid());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetType(), type);
    EXPECT_EQ(object->GetInterface(CKWGuid(IID_IKWObject)), static_cast<void*>(object));
    // CKWObjectImpl's own Release is a no-op that reports success; its type frees it.
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(type->ReleaseInstance(object), 1);
}

TEST_F(ObjectLifetime, AbstractTypeMakesNothing) {
    IKWObjectType* shape = CTestShape::GetCTestShapeType();
    EXPECT_EQ(shape->IsAbstract(), 1);
    EXPECT_EQ(shape->CreateInstance(CKWGuid()), nullptr);
}

TEST_F(ObjectLifetime, DuplicateInstanceIDDoesNotDisturbTheFirstInstance) {
    CTestWidget* first = NewWidget();
    CTestWidget* twin = NewWidget(first->GetInstanceID());
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(LiveWidgets(), 1);
    EXPECT_EQ(twin->Release(), 1);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(first->GetInstanceID()), first);
    first->Release();
}

TEST_F(ObjectLifetime, AnObjectEqualsItsInstanceIDWhichIsReFiledWhenChanged) {
    CTestWidget* w = NewWidget();
    const CKWGuid oldID = w->GetInstanceID();
    const CKWGuid newID = CKWGuid::CreateNewGUID();
    EXPECT_TRUE(*w == oldID && !(*w == newID) && !(*w == CKWGuid()));
    CKWObjectTypeImpl::ChangeInstanceID(w, newID);
    EXPECT_EQ(w->GetInstanceID(), newID);
    EXPECT_TRUE(*w == newID && !(*w == oldID));
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(newID), w);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(oldID), nullptr);
    CKWObjectTypeImpl::ChangeInstanceID(nullptr, newID);
    EXPECT_EQ(w->Release(), 1);
    EXPECT_EQ(LiveWidgets(), 0);
}

TEST_F(ObjectLifetime, ReleaseInstancesGoesLowestIDFirstAndKeepsRefusers) {
    CTestWidget* high = NewWidget(CKWGuid("{F0000000-0000-4000-8000-000000000000}"));
    CTestWidget* refuser = NewWidget(CKWGuid("{80000000-0000-4000-8000-000000000000}"));
    CTestWidget* low = NewWidget(CKWGuid("{10000000-0000-4000-8000-000000000000}"));
    refuser->SetRefuseRelease(true);
    const std::vector<CKWGuid> expected{low->GetInstanceID(), high->GetInstanceID()};
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->ReleaseInstances(), 2);
    EXPECT_EQ(CTestWidget::s_releasedIDs, expected);
    EXPECT_EQ(LiveWidgets(), 1);
    refuser->SetRefuseRelease(false);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->ReleaseInstances(), 1);
    EXPECT_EQ(LiveWidgets(), 0);
}

}  // namespace
