// The registry store's file: where it lives, what it does with a file that
// is not a store, and how threads and processes share it.
#if !defined(_WIN32)

#include "RegistryTestKeys.h"

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// Runs SQL on the store's file directly, as another program would.
class CDirectConnection {
public:
    explicit CDirectConnection(const std::string& path) {
        sqlite3_open_v2(path.c_str(), &m_db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        sqlite3_busy_timeout(m_db, 10000);
    }
    ~CDirectConnection() { sqlite3_close(m_db); }
    int Execute(const char* sql) { return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr); }
    std::string Text(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        std::string text;
        if (sqlite3_prepare_v2(m_db, sql, -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW) {
            text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        }
        sqlite3_finalize(statement);
        return text;
    }

private:
    sqlite3* m_db = nullptr;
};

std::string ValueData(int index) {
    return std::string(200 + index % 50, static_cast<char>('a' + index % 26)) +
           std::to_string(index);
}

// ------------------------------------------------------------------ location

class CEnvironment {
public:
    explicit CEnvironment(const char* name) : m_name(name) {
        if (const char* value = std::getenv(name)) {
            m_saved = std::make_unique<std::string>(value);
        }
    }
    ~CEnvironment() {
        if (m_saved != nullptr) {
            setenv(m_name, m_saved->c_str(), 1);
        } else {
            unsetenv(m_name);
        }
    }

private:
    const char* m_name;
    std::unique_ptr<std::string> m_saved;
};

TEST(RegistryStoreLocation, TheConfigurationFolderHoldsTheStoreWhenNoneIsNamed) {
    CEnvironment store("KWCORE_REGISTRY");
    CEnvironment config("XDG_CONFIG_HOME");
    CEnvironment home("HOME");
    CTempFolder folder("kwregistry-");
    unsetenv("KWCORE_REGISTRY");

    setenv("XDG_CONFIG_HOME", (folder.GetPath() / "config").c_str(), 1);
    EXPECT_EQ(RegFlushKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(folder.GetPath() / "config/kwcore/registry.db"));

    // A relative configuration folder is no folder: the home's .config is.
    setenv("XDG_CONFIG_HOME", "relative", 1);
    setenv("HOME", (folder.GetPath() / "home").c_str(), 1);
    EXPECT_EQ(RegFlushKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(folder.GetPath() / "home/.config/kwcore/registry.db"));
}

TEST_F(RegistryTest, AHandleStaysWithTheStoreItWasOpenedIn) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Here", key), ERROR_SUCCESS);
    CTempRegistry other;
    CKeyHandle elsewhere;
    EXPECT_EQ(OpenKey(HKEY_CURRENT_USER, Registry().GetKeyPath().c_str(), elsewhere),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(SetDword(key.Get(), "Still", 1), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key.Get()), Names{"Still"});
}

TEST_F(RegistryTest, PerformanceDataAndDynamicDataAreNoKeysOfTheStore) {
    for (HKEY root : {HKEY_PERFORMANCE_DATA, HKEY_DYN_DATA}) {
        CKeyHandle key;
        EXPECT_EQ(CreateKey(root, "Anything", key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(SetDword(root, "Value", 1), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegCloseKey(root), ERROR_SUCCESS);
    }
    const HKEY made = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x5000));
    EXPECT_EQ(SetDword(made, "Value", 1), ERROR_INVALID_HANDLE);
}

// ------------------------------------------------------------ foreign files

