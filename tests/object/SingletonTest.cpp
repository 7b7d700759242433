// Lazily created singletons and their registry.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "kwcore/object/CKWSingleton.h"

namespace {

std::string g_destroyed;

class CFirstManager : public CKWSingletonT<CFirstManager> {
    friend class CKWSingletonT<CFirstManager>;
    CFirstManager() = default;
    ~CFirstManager() override { g_destroyed += "first;"; }
};

class CSecondManager : public CKWSingletonT<CSecondManager> {
    friend class CKWSingletonT<CSecondManager>;
    CSecondManager() = default;
    ~CSecondManager() override { g_destroyed += "second;"; }
};

// Opens the registry to the test.
class RegistryProbe : public CKWSingleton {
public:
    static int Count(CKWSingleton* s) {
        auto& list = RegistryList();
        return static_cast<int>(std::count(list.begin(), list.end(), s));
    }
    static void UnregisterForTest(CKWSingleton* s) { Unregister(s); }
    static std::size_t Size() { return RegistryList().size(); }
};

// Singletons live for the whole process: each scenario runs in a child.
TEST(SingletonDeathTest, CreatedAndRegisteredOnceAndReleaseInstanceUndoesBoth) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            CFirstManager* a = CFirstManager::GetInstance();
            bool ok = a == CFirstManager::GetInstance() && RegistryProbe::Count(a) == 1;
            const std::size_t before = RegistryProbe::Size();
            RegistryProbe::UnregisterForTest(nullptr);
            ok = ok && RegistryProbe::Size() == before;
            CFirstManager::ReleaseInstance();
            ok = ok && g_destroyed == "first;" && RegistryProbe::Count(a) == 0;
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(SingletonDeathTest, ReleaseAllReleasesInCreationOrder) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            CSecondManager::GetInstance();
            CFirstManager::GetInstance();
            CKWSingleton::ReleaseAll();
            std::exit(g_destroyed == "second;first;" ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
