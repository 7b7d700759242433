// Registration, collection into repositories, lookups and release of types.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
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
    EXPECT_EQ((std::vector<int>{
                  child.RegisterWithParentType(&parent), child.RegisterWithParentType(&parent),
                  child.RegisterWithParentType(nullptr), parent.AddChildType(nullptr)}),
              (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(child.GetParentType(), &parent);
}

TEST(InstanceAccounting, ReleasingATypeReportsAndReleasesOnlyLeftoversLowestIDFirst) {
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

    CScopedTestType tidy(CKWGuid::CreateNewGUID(), kObjectImplTypeID, "CTidy");
    tidy.CreateInstance(CKWGuid())->Release();
    TraceCapture quiet;
    tidy.Release();
    EXPECT_EQ(quiet.Text(), "");
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

CKWGuid SequentialID(std::uint32_t n) {
    GUID raw = {n, 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0}};
    return CKWGuid(raw);
}

void ExpectTracked(CScopedTestType& type, const std::map<CKWGuid, IKWObject*>& live) {
    ASSERT_EQ(type.GetInstanceCount(), static_cast<int>(live.size()));
    std::list<CKWGuid> listed;
    type.GetInstanceList(listed);
    auto expected = live.begin();
    for (const CKWGuid& id : listed) {
        ASSERT_EQ(id, expected->first);
        ASSERT_EQ(type.FindInstance(id), expected->second);
        ++expected;
    }
}

// A type tracks its live instances by ID through any mix of creation and
// release, and lists them in ascending order.
TEST(InstanceAccounting, RandomCreationAndReleaseMatchesAnOrderedMap) {
    CScopedTestType type(CKWGuid::CreateNewGUID(), CKWGuid(), "CTracked");
    std::map<CKWGuid, IKWObject*> live;
    std::mt19937 random(12345);
    for (int step = 0; step < 20000; ++step) {
        // Sequential IDs from a small range: many collisions of home slots
        // and many re-uses of released IDs.
        CKWGuid id = SequentialID(random() % 3000);
        auto found = live.find(id);
        if (found == live.end()) {
            IKWObject* object = type.CreateInstance(id);
            ASSERT_NE(object, nullptr);
            live.emplace(id, object);
        } else {
            ASSERT_EQ(found->second->Release(), 1);
            live.erase(found);
        }
        if (step % 2500 == 0) {
            ExpectTracked(type, live);
        }
    }
    ExpectTracked(type, live);
    EXPECT_EQ(type.FindInstance(SequentialID(999999)), nullptr);

    // Shrinking back after a mass release keeps every survivor reachable.
    int kept = 0;
    for (auto it = live.begin(); it != live.end();) {
        if (++kept % 10) {
            it->second->Release();
            it = live.erase(it);
        } else {
            ++it;
        }
    }
    ExpectTracked(type, live);
    type.Release();
    EXPECT_EQ(type.GetInstanceCount(), 0);
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
