// Helpers of the registry tests: a key handle closed at the end of scope, a
// test's own key, and short forms of the calls the tests repeat.
#pragma once

#include "CTempRegistry.h"

#include "kwcore/platform/Registry.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>

#include <unistd.h>
#include <csignal>
#endif

// An open key, closed when it goes.
class CKeyHandle {
public:
    CKeyHandle() = default;
    explicit CKeyHandle(HKEY key) : m_key(key) {}
    ~CKeyHandle() { Close(); }
    CKeyHandle(const CKeyHandle&) = delete;
    CKeyHandle& operator=(const CKeyHandle&) = delete;

    HKEY Get() const { return m_key; }
    // For the calls that give a handle; closes the one held first.
    PHKEY Receive() {
        Close();
        return &m_key;
    }
    LSTATUS Close() {
        const LSTATUS status = m_key != nullptr ? RegCloseKey(m_key) : ERROR_SUCCESS;
        m_key = nullptr;
        return status;
    }

private:
    HKEY m_key = nullptr;
};

// Short forms of the calls the tests repeat.
inline LSTATUS CreateKey(HKEY parent, const char* path, CKeyHandle& key,
                         DWORD options = REG_OPTION_NON_VOLATILE, DWORD* disposition = nullptr,
                         REGSAM access = KEY_ALL_ACCESS) {
    return RegCreateKeyExA(parent, path, 0, nullptr, options, access, nullptr, key.Receive(),
                           disposition);
}
inline LSTATUS OpenKey(HKEY parent, const char* path, CKeyHandle& key,
                       REGSAM access = KEY_ALL_ACCESS) {
    return RegOpenKeyExA(parent, path, 0, access, key.Receive());
}
inline LSTATUS SetBytes(HKEY key, const char* name, DWORD type, const std::string& bytes) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}
// A REG_SZ value with its terminator, as hosts store strings.
inline LSTATUS SetString(HKEY key, const char* name, const std::string& text) {
    return SetBytes(key, name, REG_SZ, std::string(text.c_str(), text.size() + 1));
}
inline LSTATUS SetDword(HKEY key, const char* name, DWORD value) {
    return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                          sizeof value);
}
// The value's bytes; its type in *type. Empty when it cannot be read.
inline std::string GetBytes(HKEY key, const char* name, DWORD* type = nullptr) {
    DWORD size = 0;
    if (RegQueryValueExA(key, name, nullptr, type, nullptr, &size) != ERROR_SUCCESS) {
        return std::string();
    }
    std::string bytes(size, '\0');
    if (RegQueryValueExA(key, name, nullptr, type, reinterpret_cast<BYTE*>(&bytes[0]), &size) !=
        ERROR_SUCCESS) {
        return std::string();
    }
    bytes.resize(size);
    return bytes;
}
inline std::vector<std::string> SubKeyNames(HKEY key) {
    std::vector<std::string> names;
    char name[256];
    for (DWORD length = sizeof name;
         RegEnumKeyExA(key, static_cast<DWORD>(names.size()), name, &length, nullptr, nullptr,
                       nullptr, nullptr) == ERROR_SUCCESS;
         length = sizeof name) {
        names.emplace_back(name, length);
    }
    return names;
}
inline std::vector<std::string> ValueNames(HKEY key) {
    std::vector<std::string> names;
    char name[16384];
    for (DWORD length = sizeof name;
         RegEnumValueA(key, static_cast<DWORD>(names.size()), name, &length, nullptr, nullptr,
                       nullptr, nullptr) == ERROR_SUCCESS;
         length = sizeof name) {
        names.emplace_back(name, length);
    }
    return names;
}

#if !defined(_WIN32)
// Runs body in a child process; its result is the child's exit code, -1 when
// the child did not exit normally.
inline int RunInChild(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Waits for the child to write one byte to the pipe, then kills it in the
// middle of what it does next; false when the child never wrote.
inline bool KillChildWhenItSignals(pid_t child, int pipe[2]) {
    close(pipe[1]);
    char signal = 0;
    const bool signalled = read(pipe[0], &signal, 1) == 1;
    close(pipe[0]);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return signalled;
}
#endif

// Every registry test works in a registry, and below a key, of its own.
class RegistryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, m_registry.GetKeyPath().c_str(), m_base),
                  ERROR_SUCCESS);
    }

    HKEY Base() const { return m_base.Get(); }
    const CTempRegistry& Registry() const { return m_registry; }

private:
    CTempRegistry m_registry;
    CKeyHandle m_base;
};