TEST(RegistryStoreFile, AFileThatIsNotAStoreIsReportedAndLeftAsItWas) {
    CTempRegistry registry;
    std::string garbage;
    while (garbage.size() < 5000) {
        garbage += "This is a text file, not a registry store. ";
    }
    for (const std::string& content : {garbage, std::string("short")}) {
        WriteText(registry.GetStorePath(), content);
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software", 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &key, nullptr),
                  ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(key, nullptr);
        EXPECT_EQ(SetDword(HKEY_LOCAL_MACHINE, "Value", 1), ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(ReadText(registry.GetStorePath()), content);
    }
}

TEST(RegistryStoreFile, AnotherProgramsDatabaseIsReportedAndLeftAsItWas) {
    CTempRegistry registry;
    {
        CDirectConnection other(registry.GetStorePath().string());
        ASSERT_EQ(other.Execute("CREATE TABLE keys(id INTEGER); INSERT INTO keys VALUES(1)"),
                  SQLITE_OK);
    }
    const std::string before = ReadText(registry.GetStorePath());
    CKeyHandle key;
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "Software", key), ERROR_REGISTRY_CORRUPT);
    EXPECT_EQ(ReadText(registry.GetStorePath()), before);
    CDirectConnection other(registry.GetStorePath().string());
    EXPECT_EQ(other.Text("PRAGMA journal_mode"), "delete");
}

TEST(RegistryStoreFile, AStoreThatCannotBeOpenedIsReportedUntilItCanBe) {
    CTempRegistry registry;
    std::filesystem::create_directories(registry.GetStorePath() / "a folder, not a file");
    CKeyHandle key;
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "Software", key), ERROR_REGISTRY_IO_FAILED);
    EXPECT_EQ(key.Get(), nullptr);
    std::filesystem::remove_all(registry.GetStorePath());
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "Software", key), ERROR_SUCCESS);
}

TEST_F(RegistryTest, AStoreLockedByAnotherProcessRefusesWritesAfterWaitingAndStillReads) {
    ASSERT_EQ(SetDword(Base(), "Before", 1), ERROR_SUCCESS);
    int locked[2];
    int release[2];
    ASSERT_EQ(pipe(locked), 0);
    ASSERT_EQ(pipe(release), 0);
    const pid_t child = fork();
    if (child == 0) {
        // Holds the write lock until told to let go, then gives up its transaction.
        CDirectConnection other(Registry().GetStorePath().string());
        const char held = other.Execute("BEGIN EXCLUSIVE") == SQLITE_OK ? '!' : '?';
        static_cast<void>(write(locked[1], &held, 1));
        char ignored;
        static_cast<void>(read(release[0], &ignored, 1));
        _exit(other.Execute("ROLLBACK") == SQLITE_OK ? 0 : 1);
    }
    char held = 0;
    ASSERT_EQ(read(locked[0], &held, 1), 1);
    EXPECT_EQ(held, '!');
    EXPECT_EQ(SetDword(Base(), "During", 2), ERROR_LOCK_VIOLATION);
    EXPECT_EQ(GetBytes(Base(), "Before").size(), 4u);
    ASSERT_EQ(write(release[1], "!", 1), 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    for (int end : {locked[0], locked[1], release[0], release[1]}) {
        close(end);
    }
    EXPECT_EQ(SetDword(Base(), "After", 3), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(Base()), (Names{"Before", "After"}));
}

// -------------------------------------------------------------- volatile keys

TEST_F(RegistryTest, VolatileKeysOfAnEarlierBootAreGoneWhenTheStoreIsNextOpened) {
    CKeyHandle session;
    ASSERT_EQ(CreateKey(Base(), "Session\\Inner", session, REG_OPTION_VOLATILE), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(session.Get(), "Value", 1), ERROR_SUCCESS);
    CKeyHandle lasting;
    ASSERT_EQ(CreateKey(Base(), "Lasting", lasting), ERROR_SUCCESS);
    CKeyHandle fleeting;
    ASSERT_EQ(CreateKey(lasting.Get(), "Fleeting", fleeting, REG_OPTION_VOLATILE), ERROR_SUCCESS);

    // Reopened in this boot, the keys stay.
    EXPECT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  return OpenKey(Base(), "Session\\Inner", key);
              }),
              ERROR_SUCCESS);
    {
        CDirectConnection other(Registry().GetStorePath().string());
        ASSERT_EQ(other.Execute("UPDATE keys SET boot = 'an earlier boot' WHERE boot IS NOT NULL"),
                  SQLITE_OK);
    }
    EXPECT_EQ(RunInChild([&] {
                  CKeyHandle key;
                  return OpenKey(Base(), "Session", key);
              }),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(SubKeyNames(Base()), Names{"Lasting"});
    CKeyHandle parent;
    ASSERT_EQ(OpenKey(Base(), "Lasting", parent), ERROR_SUCCESS);
    EXPECT_TRUE(SubKeyNames(parent.Get()).empty());
    EXPECT_EQ(SetDword(session.Get(), "Value", 2), ERROR_KEY_DELETED);
    CDirectConnection other(Registry().GetStorePath().string());
    EXPECT_EQ(other.Text("SELECT count(*) FROM vals"), "0");
}

