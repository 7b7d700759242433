#include "CKWRegistryDatabase.h"

#include "CKWSqlQuery.h"

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <fstream>
#include <iterator>

namespace {

// "KWRG": marks a database as a registry store, so no other SQLite file is
// ever taken for one and changed.
constexpr std::int64_t kApplicationId = 0x4B575247;
constexpr std::int64_t kFormatVersion = 1;

struct SKWRoot {
    HKEY handle;
    std::int64_t id;
    const char* name;
};

const SKWRoot kRoots[] = {
    {HKEY_CLASSES_ROOT, 1, "HKEY_CLASSES_ROOT"},     {HKEY_CURRENT_USER, 2, "HKEY_CURRENT_USER"},
    {HKEY_LOCAL_MACHINE, 3, "HKEY_LOCAL_MACHINE"},   {HKEY_USERS, 4, "HKEY_USERS"},
    {HKEY_CURRENT_CONFIG, 5, "HKEY_CURRENT_CONFIG"},
};

// Keys: each root has parent 0; a key's fold is its name in the folded form
// (unique below its parent, and the order of enumeration); boot is the boot
// a volatile key belongs to, NULL for a lasting one; written is a FILETIME.
// Values: their rowid is their creation order, kept when one is set again.
constexpr const char* kCreateSchema =
    "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL,"
    " name TEXT NOT NULL, fold TEXT NOT NULL, boot TEXT, written INTEGER NOT NULL,"
    " UNIQUE(parent, fold));"
    "CREATE INDEX volatile_keys ON keys(boot) WHERE boot IS NOT NULL;"
    "CREATE TABLE vals(key INTEGER NOT NULL, name TEXT NOT NULL, fold TEXT NOT NULL,"
    " type INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key, fold));"
    "CREATE INDEX vals_in_order ON vals(key);";
// The current time as a FILETIME (julianday 2305813.5 is 1601-01-01).
constexpr const char* kInsertRoot =
    "INSERT INTO keys(id, parent, name, fold, written)"
    " VALUES(?1, 0, ?2, ?2, CAST((julianday('now') - 2305813.5) * 864000000000 AS INTEGER))";
constexpr const char* kCountSchemaObjects = "SELECT count(*) FROM sqlite_schema";
constexpr const char* kFindStaleVolatileKey =
    "SELECT 1 FROM keys WHERE boot IS NOT NULL AND boot <> ?1 LIMIT 1";
// A stale key's sub-keys are volatile too, and normally of the same boot;
// the walk also takes any of another boot, so nothing is left orphaned.
constexpr const char* kDeleteStaleValues =
    "WITH RECURSIVE doomed(id) AS (SELECT id FROM keys WHERE boot IS NOT NULL AND boot <> ?1"
    " UNION SELECT keys.id FROM keys JOIN doomed ON keys.parent = doomed.id)"
    " DELETE FROM vals WHERE key IN doomed";
constexpr const char* kDeleteStaleKeys =
    "WITH RECURSIVE doomed(id) AS (SELECT id FROM keys WHERE boot IS NOT NULL AND boot <> ?1"
    " UNION SELECT keys.id FROM keys JOIN doomed ON keys.parent = doomed.id)"
    " DELETE FROM keys WHERE id IN doomed";

constexpr const char* kBeginRead = "BEGIN";
// Taking the write lock first: a read lock that later asks for the write
// lock cannot wait for it and fails at once.
constexpr const char* kBeginWrite = "BEGIN IMMEDIATE";
constexpr const char* kCommit = "COMMIT";
constexpr const char* kRollback = "ROLLBACK";
// The word of the log index's header that counts transactions.
constexpr std::size_t kTransactionCounterWord = 2;
constexpr const char* kSavepoint = "SAVEPOINT call";
constexpr const char* kReleaseSavepoint = "RELEASE call";
constexpr const char* kRollbackToSavepoint = "ROLLBACK TO call";

// Creates the folders above the store's file, private to the user as
// configuration folders are.
bool CreateParentFolders(const std::string& file) {
    for (std::size_t slash = file.find('/', 1); slash != std::string::npos;
         slash = file.find('/', slash + 1)) {
        const std::string folder = file.substr(0, slash);
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
            return false;
        }
    }
    return true;
}

