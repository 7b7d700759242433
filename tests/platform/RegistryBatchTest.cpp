// Batches of registry writes, and gets and opens served from the store's
// caches: what other threads, processes and connections see, and when.
#if !defined(_WIN32)

#include "RegistryTestKeys.h"

#include "kwcore/platform/CKWRegistryBatch.h"

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <functional>
#include <string>
#include <thread>

namespace {

// How many values of that name the store's file holds, as another program
// reading it would count them.
int CountValuesNamed(const CTempRegistry& registry, const char* name) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(registry.GetStorePath().c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* statement = nullptr;
    int count = -1;
    if (sqlite3_prepare_v2(db, "SELECT count(*) FROM vals WHERE name = ?1", -1, &statement,
                           nullptr) == SQLITE_OK) {
        sqlite3_bind_text(statement, 1, name, -1, SQLITE_STATIC);
        if (sqlite3_step(statement) == SQLITE_ROW) {
            count = sqlite3_column_int(statement, 0);
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return count;
}

DWORD GetDword(HKEY key, const char* name) {
    DWORD value = 0;
    DWORD size = sizeof value;
    RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size);
    return value;
}

}  // namespace

// ------------------------------------------------------------------ batches

TEST_F(RegistryTest, ABatchShowsItsWritesToOthersOnlyWhenItCommits) {
    CKWRegistryBatch batch;
    ASSERT_EQ(batch.GetStatus(), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    EXPECT_EQ(GetDword(Base(), "Width"), 640u);  // the batch's own thread sees it
    EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 0);
    EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 1);
    EXPECT_EQ(batch.Commit(), ERROR_INVALID_FUNCTION);
}

TEST_F(RegistryTest, ANestedBatchCommitsWithTheOutermost) {
    {
        CKWRegistryBatch outer;
        {
            CKWRegistryBatch inner(Base());
            ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
            EXPECT_EQ(inner.Commit(), ERROR_SUCCESS);
        }
        EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 0);
    }
    EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 1);
}

TEST_F(RegistryTest, AFailedCallInsideABatchKeepsTheBatchsOtherWrites) {
    CKeyHandle session;
    ASSERT_EQ(CreateKey(Base(), "Session", session, REG_OPTION_VOLATILE), ERROR_SUCCESS);
    {
        CKWRegistryBatch batch;
        ASSERT_EQ(SetDword(Base(), "Before", 1), ERROR_SUCCESS);
        CKeyHandle lasting;
        EXPECT_EQ(CreateKey(session.Get(), "Lasting\\Deeper", lasting),
                  ERROR_CHILD_MUST_BE_VOLATILE);
        ASSERT_EQ(SetDword(Base(), "After", 2), ERROR_SUCCESS);
        EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    }
    EXPECT_EQ(GetDword(Base(), "Before"), 1u);
    EXPECT_EQ(GetDword(Base(), "After"), 2u);
    EXPECT_TRUE(SubKeyNames(session.Get()).empty());
}

TEST_F(RegistryTest, FlushingInsideABatchLeavesTheCommitToTheBatch) {
    CKWRegistryBatch batch;
    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    EXPECT_EQ(RegFlushKey(Base()), ERROR_SUCCESS);
    EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 0);
    EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    EXPECT_EQ(CountValuesNamed(Registry(), "Width"), 1);
}

TEST_F(RegistryTest, OtherThreadsWaitForTheBatchAndSeeItWhole) {
    std::atomic<bool> readerStarted{false};
    DWORD seen = 0;
    CKWRegistryBatch batch;
    ASSERT_EQ(SetDword(Base(), "Step", 1), ERROR_SUCCESS);
    std::thread reader([&] {
        readerStarted = true;
        seen = GetDword(Base(), "Step");
    });
    while (!readerStarted) {
        std::this_thread::yield();
    }
    ASSERT_EQ(SetDword(Base(), "Step", 2), ERROR_SUCCESS);
    EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    reader.join();
    EXPECT_EQ(seen, 2u);
}

TEST_F(RegistryTest, AProcessKilledInTheMiddleOfABatchLeavesTheStoreAsItWas) {
    ASSERT_EQ(SetDword(Base(), "Count", 0), ERROR_SUCCESS);
    int progress[2];
    ASSERT_EQ(pipe(progress), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(progress[0]);
        CKWRegistryBatch batch;
        for (DWORD i = 1; i <= 200; ++i) {
            CKeyHandle item;
            const std::string name = "Item" + std::to_string(i);
            if (CreateKey(Base(), name.c_str(), item) != ERROR_SUCCESS ||
                SetDword(Base(), "Count", i) != ERROR_SUCCESS) {
                _exit(1);
            }
        }
        static_cast<void>(write(progress[1], "!", 1));
        pause();
        _exit(0);
    }
    ASSERT_TRUE(KillChildWhenItSignals(child, progress));

    EXPECT_EQ(GetDword(Base(), "Count"), 0u);
    EXPECT_TRUE(SubKeyNames(Base()).empty());
    EXPECT_EQ(SetDword(Base(), "Count", 1), ERROR_SUCCESS);
}

