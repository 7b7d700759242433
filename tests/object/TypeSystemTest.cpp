// Registration, collection into repositories, lookups and release of types.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "TestTypes.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/platform/CKWTrace.h"

namespace {

std::vector<std::string> CollectNames(std::list<IKWObjectType*> types) {
    std::vector<std::string> names;
    for (IKWObjectType* type : types) {
        names.emplace_back(static_cast<const char*>(type->GetName()));
    }
    return names;
}

// Captures trace output for the duration of a test.
class TraceCapture {
public:
    TraceCapture() { CKWTrace::SetSink(&TraceCapture::Append, this); }
    ~TraceCapture() { CKWTrace::SetSink(nullptr, nullptr); }
    const std::string& Text() const { return m_text; }

private:
    static void Append(const char* text, void* self) {
        static_cast<TraceCapture*>(self)->m_text += text;
    }
    std::string m_text;
};

TEST(TypeSystemAtLoad, LibraryTypesAreCollectedBeforeMain) {
    IKWObjectType* type = CKWTypeSystem::FindType(kObjectImplTypeID);
    ASSERT_EQ(type, CKWObjectImpl::GetCKWObjectImplType());
    EXPECT_EQ(std::string(type->GetName()), "CKWObjectImpl");
    EXPECT_EQ(std::string(type->GetClassNameA()), "CKWObjectImpl");
    EXPECT_EQ(type->GetRepositoryID(), CKWGuid(CKWTypeSystem::LIBRARY_REPOSITORY_ID));
    EXPECT_EQ(type->GetParentType(), nullptr);
}

TEST(TypeSystemAtLoad, HostTypesAreCollectedIntoTheHostRepositoryWithParents) {
    IKWObjectType* gadget = CKWTypeSystem::FindType(CKWGuid(kGadgetTypeID));
    ASSERT_EQ(gadget, CTestGadget::GetCTestGadgetType());
    EXPECT_EQ(gadget->GetRepositoryID(), CKWGuid(kTestRepositoryID));
    EXPECT_EQ(gadget->GetParentType(), CTestWidget::GetCTestWidgetType());
    EXPECT_EQ(gadget->IsTypeOf(CKWObjectImpl::GetCKWObjectImplType()), 1);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->IsTypeOf(gadget), 0);
    EXPECT_EQ(gadget->IsTypeOf(static_cast<IKWObjectType*>(nullptr)), 0);

    EXPECT_EQ(ElementsOf(CKWTypeSystem::GetRepositoryIterator(CKWGuid(kTestRepositoryID))).size(),
              3u);
}

TEST(TypeSystemLookup, UnknownOrEmptyIDsFindNothing) {
    EXPECT_EQ(CKWTypeSystem::FindType(CKWGuid()), nullptr);
    EXPECT_EQ(CKWTypeSystem::FindType(CKWGuid::CreateNewGUID()), nullptr);
    auto it = CKWTypeSystem::GetRepositoryIterator(CKWGuid::CreateNewGUID());
    EXPECT_FALSE(it.IsValid());
    EXPECT_EQ(it.GetNext(1), nullptr);
}

TEST(TypeSystemLookup, GlobalIteratorWalksInAscendingTypeIDOrder) {
    auto it = CKWTypeSystem::GetGlobalIterator();
    IKWObjectType* previous = nullptr;
    int count = 0;
    for (IKWObjectType* type = it.GetNext(1); type; type = it.GetNext(0), ++count) {
        if (previous) {
            EXPECT_TRUE(previous->GetID() < type->GetID());
        }
        previous = type;
    }
    EXPECT_GE(count, 4);
}

TEST(TypeSystemLookup, DerivedTypesListDescendantsBeforeEachChild) {
    std::list<IKWObjectType*> types;
    CKWObjectImpl::GetCKWObjectImplType()->GetDerivedTypes(types);
    auto names = CollectNames(types);
    auto gadget = std::find(names.begin(), names.end(), "CTestGadget");
    auto widget = std::find(names.begin(), names.end(), "CTestWidget");
    ASSERT_NE(gadget, names.end());
    ASSERT_NE(widget, names.end());
    EXPECT_EQ(gadget + 1, widget);

    std::list<IKWObjectType*> leaf;
    CTestGadget::GetCTestGadgetType()->GetDerivedTypes(leaf);
    EXPECT_TRUE(leaf.empty());
    EXPECT_EQ(CTestGadget::GetCTestGadgetType()->HasDerivedTypes(), 0);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->HasDerivedTypes(), 1);
}

TEST(TypeRegistration, FirstRegistrationOfAnIDWins) {
    const CKWGuid id = CKWGuid::CreateNewGUID();
    CScopedTestType first(id, kObjectImplTypeID, "First");
    CScopedTestType second(id, kObjectImplTypeID, "Second");
    EXPECT_EQ(CKWTypeSystem::FindType(id), &first);
    EXPECT_EQ(CKWTypeSystem::AddType(&first), 0);
    EXPECT_EQ(CKWTypeSystem::AddType(nullptr), 0);
    // The second type object still makes instances of its own.
    IKWObject* object = second.CreateInstance(CKWGuid());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetType(), &second);
    object->Release();
}

TEST(TypeRegistration, DestroyedTypeObjectLeavesTheTypeSystem) {
    const CKWGuid id = CKWGuid::CreateNewGUID();
    {
        CScopedTestType type(id, kObjectImplTypeID, "Transient");
        EXPECT_EQ(CKWTypeSystem::FindType(id), &type);
    }
    EXPECT_EQ(CKWTypeSystem::FindType(id), nullptr);
}

