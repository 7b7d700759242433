// The registry store's database file: opened on first use, checked to be a
// store (or created as one), switched to write-ahead logging, and cleared of
// the volatile keys of earlier boots. Every use is one transaction under the
// database's mutex, so the threads of a process take turns and other
// processes see whole calls or nothing.
//
// A file that is not a store is never written to: it gives
// ERROR_REGISTRY_CORRUPT until it is replaced. A process forked from the one
// that opened the file opens it again on its first use.
#pragma once

#include "CKWSqliteConnection.h"

#include "kwcore/platform/Win32Types.h"

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

class CKWRegistryDatabase {
public:
    explicit CKWRegistryDatabase(std::string path) : m_path(std::move(path)) {}
    ~CKWRegistryDatabase();
    CKWRegistryDatabase(const CKWRegistryDatabase&) = delete;
    CKWRegistryDatabase& operator=(const CKWRegistryDatabase&) = delete;

    const std::string& GetPath() const { return m_path; }

    // Runs work inside one transaction on Connection(). A write transaction
    // takes the store's write lock first and commits only when work
    // succeeds; work's result is the result, unless the store fails.
    LSTATUS Read(const std::function<LSTATUS()>& work);
    LSTATUS Write(const std::function<LSTATUS()>& work);
    // Makes every committed write durable.
    LSTATUS Flush();

    // Only inside Read or Write.
    CKWSqliteConnection& Connection() { return m_connection; }

    // The key ID of a predefined root kept in the store, 0 for any other
    // handle (HKEY_PERFORMANCE_DATA and HKEY_DYN_DATA are not kept).
    static std::int64_t RootKeyId(HKEY root);

    // The kernel's ID of the running boot, which volatile keys carry.
    static const std::string& BootId();

    // The code a SQLite result gives to the caller.
    static LSTATUS Status(int sqliteResult);

    // How long a call waits for another process's write lock.
    static constexpr int kBusyTimeoutMs = 5000;

private:
    LSTATUS Transact(bool isWrite, const std::function<LSTATUS()>& work);
    LSTATUS Connect();
    LSTATUS CheckOrCreateSchema();
    LSTATUS CreateSchemaIfEmpty();
    LSTATUS RemoveStaleVolatileKeys();
    LSTATUS ReadInteger(const char* sql, std::int64_t& value);

    std::string m_path;
    std::mutex m_mutex;
    CKWSqliteConnection m_connection;
    // The process that opened m_connection.
    pid_t m_owner = 0;
};