// The running process's ID, kept: getpid is a system call, and every use of
// the store asks. Only fork changes it.
std::atomic<pid_t> g_process{0};

pid_t CurrentProcess() {
    static const bool isKept = [] {
        g_process = getpid();
        return pthread_atfork(nullptr, nullptr, [] { g_process = getpid(); }) == 0;
    }();
    return isKept ? g_process.load(std::memory_order_relaxed) : getpid();
}

}  // namespace

std::int64_t CKWRegistryDatabase::RootKeyId(HKEY root) {
    for (const SKWRoot& entry : kRoots) {
        if (entry.handle == root) {
            return entry.id;
        }
    }
    return 0;
}

LSTATUS CKWRegistryDatabase::Status(int sqliteResult) {
    switch (sqliteResult & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return ERROR_SUCCESS;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ERROR_LOCK_VIOLATION;
        case SQLITE_NOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return ERROR_ACCESS_DENIED;
        case SQLITE_TOOBIG:
            return ERROR_INVALID_PARAMETER;
        case SQLITE_IOERR:
        case SQLITE_FULL:
        case SQLITE_CANTOPEN:
        case SQLITE_PROTOCOL:
            return ERROR_REGISTRY_IO_FAILED;
        default:
            return ERROR_REGISTRY_CORRUPT;
    }
}

CKWRegistryDatabase::~CKWRegistryDatabase() {
    // A forked child's copy belongs to the parent (see CKWSqliteConnection).
    if (m_owner != CurrentProcess()) {
        m_connection.Abandon();
    }
}

LSTATUS CKWRegistryDatabase::Read(const std::function<LSTATUS()>& work) {
    return Transact(kRead, work);
}

LSTATUS CKWRegistryDatabase::Write(const std::function<LSTATUS()>& work) {
    return Transact(kWrite, work);
}

LSTATUS CKWRegistryDatabase::WriteOneChange(const std::function<LSTATUS()>& work) {
    return Transact(kWriteOneChange, work);
}

LSTATUS CKWRegistryDatabase::Transact(EKWTransaction kind, const std::function<LSTATUS()>& work) {
    if (IsInBatch()) {
        return TransactInBatch(kind, work);
    }
    const bool isWrite = kind != kRead;
    std::lock_guard<std::mutex> lock(m_mutex);
    const LSTATUS connected = Connect();
    if (connected != ERROR_SUCCESS) {
        return connected;
    }
    const int begun = CKWSqlQuery(m_connection, isWrite ? kBeginWrite : kBeginRead).Run();
    if (begun != SQLITE_OK) {
        return Status(begun);
    }
    LSTATUS status = work();
    if (isWrite && status != ERROR_SUCCESS) {
        CKWSqlQuery(m_connection, kRollback).Run();
        return status;
    }
    const int committed = isWrite ? CommitNoting() : CKWSqlQuery(m_connection, kCommit).Run();
    if (committed != SQLITE_OK) {
        CKWSqlQuery(m_connection, kRollback).Run();
        if (status == ERROR_SUCCESS) {
            status = Status(committed);
        }
    }
    return status;
}

LSTATUS CKWRegistryDatabase::TransactInBatch(EKWTransaction kind,
                                             const std::function<LSTATUS()>& work) {
    if (kind == kRead) {
        return work();
    }
    m_wroteSincePeek = true;
    const bool needsSavepoint = kind == kWrite;
    const int saved = needsSavepoint ? CKWSqlQuery(m_connection, kSavepoint).Run() : SQLITE_OK;
    if (saved != SQLITE_OK) {
        return Status(saved);
    }
    LSTATUS status = work();
    if (status != ERROR_SUCCESS) {
        // Whatever was read since may be undone; a failing SQLite may even
        // have undone the whole batch.
        m_peekMarkIsValid = false;
    }
    if (needsSavepoint) {
        if (status != ERROR_SUCCESS) {
            CKWSqlQuery(m_connection, kRollbackToSavepoint).Run();
        }
        const int released = CKWSqlQuery(m_connection, kReleaseSavepoint).Run();
        if (status == ERROR_SUCCESS) {
            status = Status(released);
        }
    }
    return status;
}