// ----------------------------------------------------------------- sharing

TEST_F(RegistryTest, TwoProcessesWritingAtOnceLoseNothing) {
    constexpr int kValuesEach = 150;
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    std::vector<pid_t> children;
    for (int writer = 0; writer < 2; ++writer) {
        const pid_t child = fork();
        if (child == 0) {
            close(go[1]);
            char ignored;
            static_cast<void>(read(go[0], &ignored, 1));  // both start when the pipe closes
            CKeyHandle key;
            DWORD disposition = 0;
            if (CreateKey(Base(), "Shared", key, 0, &disposition) != ERROR_SUCCESS) {
                _exit(10);
            }
            for (int i = 0; i < kValuesEach; ++i) {
                const std::string name = std::to_string(writer) + "-" + std::to_string(i);
                if (SetString(key.Get(), name.c_str(), ValueData(i)) != ERROR_SUCCESS) {
                    _exit(11);
                }
            }
            _exit(disposition == REG_CREATED_NEW_KEY ? 0 : 1);
        }
        children.push_back(child);
    }
    close(go[0]);
    close(go[1]);
    std::vector<int> results;
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        results.push_back(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    }
    // One created the key, the other opened it.
    EXPECT_EQ(results[0] + results[1], 1) << results[0] << " " << results[1];
    CKeyHandle key;
    ASSERT_EQ(OpenKey(Base(), "Shared", key), ERROR_SUCCESS);
    ASSERT_EQ(ValueNames(key.Get()).size(), 2u * kValuesEach);
    for (int writer = 0; writer < 2; ++writer) {
        for (int i = 0; i < kValuesEach; ++i) {
            const std::string name = std::to_string(writer) + "-" + std::to_string(i);
            const std::string data = ValueData(i);
            ASSERT_EQ(GetBytes(key.Get(), name.c_str()),
                      std::string(data.c_str(), data.size() + 1));
        }
    }
}

TEST_F(RegistryTest, AWriterKilledInTheMiddleLeavesAWholeStore) {
    constexpr int kWritesBeforeKill = 40;
    int progress[2];
    ASSERT_EQ(pipe(progress), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(progress[0]);
        CKeyHandle key;
        if (CreateKey(Base(), "Batch", key) != ERROR_SUCCESS) {
            _exit(1);
        }
        for (int i = 0; i < 1000000; ++i) {
            CKeyHandle item;
            const std::string name = "Item" + std::to_string(i);
            if (CreateKey(key.Get(), name.c_str(), item) != ERROR_SUCCESS ||
                SetString(item.Get(), "Data", ValueData(i)) != ERROR_SUCCESS ||
                SetDword(key.Get(), "Count", static_cast<DWORD>(i + 1)) != ERROR_SUCCESS) {
                _exit(2);
            }
            if (i + 1 == kWritesBeforeKill) {
                static_cast<void>(write(progress[1], "!", 1));
            }
        }
        _exit(0);
    }
    ASSERT_TRUE(KillChildWhenItSignals(child, progress));

    CDirectConnection direct(Registry().GetStorePath().string());
    EXPECT_EQ(direct.Text("PRAGMA integrity_check"), "ok");
    CKeyHandle key;
    ASSERT_EQ(OpenKey(Base(), "Batch", key), ERROR_SUCCESS);
    const std::vector<std::string> items = SubKeyNames(key.Get());
    ASSERT_GE(items.size(), static_cast<std::size_t>(kWritesBeforeKill));
    // Each item is whole: its value is there, and the count is at most one behind.
    for (std::size_t i = 0; i < items.size(); ++i) {
        CKeyHandle item;
        const std::string name = "Item" + std::to_string(i);
        ASSERT_EQ(OpenKey(key.Get(), name.c_str(), item), ERROR_SUCCESS) << name;
        const std::string data = GetBytes(item.Get(), "Data");
        if (i + 1 < items.size() || !data.empty()) {
            EXPECT_EQ(data, std::string(ValueData(static_cast<int>(i)).c_str(), data.size()));
            EXPECT_EQ(data.size(), ValueData(static_cast<int>(i)).size() + 1);
        }
    }
    DWORD count = 0;
    DWORD size = sizeof count;
    ASSERT_EQ(RegQueryValueExA(key.Get(), "Count", nullptr, nullptr,
                               reinterpret_cast<BYTE*>(&count), &size),
              ERROR_SUCCESS);
    EXPECT_GE(count + 1, items.size());
    EXPECT_LE(count, items.size());
    EXPECT_EQ(SetDword(key.Get(), "After", 1), ERROR_SUCCESS);
}

