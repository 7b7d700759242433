// A SQLite connection and the statements prepared on it, kept for reuse.
// Used by one thread at a time (its owner serialises the calls).
//
// A connection must not be used in a process forked from the one that
// opened it: SQLite's file locks belong to the opening process. Abandon
// forgets such an inherited connection without closing it, since closing it
// in the child would disturb the parent's locks.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

class CKWSqliteConnection {
public:
    CKWSqliteConnection() = default;
    ~CKWSqliteConnection();
    CKWSqliteConnection(const CKWSqliteConnection&) = delete;
    CKWSqliteConnection& operator=(const CKWSqliteConnection&) = delete;

    // Opens (creating) the database file; a SQLite result code. Waits up to
    // busyTimeoutMs for locks held by other connections.
    int Open(const std::string& path, int busyTimeoutMs);
    void Close();
    void Abandon();
    bool IsOpen() const { return m_db != nullptr; }

    // Runs statements that return no rows; a SQLite result code.
    int Execute(const char* sql);
    // Runs a statement that gives one integer, prepared for this use only:
    // a kept statement may give a stale answer to a pragma.
    int QueryInteger(const char* sql, std::int64_t& value);
    // The statement for sql, prepared once and kept: sql must be a string
    // that lives as long as the program (it is the cache key). Null when it
    // cannot be prepared (LastError tells why).
    sqlite3_stmt* Statement(const char* sql);
    int LastError() const;
    // Rows changed by the last INSERT, UPDATE or DELETE.
    int Changes() const { return m_db != nullptr ? sqlite3_changes(m_db) : 0; }
    // The rowid of the last row inserted.
    std::int64_t LastInsertId() const {
        return m_db != nullptr ? sqlite3_last_insert_rowid(m_db) : 0;
    }
    // A number that changes whenever the database changes, through this
    // connection or another; read it inside a transaction.
    unsigned DataVersion() const;
    // Makes every committed transaction durable: syncs the write-ahead log,
    // which holds whatever the database file does not; without a log open,
    // copies it into the database file and syncs that.
    int MakeDurable();

    // The header of the write-ahead log's index, which every connection to
    // the file shares in memory and rewrites at each commit: two equal
    // readings mean that nothing was committed in between. False when it
    // cannot be read, or not whole (a commit is writing it).
    typedef std::array<std::uint32_t, 12> CommitMark;
    bool ReadCommitMark(CommitMark& mark);

private:
    const volatile void* MapWalIndex();

    sqlite3* m_db = nullptr;
    // The index's first region as SQLite maps it, while m_db is open.
    const volatile void* m_walIndex = nullptr;
    std::unordered_map<const char*, sqlite3_stmt*> m_statements;
    // Connections inherited across fork: never closed, kept so they stay reachable.
    std::vector<sqlite3*> m_abandoned;
};