TEST(TypeRegistration, LateTypesWaitForTheNextInitialize) {
    const CKWGuid repository = CKWGuid::CreateNewGUID();
    CScopedTestType late(CKWGuid::CreateNewGUID(), CKWGuid(kWidgetTypeID), "Late");
    CScopedTestType orphan(CKWGuid::CreateNewGUID(), CKWGuid::CreateNewGUID(), "Orphan");
    EXPECT_FALSE(late.GetRepositoryID().IsValid());
    EXPECT_EQ(late.GetParentType(), nullptr);

    CKWTypeSystem::Initialize(repository);
    EXPECT_EQ(late.GetRepositoryID(), repository);
    EXPECT_EQ(late.GetParentType(), CTestWidget::GetCTestWidgetType());
    // A missing parent leaves the type a root.
    EXPECT_EQ(orphan.GetParentType(), nullptr);
    EXPECT_EQ(orphan.IsTypeOf(orphan.GetID()), 1);
    EXPECT_EQ(orphan.IsTypeOf(kObjectImplTypeID), 0);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->GetRepositoryID(), CKWGuid(kTestRepositoryID));
    const auto collected = ElementsOf(CKWTypeSystem::GetRepositoryIterator(repository));
    EXPECT_EQ(collected.size(), 2u);
    EXPECT_NE(std::find(collected.begin(), collected.end(), &late), collected.end());

    CKWTypeSystem::ReleaseRepository(repository);
    EXPECT_EQ(CKWTypeSystem::FindType(late.GetID()), nullptr);
    EXPECT_EQ(CKWTypeSystem::FindType(orphan.GetID()), nullptr);
    EXPECT_FALSE(CKWTypeSystem::GetRepositoryIterator(repository).IsValid());
}

TEST(TypeRegistration, ChildTypesAreRegisteredOnce) {
    CScopedTestType parent(CKWGuid::CreateNewGUID(), CKWGuid(), "Parent");
    CScopedTestType child(CKWGuid::CreateNewGUID(), parent.GetID(), "Child");
    EXPECT_EQ(child.RegisterWithParentType(&parent), 1);
    EXPECT_EQ(child.RegisterWithParentType(&parent), 0);
    EXPECT_EQ(child.RegisterWithParentType(nullptr), 0);
    EXPECT_EQ(parent.AddChildType(nullptr), 0);
    EXPECT_EQ(child.GetParentType(), &parent);
}

TEST(InstanceAccounting, ReleasingATypeReportsAndReleasesLeftoversLowestIDFirst) {
    CScopedTestType type(CKWGuid::CreateNewGUID(), kObjectImplTypeID, "CLeaky");
    CScopedTestType child(CKWGuid::CreateNewGUID(), type.GetID(), "CLeakyChild");
    child.RegisterWithParentType(&type);
    const CKWGuid high("{F0000000-0000-4000-8000-000000000001}");
    const CKWGuid low("{00000001-0000-4000-8000-000000000002}");
    ASSERT_NE(type.CreateInstance(high), nullptr);
    ASSERT_NE(type.CreateInstance(low), nullptr);

    TraceCapture trace;
    type.Release();
    EXPECT_EQ(trace.Text(), "Warning! 2 instances of class CLeaky were not released\n");
    EXPECT_EQ(type.m_destroyedIDs, (std::vector<CKWGuid>{low, high}));
    EXPECT_EQ(type.GetInstanceCount(), 0);
    EXPECT_EQ(type.HasDerivedTypes(), 0);
}

TEST(InstanceAccounting, ReleasingATypeWithoutLeftoversSaysNothing) {
    CScopedTestType type(CKWGuid::CreateNewGUID(), kObjectImplTypeID, "CTidy");
    type.CreateInstance(CKWGuid())->Release();
    TraceCapture trace;
    type.Release();
    EXPECT_EQ(trace.Text(), "");
}

TEST(InstanceAccounting, ReleasingARepositoryReleasesItsLeftoverInstances) {
    const CKWGuid repository = CKWGuid::CreateNewGUID();
    CScopedTestType type(CKWGuid::CreateNewGUID(), kObjectImplTypeID, "CPluginThing");
    CKWTypeSystem::Initialize(repository);
    type.CreateInstance(CKWGuid());
    TraceCapture trace;
    CKWTypeSystem::ReleaseRepository(repository);
    EXPECT_EQ(type.m_destroyedIDs.size(), 1u);
    EXPECT_NE(trace.Text().find("1 instances of class CPluginThing"), std::string::npos);
}

// Releasing the whole type system is the process's last act: run it apart.
TEST(TypeSystemShutdownDeathTest, ReleaseEmptiesTheRegistryAndReleasesInstances) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            IKWObject* widget = CTestWidget::GetCTestWidgetType()->CreateInstance(CKWGuid());
            CKWGuid id = widget->GetInstanceID();
            CTestWidget::s_releasedIDs.clear();
            CKWTypeSystem::Release();
            bool released = CTestWidget::s_releasedIDs == std::vector<CKWGuid>{id};
            bool forgotten = CKWTypeSystem::FindType(CKWGuid(kWidgetTypeID)) == nullptr;
            // A new Initialize brings the root type back.
            CKWTypeSystem::Initialize(CKWGuid(kTestRepositoryID));
            bool rootBack = CKWTypeSystem::FindType(kObjectImplTypeID) != nullptr;
            std::exit(released && forgotten && rootBack ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