// ------------------------------------------------------------------ cached gets

TEST_F(RegistryTest, AGetSeesAValueAnotherProcessChangedAfterItWasRead) {
    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    ASSERT_EQ(GetDword(Base(), "Width"), 640u);
    ASSERT_EQ(GetDword(Base(), "Width"), 640u);
    const std::string path = Registry().GetKeyPath();
    EXPECT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  return OpenKey(HKEY_CURRENT_USER, path.c_str(), key) == ERROR_SUCCESS &&
                                 SetDword(key.Get(), "Width", 800) == ERROR_SUCCESS
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(GetDword(Base(), "Width"), 800u);
    EXPECT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  return OpenKey(HKEY_CURRENT_USER, path.c_str(), key) == ERROR_SUCCESS &&
                                 RegDeleteValueA(key.Get(), "Width") == ERROR_SUCCESS
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(GetBytes(Base(), "Width"), "");
    EXPECT_EQ(RegQueryValueExA(Base(), "Width", nullptr, nullptr, nullptr, nullptr),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, AGetSeesAValueAnotherConnectionChanged) {
    ASSERT_EQ(SetString(Base(), "Title", "Before"), ERROR_SUCCESS);
    ASSERT_EQ(GetBytes(Base(), "Title"), std::string("Before", 7));
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(Registry().GetStorePath().c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, "UPDATE vals SET data = CAST('After' AS BLOB) WHERE name = 'Title'",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    EXPECT_EQ(GetBytes(Base(), "Title"), "After");
}

TEST_F(RegistryTest, AGetSeesTheBatchsOwnWritesAndAValueOfAKeyDeletedSinceIsGone) {
    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    ASSERT_EQ(GetDword(Base(), "Width"), 640u);
    {
        CKWRegistryBatch batch;
        ASSERT_EQ(SetDword(Base(), "Width", 800), ERROR_SUCCESS);
        EXPECT_EQ(GetDword(Base(), "Width"), 800u);
    }
    EXPECT_EQ(GetDword(Base(), "Width"), 800u);

    CKeyHandle child;
    ASSERT_EQ(CreateKey(Base(), "Child", child), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(child.Get(), "Height", 480), ERROR_SUCCESS);
    ASSERT_EQ(GetDword(child.Get(), "Height"), 480u);
    ASSERT_EQ(RegDeleteKeyA(Base(), "Child"), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(child.Get(), "Height", nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
}

TEST_F(RegistryTest, AnOpenMissesAKeyAnotherProcessDeletedAfterItWasOpened) {
    CKeyHandle child;
    ASSERT_EQ(CreateKey(Base(), "Child\\Grandchild", child), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Child\\Grandchild", child), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Child\\Grandchild", child), ERROR_SUCCESS);
    const std::string path = Registry().GetKeyPath();
    EXPECT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  return OpenKey(HKEY_CURRENT_USER, path.c_str(), key) == ERROR_SUCCESS &&
                                 RegDeleteKeyA(key.Get(), "Child\\Grandchild") == ERROR_SUCCESS
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(OpenKey(Base(), "Child\\Grandchild", child), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenKey(Base(), "Child", child), ERROR_SUCCESS);
}

// This process's own commits keep what it found; another's, before or after
// them, outdates it.
TEST_F(RegistryTest, AnOpenMissesAKeyAnotherProcessDeletedAroundThisProcesssWrites) {
    const std::string path = Registry().GetKeyPath();
    const auto deleteInChild = [&](const char* name) {
        return RunInChild([&] {
            CKeyHandle key;
            return OpenKey(HKEY_CURRENT_USER, path.c_str(), key) == ERROR_SUCCESS &&
                           RegDeleteKeyA(key.Get(), name) == ERROR_SUCCESS
                       ? 0
                       : 1;
        });
    };
    CKeyHandle child;
    ASSERT_EQ(CreateKey(Base(), "First", child), ERROR_SUCCESS);
    ASSERT_EQ(CreateKey(Base(), "Second", child), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "First", child), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Second", child), ERROR_SUCCESS);

    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    ASSERT_EQ(deleteInChild("First"), 0);
    EXPECT_EQ(OpenKey(Base(), "First", child), ERROR_FILE_NOT_FOUND);

    ASSERT_EQ(OpenKey(Base(), "Second", child), ERROR_SUCCESS);
    ASSERT_EQ(deleteInChild("Second"), 0);
    ASSERT_EQ(SetDword(Base(), "Width", 800), ERROR_SUCCESS);
    EXPECT_EQ(OpenKey(Base(), "Second", child), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetDword(Base(), "Width"), 800u);
}

TEST_F(RegistryTest, InsideABatchAnOpenMissesAKeyTheBatchDeleted) {
    CKeyHandle child;
    ASSERT_EQ(CreateKey(Base(), "Child", child), ERROR_SUCCESS);
    CKWRegistryBatch batch;
    ASSERT_EQ(OpenKey(Base(), "Child", child), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(Base(), "Width", 640), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Child", child), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(Base(), "Child"), ERROR_SUCCESS);
    EXPECT_EQ(OpenKey(Base(), "Child", child), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(CreateKey(Base(), "Child", child), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(child.Get(), "Height", 480), ERROR_SUCCESS);
    EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    EXPECT_EQ(GetDword(child.Get(), "Height"), 480u);
}

TEST_F(RegistryTest, ABatchSetsValuesOfManyKeysAndRefusesAKeyItDeleted) {
    constexpr DWORD kKeys = 300;
    {
        CKWRegistryBatch batch(Base());
        for (DWORD i = 0; i < kKeys; ++i) {
            const std::string path = "K" + std::to_string(i);
            ASSERT_EQ(RegSetKeyValueA(Base(), path.c_str(), "v", REG_DWORD, &i, sizeof i),
                      ERROR_SUCCESS);
            ASSERT_EQ(RegSetKeyValueA(Base(), path.c_str(), "v", REG_DWORD, &i, sizeof i),
                      ERROR_SUCCESS);
        }
        CKeyHandle doomed;
        ASSERT_EQ(OpenKey(Base(), "K7", doomed), ERROR_SUCCESS);
        ASSERT_EQ(RegDeleteKeyA(Base(), "K7"), ERROR_SUCCESS);
        EXPECT_EQ(SetDword(doomed.Get(), "v", 1), ERROR_KEY_DELETED);
        EXPECT_EQ(RegSetKeyValueA(Base(), "K7", "w", REG_BINARY, "", 0), ERROR_SUCCESS);
    }
    EXPECT_EQ(CountValuesNamed(Registry(), "v"), static_cast<int>(kKeys) - 1);
    CKeyHandle key;
    ASSERT_EQ(OpenKey(Base(), "K299", key), ERROR_SUCCESS);
    EXPECT_EQ(GetDword(key.Get(), "v"), 299u);
    ASSERT_EQ(OpenKey(Base(), "K7", key), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key.Get()), std::vector<std::string>{"w"});
}

TEST_F(RegistryTest, ABatchMarksTheKeysItChangedAsWrittenWhenItCommits) {
    const char* const paths[] = {"A", "B", "C"};
    const auto lastWrite = [&](const char* path) {
        CKeyHandle key;
        FILETIME time{};
        EXPECT_EQ(CreateKey(Base(), path, key), ERROR_SUCCESS);
        RegQueryInfoKeyA(key.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, &time);
        return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    };
    ULONGLONG before[3];
    for (int i = 0; i < 3; ++i) {
        before[i] = lastWrite(paths[i]);
    }
    {
        CKWRegistryBatch batch(Base());
        ASSERT_EQ(RegSetKeyValueA(Base(), "A", "v", REG_BINARY, "a", 1), ERROR_SUCCESS);
        ASSERT_EQ(RegSetKeyValueA(Base(), "B", "v", REG_BINARY, "b", 1), ERROR_SUCCESS);
    }
    EXPECT_GT(lastWrite("A"), before[0]);
    EXPECT_GT(lastWrite("B"), before[1]);
    EXPECT_EQ(lastWrite("C"), before[2]);
}

// ------------------------------------------------------------ enumerations

TEST_F(RegistryTest, AnEnumerationSeesKeysAddedAndDeletedByOthersAndByThisProcess) {
    CKeyHandle parent;
    ASSERT_EQ(CreateKey(Base(), "Parent\\b", parent), ERROR_SUCCESS);
    ASSERT_EQ(CreateKey(Base(), "Parent\\D", parent), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Parent", parent), ERROR_SUCCESS);
    using Names = std::vector<std::string>;
    ASSERT_EQ(SubKeyNames(parent.Get()), (Names{"b", "D"}));
    const std::string path = Registry().GetKeyPath() + "\\Parent";
    ASSERT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  CKeyHandle added;
                  return OpenKey(HKEY_CURRENT_USER, path.c_str(), key) == ERROR_SUCCESS &&
                                 CreateKey(key.Get(), "c", added) == ERROR_SUCCESS
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(SubKeyNames(parent.Get()), (Names{"b", "c", "D"}));

    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(Registry().GetStorePath().c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, "DELETE FROM keys WHERE name = 'b'", nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    EXPECT_EQ(SubKeyNames(parent.Get()), (Names{"c", "D"}));

    CKeyHandle added;
    ASSERT_EQ(CreateKey(parent.Get(), "A", added), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(parent.Get()), (Names{"A", "c", "D"}));
    ASSERT_EQ(RegDeleteKeyA(parent.Get(), "c"), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(parent.Get()), (Names{"A", "D"}));
    ASSERT_EQ(RegDeleteKeyA(parent.Get(), "A"), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(parent.Get(), "D"), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(Base(), "Parent"), ERROR_SUCCESS);
    char name[16];
    DWORD length = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(parent.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
}

TEST_F(RegistryTest, InsideABatchEnumerationsAndPathsFollowTheBatchsOwnChanges) {
    using Names = std::vector<std::string>;
    const DWORD one = 1;
    ASSERT_EQ(RegSetKeyValueA(Base(), "P\\Q\\R", "v", REG_DWORD, &one, sizeof one), ERROR_SUCCESS);
    const auto read = [&](const char* keyPath) {
        DWORD value = 0;
        DWORD size = sizeof value;
        const LSTATUS status =
            RegGetValueA(Base(), keyPath, "v", RRF_RT_DWORD, nullptr, &value, &size);
        return status == ERROR_SUCCESS ? static_cast<int>(value) : -static_cast<int>(status);
    };
    ASSERT_EQ(read("p\\q\\r"), 1);
    CKeyHandle q;
    ASSERT_EQ(OpenKey(Base(), "P\\Q", q), ERROR_SUCCESS);
    ASSERT_EQ(SubKeyNames(q.Get()), Names{"R"});
    {
        CKWRegistryBatch batch(Base());
        ASSERT_EQ(RegDeleteKeyA(Base(), "P\\Q\\R"), ERROR_SUCCESS);
        EXPECT_EQ(read("P\\Q\\R"), -ERROR_FILE_NOT_FOUND);
        EXPECT_EQ(SubKeyNames(q.Get()), Names{});
        const DWORD two = 2;
        ASSERT_EQ(RegSetKeyValueA(Base(), "P\\Q\\S", "v", REG_DWORD, &two, sizeof two),
                  ERROR_SUCCESS);
        EXPECT_EQ(SubKeyNames(q.Get()), Names{"S"});
        ASSERT_EQ(RegSetKeyValueA(Base(), "P\\Q\\R", "v", REG_DWORD, &two, sizeof two),
                  ERROR_SUCCESS);
        EXPECT_EQ(read("P\\Q\\R"), 2);
        EXPECT_EQ(SubKeyNames(q.Get()), (Names{"R", "S"}));
    }
    EXPECT_EQ(read("P\\Q\\R"), 2);
    EXPECT_EQ(read("P\\Q\\S"), 2);
}

TEST_F(RegistryTest, ASetByPathFindsTheKeySetBeforeWhateverFormItsPathTakes) {
    const auto set = [&](const char* path, DWORD value) {
        return RegSetKeyValueA(Base(), path, "v", REG_DWORD, &value, sizeof value);
    };
    ASSERT_EQ(set("Deep\\Key", 1), ERROR_SUCCESS);
    ASSERT_EQ(set("Deep\\Key", 2), ERROR_SUCCESS);
    ASSERT_EQ(set("dEEP\\kEY", 3), ERROR_SUCCESS);
    ASSERT_EQ(set("Deep\\\\Key\\", 4), ERROR_SUCCESS);
    EXPECT_EQ(set("\\Deep\\Key", 5), ERROR_BAD_PATHNAME);
    EXPECT_EQ(set("Deep\\KeyX", 6), ERROR_SUCCESS);
    CKeyHandle deep;
    ASSERT_EQ(OpenKey(Base(), "Deep", deep), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(deep.Get()), (std::vector<std::string>{"Key", "KeyX"}));
    CKeyHandle key;
    ASSERT_EQ(OpenKey(deep.Get(), "Key", key), ERROR_SUCCESS);
    EXPECT_EQ(GetDword(key.Get(), "v"), 4u);
}

#endif  // !_WIN32
