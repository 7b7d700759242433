#include "CKWSqliteConnection.h"

#include <cstring>

namespace {

// The index's first region; SQLite maps it in pieces of this size.
constexpr int kWalIndexRegionSize = 32768;
// The header is kept twice, one copy after the other; a commit writes the
// second copy first, so readers that find both equal have a whole one.
constexpr std::size_t kWalIndexHeaderSize = 48;
// The header's isInit byte: zero until the index has been built.
constexpr std::size_t kWalIndexInitByte = 12;

}  // namespace

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
    m_walIndex = nullptr;
}

void CKWSqliteConnection::Abandon() {
    if (m_db != nullptr) {
        m_abandoned.push_back(m_db);
    }
    m_statements.clear();
    m_db = nullptr;
    m_walIndex = nullptr;
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

int CKWSqliteConnection::MakeDurable() {
    if (m_db == nullptr) {
        return SQLITE_MISUSE;
    }
    // Frames leave the log only once a checkpoint has copied them and synced
    // the database file, so syncing the log is enough.
    sqlite3_file* log = nullptr;
    sqlite3_file_control(m_db, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (log != nullptr && log->pMethods != nullptr) {
        return log->pMethods->xSync(log, SQLITE_SYNC_NORMAL);
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

const volatile void* CKWSqliteConnection::MapWalIndex() {
    if (m_walIndex != nullptr || m_db == nullptr) {
        return m_walIndex;
    }
    sqlite3_file* file = nullptr;
    sqlite3_file_control(m_db, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file == nullptr || file->pMethods == nullptr || file->pMethods->iVersion < 2 ||
        file->pMethods->xShmMap == nullptr) {
        return nullptr;
    }
    // Maps nothing new: the region exists once the log has been read.
    void volatile* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, kWalIndexRegionSize, 0, &region) == SQLITE_OK) {
        m_walIndex = region;
    }
    return m_walIndex;
}

bool CKWSqliteConnection::ReadCommitMark(CommitMark& mark) {
    static_assert(sizeof(CommitMark) == kWalIndexHeaderSize, "one copy of the header");
    const volatile void* index = MapWalIndex();
    if (index == nullptr) {
        return false;
    }
    // Acquiring loads of the first copy keep the second copy's loads after them.
    const auto* words = static_cast<const volatile std::uint32_t*>(index);
    CommitMark second;
    for (std::size_t i = 0; i < mark.size(); ++i) {
        mark[i] = __atomic_load_n(words + i, __ATOMIC_ACQUIRE);
    }
    for (std::size_t i = 0; i < second.size(); ++i) {
        second[i] = __atomic_load_n(words + mark.size() + i, __ATOMIC_RELAXED);
    }
    unsigned char initialised = 0;
    std::memcpy(&initialised,
                reinterpret_cast<const unsigned char*>(mark.data()) + kWalIndexInitByte, 1);
    return initialised != 0 && mark == second;
}
