#include "CKWSqliteConnection.h"

CKWSqliteConnection::~CKWSqliteConnection() {
    Close();
}

int CKWSqliteConnection::Open(const std::string& path, int busyTimeoutMs) {
    Close();
    // The owner serialises every use, so SQLite's own mutexes are not needed.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(path.c_str(), &m_db, flags, nullptr);
    if (result != SQLITE_OK) {
        Close();
        return result;
    }
    sqlite3_extended_result_codes(m_db, 0);
    return sqlite3_busy_timeout(m_db, busyTimeoutMs);
}

void CKWSqliteConnection::Close() {
    for (const auto& entry : m_statements) {
        sqlite3_finalize(entry.second);
    }
    m_statements.clear();
    sqlite3_close(m_db);
    m_db = nullptr;
}

void CKWSqliteConnection::Abandon() {
    if (m_db != nullptr) {
        m_abandoned.push_back(m_db);
    }
    m_statements.clear();
    m_db = nullptr;
}

int CKWSqliteConnection::Execute(const char* sql) {
    if (m_db == nullptr) {
        return SQLITE_MISUSE;
    }
    return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
}

int CKWSqliteConnection::QueryInteger(const char* sql, std::int64_t& value) {
    if (m_db == nullptr) {
        return SQLITE_MISUSE;
    }
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(m_db, sql, -1, &statement, nullptr);
    if (result == SQLITE_OK) {
        result = sqlite3_step(statement);
    }
    if (result == SQLITE_ROW) {
        value = sqlite3_column_int64(statement, 0);
        result = SQLITE_OK;
    }
    sqlite3_finalize(statement);
    return result;
}

sqlite3_stmt* CKWSqliteConnection::Statement(const char* sql) {
    if (m_db == nullptr) {
        return nullptr;
    }
    const auto found = m_statements.find(sql);
    if (found != m_statements.end()) {
        return found->second;
    }
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(m_db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
        SQLITE_OK) {
        return nullptr;
    }
    m_statements.emplace(sql, statement);
    return statement;
}

int CKWSqliteConnection::LastError() const {
    return m_db != nullptr ? sqlite3_errcode(m_db) : SQLITE_CANTOPEN;
}

int CKWSqliteConnection::Checkpoint() {
    if (m_db == nullptr) {
        return SQLITE_MISUSE;
    }
    return sqlite3_wal_checkpoint_v2(m_db, nullptr, SQLITE_CHECKPOINT_FULL, nullptr, nullptr);
}

unsigned CKWSqliteConnection::DataVersion() const {
    unsigned version = 0;
    if (m_db != nullptr) {
        sqlite3_file_control(m_db, "main", SQLITE_FCNTL_DATA_VERSION, &version);
    }
    return version;
}