LSTATUS CKWRegistryDatabase::Flush() {
    if (IsInBatch()) {
        m_flushAfterBatch = true;
        return ERROR_SUCCESS;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    const LSTATUS connected = Connect();
    return connected != ERROR_SUCCESS ? connected : Status(m_connection.MakeDurable());
}

LSTATUS CKWRegistryDatabase::BeginBatch() {
    if (IsInBatch()) {
        ++m_batchDepth;
        return ERROR_SUCCESS;
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    LSTATUS status = Connect();
    if (status == ERROR_SUCCESS) {
        status = Status(CKWSqlQuery(m_connection, kBeginWrite).Run());
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    lock.release();  // held until the batch ends
    m_batchThread = std::this_thread::get_id();
    m_batchDepth = 1;
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryDatabase::EndBatch(const std::function<LSTATUS()>& beforeCommit) {
    if (!IsInBatch()) {
        return ERROR_INVALID_FUNCTION;
    }
    if (--m_batchDepth > 0) {
        return ERROR_SUCCESS;
    }
    LSTATUS status = beforeCommit();
    const int committed = status == ERROR_SUCCESS ? CommitNoting() : SQLITE_ABORT;
    if (committed != SQLITE_OK) {
        CKWSqlQuery(m_connection, kRollback).Run();
        m_peekMarkIsValid = false;
    }
    if (status == ERROR_SUCCESS) {
        status = Status(committed);
    }
    if (status == ERROR_SUCCESS && m_flushAfterBatch) {
        status = Status(m_connection.MakeDurable());
    }
    m_flushAfterBatch = false;
    m_batchThread = std::thread::id();
    m_mutex.unlock();
    return status;
}

// A batch holds the write lock, so only its own writes change the store
// while it lasts, and they move the commit mark only when it commits.
CKWRegistryDatabase::EKWChange CKWRegistryDatabase::TakeChange() {
    CKWSqliteConnection::CommitMark mark;
    const bool isRead = m_connection.ReadCommitMark(mark);
    EKWChange change = m_wroteSincePeek ? kOwnWrites : kUnchanged;
    if (!isRead || !m_peekMarkIsValid || mark != m_peekMark) {
        change = kAnyChange;
    }
    m_peekMark = mark;
    m_peekMarkIsValid = isRead;
    m_wroteSincePeek = false;
    return change;
}

int CKWRegistryDatabase::CommitNoting() {
    CKWSqliteConnection::CommitMark before;
    const bool isKnown = ReadMarkBeforeCommit(before);
    const int committed = CKWSqlQuery(m_connection, kCommit).Run();
    if (committed == SQLITE_OK && isKnown) {
        NoteOwnCommit(before);
    }
    return committed;
}

// Under the write lock, so no other commit can come between this and ours.
bool CKWRegistryDatabase::ReadMarkBeforeCommit(CKWSqliteConnection::CommitMark& before) {
    return m_peekMarkIsValid && m_connection.ReadCommitMark(before) && before == m_peekMark;
}

// Each commit adds one to the header's transaction counter, so one more
// means ours alone; a commit that changed nothing leaves the mark as it was.
void CKWRegistryDatabase::NoteOwnCommit(const CKWSqliteConnection::CommitMark& before) {
    CKWSqliteConnection::CommitMark after;
    if (m_connection.ReadCommitMark(after) &&
        after[kTransactionCounterWord] == before[kTransactionCounterWord] + 1) {
        m_peekMark = after;
        m_wroteSincePeek = true;
    }
}

LSTATUS CKWRegistryDatabase::Connect() {
    if (m_connection.IsOpen() && m_owner == CurrentProcess()) {
        return ERROR_SUCCESS;
    }
    m_peekMarkIsValid = false;
    m_connection.Abandon();
    if (!CreateParentFolders(m_path)) {
        return ERROR_REGISTRY_IO_FAILED;
    }
    const int opened = m_connection.Open(m_path, kBusyTimeoutMs);
    if (opened != SQLITE_OK) {
        m_connection.Close();
        return Status(opened);
    }
    LSTATUS status = CheckOrCreateSchema();
    if (status == ERROR_SUCCESS) {
        // Safe against a killed process with NORMAL syncing in WAL mode; a
        // power loss may lose the last writes, which RegFlushKey makes durable.
        status =
            Status(m_connection.Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL"));
    }
    if (status == ERROR_SUCCESS) {
        status = RemoveStaleVolatileKeys();
    }
    if (status != ERROR_SUCCESS) {
        m_connection.Close();
        return status;
    }
    m_owner = CurrentProcess();
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryDatabase::ReadInteger(const char* sql, std::int64_t& value) {
    return Status(m_connection.QueryInteger(sql, value));
}

LSTATUS CKWRegistryDatabase::CheckOrCreateSchema() {
    std::int64_t applicationId = 0;
    LSTATUS status = ReadInteger("PRAGMA application_id", applicationId);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    if (applicationId == 0) {
        status = CreateSchemaIfEmpty();
        if (status != ERROR_SUCCESS) {
            return status;
        }
        status = ReadInteger("PRAGMA application_id", applicationId);
    }
    std::int64_t version = 0;
    if (status == ERROR_SUCCESS) {
        status = ReadInteger("PRAGMA user_version", version);
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    return applicationId == kApplicationId && version == kFormatVersion ? ERROR_SUCCESS
                                                                        : ERROR_REGISTRY_CORRUPT;
}

// Under the write lock, so two processes creating the store at once create
// it once; a database that already holds anything is left alone.
LSTATUS CKWRegistryDatabase::CreateSchemaIfEmpty() {
    int result = m_connection.Execute(kBeginWrite);
    if (result != SQLITE_OK) {
        return Status(result);
    }
    std::int64_t objects = 0;
    LSTATUS status = ReadInteger(kCountSchemaObjects, objects);
    if (status != ERROR_SUCCESS || objects != 0) {
        m_connection.Execute(kRollback);
        return status;
    }
    result = m_connection.Execute(kCreateSchema);
    if (result == SQLITE_OK) {
        const std::string marks = "PRAGMA application_id = " + std::to_string(kApplicationId) +
                                  "; PRAGMA user_version = " + std::to_string(kFormatVersion);
        result = m_connection.Execute(marks.c_str());
    }
    for (const SKWRoot& root : kRoots) {
        if (result != SQLITE_OK) {
            break;
        }
        CKWSqlQuery insert(m_connection, kInsertRoot);
        insert.Bind(1, root.id);
        insert.BindText(2, root.name);
        result = insert.Run();
    }
    if (result == SQLITE_OK) {
        result = m_connection.Execute(kCommit);
    }
    if (result != SQLITE_OK) {
        m_connection.Execute(kRollback);
    }
    return Status(result);
}

LSTATUS CKWRegistryDatabase::RemoveStaleVolatileKeys() {
    const std::string& boot = BootId();
    {
        CKWSqlQuery find(m_connection, kFindStaleVolatileKey);
        find.BindText(1, boot);
        const int found = find.Step();
        if (found != SQLITE_ROW) {
            return Status(found);
        }
    }
    int result = m_connection.Execute(kBeginWrite);
    for (const char* sql : {kDeleteStaleValues, kDeleteStaleKeys}) {
        if (result != SQLITE_OK) {
            break;
        }
        CKWSqlQuery remove(m_connection, sql);
        remove.BindText(1, boot);
        result = remove.Run();
    }
    if (result == SQLITE_OK) {
        result = m_connection.Execute(kCommit);
    }
    if (result != SQLITE_OK) {
        m_connection.Execute(kRollback);
    }
    return Status(result);
}

// Without a boot ID (no /proc), volatile keys last like the others.
const std::string& CKWRegistryDatabase::BootId() {
    static const std::string bootId = [] {
        std::ifstream in("/proc/sys/kernel/random/boot_id");
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
            text.pop_back();
        }
        return text.empty() ? std::string("unknown") : text;
    }();
    return bootId;
}