TEST_F(RegistryTest, GetValueSeesChangesAndDeletionsByThisAndAnotherProcess) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Cached\\Key", key), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(key.Get(), "N", 1), ERROR_SUCCESS);
    const auto read = [&] {
        DWORD value = 0;
        DWORD size = sizeof value;
        const LSTATUS status =
            RegGetValueA(Base(), "Cached\\Key", "N", RRF_RT_DWORD, nullptr, &value, &size);
        return status == ERROR_SUCCESS ? static_cast<int>(value) : -static_cast<int>(status);
    };
    ASSERT_EQ(read(), 1);
    ASSERT_EQ(RunInChild([&] { return SetDword(key.Get(), "N", 2) == ERROR_SUCCESS ? 0 : 1; }), 0);
    EXPECT_EQ(read(), 2);
    ASSERT_EQ(SetDword(key.Get(), "N", 3), ERROR_SUCCESS);
    EXPECT_EQ(read(), 3);
    ASSERT_EQ(RunInChild([&] {
                  return RegDeleteValueA(key.Get(), "N") == ERROR_SUCCESS &&
                                 RegDeleteKeyA(Base(), "Cached\\Key") == ERROR_SUCCESS
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(read(), -ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(CreateKey(Base(), "Cached\\Key", key), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(key.Get(), "N", 4), ERROR_SUCCESS);
    EXPECT_EQ(read(), 4);
    ASSERT_EQ(RegDeleteKeyA(Base(), "Cached\\Key"), ERROR_SUCCESS);
    EXPECT_EQ(read(), -ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ThreadsShareTheStore) {
    constexpr int kThreads = 4;
    constexpr int kValuesEach = 100;
    std::vector<std::thread> threads;
    std::vector<LSTATUS> failures(kThreads, ERROR_SUCCESS);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            CKeyHandle key;
            LSTATUS status = CreateKey(Base(), "Common", key);
            for (int i = 0; status == ERROR_SUCCESS && i < kValuesEach; ++i) {
                const std::string name = std::to_string(t) + "-" + std::to_string(i);
                status = SetDword(key.Get(), name.c_str(), static_cast<DWORD>(i));
                if (status == ERROR_SUCCESS && GetBytes(key.Get(), name.c_str()).size() != 4) {
                    status = ERROR_INVALID_DATA;
                }
                if (status == ERROR_SUCCESS && i % 10 == 0 &&
                    ValueNames(key.Get()).size() < static_cast<std::size_t>(i + 1)) {
                    status = ERROR_INVALID_DATA;  // a value this thread wrote is missing
                }
            }
            failures[t] = status;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, std::vector<LSTATUS>(kThreads, ERROR_SUCCESS));
    CKeyHandle key;
    ASSERT_EQ(OpenKey(Base(), "Common", key), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(key.Get()).size(), static_cast<std::size_t>(kThreads * kValuesEach));
}

}  // namespace

#endif  // !_WIN32
