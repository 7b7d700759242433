// The registry store's database file: opened on first use, checked to be a
// store (or created as one), switched to write-ahead logging, and cleared of
// the volatile keys of earlier boots. Every use is one transaction under the
// database's mutex, so the threads of a process take turns and other
// processes see whole calls or nothing.
//
// A batch holds the mutex and one write transaction from BeginBatch to
// EndBatch on one thread; that thread's uses join the transaction, each
// write inside a savepoint of its own (unless it makes one change at most),
// so a failed use undoes only itself.
//
// A file that is not a store is never written to: it gives
// ERROR_REGISTRY_CORRUPT until it is replaced. A process forked from the one
// that opened the file opens it again on its first use.
#pragma once

#include "CKWSqliteConnection.h"

#include "kwcore/platform/Win32Types.h"

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

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
    // A write whose work changes the database with one statement at most,
    // which SQLite undoes by itself when it fails: inside a batch it needs
    // no savepoint of its own.
    LSTATUS WriteOneChange(const std::function<LSTATUS()>& work);
    // Makes every committed write durable; inside a batch, the batch when it
    // commits.
    LSTATUS Flush();

    // A batch on the calling thread, nested ones joining the outermost,
    // which runs beforeCommit inside the transaction and commits at its
    // EndBatch.
    LSTATUS BeginBatch();
    LSTATUS EndBatch(const std::function<LSTATUS()>& beforeCommit);

    // What may have changed since the last Peek: nothing; only what this
    // process wrote (values; keys are only added by it, as its deletions are
    // the caches' own business); or anything.
    enum EKWChange { kUnchanged, kOwnWrites, kAnyChange };

    // Runs lookup(change) under the mutex, outside any transaction, for
    // caches of what was read: change tells what may have been committed to
    // the store, by this process or any other program, or written by a batch
    // of this thread, since the last Peek. Lookup must not touch the
    // database. Template, as it is on the path of every cached read.
    template <class Lookup>
    LSTATUS Peek(Lookup&& lookup) {
        if (IsInBatch()) {
            return lookup(TakeChange());
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        const LSTATUS connected = Connect();
        return connected != ERROR_SUCCESS ? connected : lookup(TakeChange());
    }
    // Whether the calling thread's uses join a batch.
    bool IsInBatch() const { return m_batchThread.load() == std::this_thread::get_id(); }

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
    enum EKWTransaction { kRead, kWrite, kWriteOneChange };

    LSTATUS Transact(EKWTransaction kind, const std::function<LSTATUS()>& work);
    LSTATUS TransactInBatch(EKWTransaction kind, const std::function<LSTATUS()>& work);
    // Under the mutex: what may have changed since the last call (see Peek).
    EKWChange TakeChange();
    // Around a commit of this connection: the mark before it, when nothing
    // else was committed since the last Peek; then, when the commit was the
    // only one since, what only this process's writes changed.
    bool ReadMarkBeforeCommit(CKWSqliteConnection::CommitMark& before);
    void NoteOwnCommit(const CKWSqliteConnection::CommitMark& before);
    int CommitNoting();
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
    // The thread holding m_mutex for a batch; only it changes the rest.
    std::atomic<std::thread::id> m_batchThread;
    int m_batchDepth = 0;
    bool m_flushAfterBatch = false;
    // The commit mark at the last Peek; invalid when the connection was
    // opened again or a batch undid writes since.
    CKWSqliteConnection::CommitMark m_peekMark{};
    bool m_peekMarkIsValid = false;
    bool m_wroteSincePeek = false;
};
