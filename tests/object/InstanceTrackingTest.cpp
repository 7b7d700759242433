// A type tracks its live instances by ID through any mix of creation and
// release, and lists them in ascending order.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "TestTypes.h"

namespace {

CKWGuid SequentialID(std::uint32_t n) {
    GUID raw = {n, 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0}};
    return CKWGuid(raw);
}

void ExpectTracked(const CScopedTestType& type, const std::map<CKWGuid, IKWObject*>& live) {
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

TEST(InstanceTracking, RandomCreationAndReleaseMatchesAnOrderedMap) {
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

}  // namespace
