#include "CKWRegistryStore.h"

#include "CKWSqlQuery.h"
#include "KWRegistryNames.h"

#include <chrono>
#include <cstring>

namespace {

constexpr const char* kSelectKey = "SELECT boot IS NOT NULL FROM keys WHERE id = ?1";
constexpr const char* kSelectSubKey =
    "SELECT id, boot IS NOT NULL FROM keys WHERE parent = ?1 AND fold = ?2";
constexpr const char* kInsertKey =
    "INSERT INTO keys(parent, name, fold, boot, written) VALUES(?1, ?2, ?3, ?4, ?5)";
constexpr const char* kTouchKey = "UPDATE keys SET written = ?2 WHERE id = ?1";
// The keys given as a JSON array of IDs.
constexpr const char* kTouchKeys =
    "UPDATE keys SET written = ?2 WHERE id IN (SELECT value FROM json_each(?1))";
constexpr const char* kSelectParent = "SELECT parent FROM keys WHERE id = ?1";
constexpr const char* kSelectAnySubKey = "SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1";
constexpr const char* kDeleteValuesOfKey = "DELETE FROM vals WHERE key = ?1";
constexpr const char* kDeleteKey = "DELETE FROM keys WHERE id = ?1";
// Lengths of names in bytes (a TEXT's length() counts characters).
constexpr const char* kSelectKeyInfo =
    "SELECT (SELECT count(*) FROM keys WHERE parent = ?1),"
    " (SELECT ifnull(max(length(CAST(name AS BLOB))), 0) FROM keys WHERE parent = ?1),"
    " (SELECT count(*) FROM vals WHERE key = ?1),"
    " (SELECT ifnull(max(length(CAST(name AS BLOB))), 0) FROM vals WHERE key = ?1),"
    " (SELECT ifnull(max(length(data)), 0) FROM vals WHERE key = ?1),"
    " written FROM keys WHERE id = ?1";
constexpr const char* kSelectSubKeys =
    "SELECT name, written FROM keys WHERE parent = ?1 ORDER BY fold";
constexpr const char* kSelectValue =
    "SELECT name, type, data FROM vals WHERE key = ?1 AND fold = ?2";
constexpr const char* kSelectValueAt =
    "SELECT name, type, data, rowid FROM vals WHERE key = ?1 ORDER BY rowid LIMIT 1 OFFSET ?2";
constexpr const char* kSelectValueAfter =
    "SELECT name, type, data, rowid FROM vals WHERE key = ?1 AND rowid > ?2 ORDER BY rowid"
    " LIMIT 1";
// Setting a value again keeps its row, so its name's case and its place.
constexpr const char* kUpsertValue =
    "INSERT INTO vals(key, name, fold, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
    " ON CONFLICT(key, fold) DO UPDATE SET type = excluded.type, data = excluded.data";
constexpr const char* kDeleteValue = "DELETE FROM vals WHERE key = ?1 AND fold = ?2";

// Now as a FILETIME: 100-nanosecond ticks since 1601-01-01 UTC.
std::int64_t FileTimeNow() {
    constexpr std::int64_t kTicksFrom1601To1970 = 116444736000000000;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return kTicksFrom1601To1970 +
           std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count() / 100;
}

LSTATUS Status(int sqliteResult) {
    return CKWRegistryDatabase::Status(sqliteResult);
}

void ReadValueRow(const CKWSqlQuery& query, SKWRegistryValue& value) {
    value.name = query.Bytes(0);
    value.type = static_cast<DWORD>(query.Integer(1));
    value.data = query.Bytes(2);
}

// The first row of a query: ERROR_SUCCESS with the row to read, notFound
// when there is none, or the store's code for an error.
LSTATUS StepOneRow(CKWSqlQuery& query, LSTATUS notFound) {
    const int result = query.Step();
    if (result == SQLITE_DONE) {
        return notFound;
    }
    return result == SQLITE_ROW ? ERROR_SUCCESS : Status(result);
}

// The value cache holds values up to this size, and empties itself when its
// values together would pass the limit.
constexpr std::size_t kMaxCachedValueSize = 4096;
constexpr std::size_t kMaxValueCacheBytes = 16 << 20;
constexpr std::size_t kMaxCachedSubKeys = 1 << 16;

// Enumerations of this many keys at once keep their place; more are rare
// (an export walks one key per level of the tree).
constexpr std::size_t kMaxCursors = 64;

}  // namespace

LSTATUS CKWRegistryStore::CheckKey(KWRegistryKeyId key, bool& isVolatile) {
    const bool isInBatch = m_database.IsInBatch();
    if (isInBatch) {
        const auto checked = m_checkedInBatch.find(key);
        if (checked != m_checkedInBatch.end()) {
            isVolatile = checked->second;
            return ERROR_SUCCESS;
        }
    }
    CKWSqlQuery query(m_database.Connection(), kSelectKey);
    query.Bind(1, key);
    if (const LSTATUS status = StepOneRow(query, ERROR_KEY_DELETED); status != ERROR_SUCCESS) {
        return status;
    }
    isVolatile = query.Integer(0) != 0;
    if (isInBatch) {
        m_checkedInBatch.emplace(key, isVolatile);
    }
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::ForgetCheckedOnFailure(LSTATUS status) {
    if (status != ERROR_SUCCESS && m_database.IsInBatch()) {
        m_checkedInBatch.clear();
    }
    return status;
}

LSTATUS CKWRegistryStore::FindSubKey(KWRegistryKeyId parent, std::string_view name,
                                     KWRegistryKeyId& child, bool& isVolatile) {
    const std::string fold = kwRegistryNames::FoldName(name);
    CKWSqlQuery query(m_database.Connection(), kSelectSubKey);
    query.Bind(1, parent);
    query.BindText(2, fold);
    if (const LSTATUS status = StepOneRow(query, ERROR_FILE_NOT_FOUND); status != ERROR_SUCCESS) {
        return status;
    }
    child = query.Integer(0);
    isVolatile = query.Integer(1) != 0;
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::AddSubKey(KWRegistryKeyId parent, std::string_view name, bool isVolatile,
                                    KWRegistryKeyId& child) {
    const std::string fold = kwRegistryNames::FoldName(name);
    const std::int64_t now = FileTimeNow();
    CKWSqlQuery insert(m_database.Connection(), kInsertKey);
    insert.Bind(1, parent);
    insert.BindText(2, name);
    insert.BindText(3, fold);
    if (isVolatile) {
        insert.BindText(4, CKWRegistryDatabase::BootId());
    }
    insert.Bind(5, now);
    const int result = insert.Run();
    if (result != SQLITE_OK) {
        return Status(result);
    }
    child = m_database.Connection().LastInsertId();
    return Touch(parent);
}

LSTATUS CKWRegistryStore::DeleteKey(KWRegistryKeyId key) {
    CKWSqliteConnection& connection = m_database.Connection();
    KWRegistryKeyId parent = 0;
    {
        CKWSqlQuery selectParent(connection, kSelectParent);
        selectParent.Bind(1, key);
        if (const LSTATUS status = StepOneRow(selectParent, ERROR_KEY_DELETED);
            status != ERROR_SUCCESS) {
            return status;
        }
        parent = selectParent.Integer(0);
    }
    if (parent == 0) {
        return ERROR_ACCESS_DENIED;  // a predefined root
    }
    {
        CKWSqlQuery anySubKey(connection, kSelectAnySubKey);
        anySubKey.Bind(1, key);
        const int result = anySubKey.Step();
        if (result == SQLITE_ROW) {
            return ERROR_ACCESS_DENIED;
        }
        if (result != SQLITE_DONE) {
            return Status(result);
        }
    }
    ForgetKeys();
    m_checkedInBatch.clear();
    for (const char* sql : {kDeleteValuesOfKey, kDeleteKey}) {
        CKWSqlQuery remove(connection, sql);
        remove.Bind(1, key);
        const int result = remove.Run();
        if (result != SQLITE_OK) {
            return Status(result);
        }
    }
    return Touch(parent);
}

LSTATUS CKWRegistryStore::GetKeyInfo(KWRegistryKeyId key, SKWRegistryKeyInfo& info) {
    CKWSqlQuery query(m_database.Connection(), kSelectKeyInfo);
    query.Bind(1, key);
    if (const LSTATUS status = StepOneRow(query, ERROR_KEY_DELETED); status != ERROR_SUCCESS) {
        return status;
    }
    info.subKeys = static_cast<DWORD>(query.Integer(0));
    info.maxSubKeyNameLength = static_cast<DWORD>(query.Integer(1));
    info.values = static_cast<DWORD>(query.Integer(2));
    info.maxValueNameLength = static_cast<DWORD>(query.Integer(3));
    info.maxValueDataSize = static_cast<DWORD>(query.Integer(4));
    info.lastWriteTime = static_cast<ULONGLONG>(query.Integer(5));
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::EnumSubKey(KWRegistryKeyId key, DWORD index, std::string& name,
                                     ULONGLONG& lastWriteTime) {
    // A kept list vouches for its key: deleting the key empties the lists.
    SubKeyList list;
    LSTATUS status = m_database.Peek([&](CKWRegistryDatabase::EKWChange change) {
        ForgetChanged(change);
        const auto found = m_subKeyLists.find(key);
        if (found != m_subKeyLists.end()) {
            list = found->second;
        }
        return ERROR_SUCCESS;
    });
    if (status == ERROR_SUCCESS && list == nullptr) {
        status = m_database.Read([&] { return ReadSubKeyList(key, list); });
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    if (index >= list->size()) {
        return ERROR_NO_MORE_ITEMS;
    }
    name = (*list)[index].name;
    lastWriteTime = (*list)[index].lastWriteTime;
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::ReadSubKeyList(KWRegistryKeyId key, SubKeyList& list) {
    bool isVolatile = false;
    if (const LSTATUS checked = CheckKey(key, isVolatile); checked != ERROR_SUCCESS) {
        return checked;
    }
    auto read = std::make_shared<std::vector<SKWSubKeyEntry>>();
    CKWSqlQuery query(m_database.Connection(), kSelectSubKeys);
    query.Bind(1, key);
    int result = SQLITE_ROW;
    while ((result = query.Step()) == SQLITE_ROW) {
        read->push_back({query.Bytes(0), static_cast<ULONGLONG>(query.Integer(1))});
    }
    if (result != SQLITE_DONE) {
        return Status(result);
    }
    list = read;
    CacheSubKeyList(key, list);
    return ERROR_SUCCESS;
}

void CKWRegistryStore::CacheSubKeyList(KWRegistryKeyId key, const SubKeyList& list) {
    // A key without sub-keys is enumerated with one call, and an export
    // walks many of them while it enumerates their parent: keeping them
    // would push the parent's list out.
    if (list->empty()) {
        return;
    }
    if (m_subKeyLists.size() >= kMaxCursors) {
        m_subKeyLists.erase(m_subKeyLists.begin());
    }
    m_subKeyLists[key] = list;
}

LSTATUS CKWRegistryStore::GetValue(KWRegistryKeyId key, std::string_view name,
                                   SKWRegistryValue& value) {
    const std::string fold = kwRegistryNames::FoldName(name);
    CKWSqlQuery query(m_database.Connection(), kSelectValue);
    query.Bind(1, key);
    query.BindText(2, fold);
    if (const LSTATUS status = StepOneRow(query, ERROR_FILE_NOT_FOUND); status != ERROR_SUCCESS) {
        return status;
    }
    ReadValueRow(query, value);
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::FindPath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                                   KWRegistryKeyId& key) {
    // A key with a sub-key cannot be deleted, so a cached path also vouches
    // for its base; an empty one needs the database.
    bool isCached = false;
    const LSTATUS peeked = m_database.Peek([&](CKWRegistryDatabase::EKWChange change) {
        ForgetChanged(change);
        isCached = !names.empty() && LookUpPath(base, names, key);
        return ERROR_SUCCESS;
    });
    if (peeked != ERROR_SUCCESS || isCached) {
        return peeked;
    }
    return m_database.Read([&] { return WalkPathCaching(base, names, key); });
}

LSTATUS CKWRegistryStore::FindPath(KWRegistryKeyId base, const char* path,
                                   std::vector<std::string_view>& names, KWRegistryKeyId& key) {
    bool isCached = false;
    if (path != nullptr && path[0] != '\0') {
        const LSTATUS peeked = m_database.Peek([&](CKWRegistryDatabase::EKWChange change) {
            ForgetChanged(change);
            MakeCacheKey(base, path, m_lookupKey);
            const auto found = m_pathKeyCache.find(m_lookupKey);
            isCached = found != m_pathKeyCache.end();
            if (isCached) {
                key = found->second;
            }
            return ERROR_SUCCESS;
        });
        if (peeked != ERROR_SUCCESS || isCached) {
            return peeked;
        }
    }
    const LSTATUS split = kwRegistryNames::SplitKeyPath(path, names);
    if (split != ERROR_SUCCESS || names.empty()) {
        key = base;
        return split;
    }
    return FindPath(base, names, key);
}

LSTATUS CKWRegistryStore::ReadValue(KWRegistryKeyId key, std::string_view name,
                                    std::shared_ptr<const SKWRegistryValue>& value) {
    return ReadValueOf(key, {}, name, nullptr, value);
}

LSTATUS CKWRegistryStore::ReadPathValue(KWRegistryKeyId base, const char* path,
                                        std::string_view name,
                                        std::shared_ptr<const SKWRegistryValue>& value) {
    // Only a path that was split without fault is ever kept.
    const bool byPath = path != nullptr && path[0] != '\0';
    if (byPath) {
        const LSTATUS peeked = m_database.Peek([&](CKWRegistryDatabase::EKWChange change) {
            ForgetChanged(change);
            MakePathValueKey(base, path, name, m_lookupKey);
            const auto found = m_pathValueCache.find(m_lookupKey);
            if (found != m_pathValueCache.end()) {
                value = found->second;
            }
            return ERROR_SUCCESS;
        });
        if (peeked != ERROR_SUCCESS || value != nullptr) {
            return peeked;
        }
    }
    std::vector<std::string_view> names;
    const LSTATUS split = kwRegistryNames::SplitKeyPath(path, names);
    if (split != ERROR_SUCCESS) {
        return split;
    }
    std::string pathKey;
    if (byPath) {
        MakePathValueKey(base, path, name, pathKey);
    }
    return ReadValueOf(base, names, name, byPath ? &pathKey : nullptr, value);
}

LSTATUS CKWRegistryStore::ReadValueOf(KWRegistryKeyId base,
                                      const std::vector<std::string_view>& names,
                                      std::string_view name, const std::string* pathKey,
                                      std::shared_ptr<const SKWRegistryValue>& value) {
    // A cached value vouches for its key as a cached path does: the caches
    // are emptied by any change that could remove either.
    const LSTATUS peeked = m_database.Peek([&](CKWRegistryDatabase::EKWChange change) {
        ForgetChanged(change);
        KWRegistryKeyId key = 0;
        if (LookUpPath(base, names, key)) {
            MakeCacheKey(key, name, m_lookupKey);
            const auto found = m_valueCache.find(m_lookupKey);
            if (found != m_valueCache.end()) {
                value = found->second;
                CacheValueByPath(pathKey, value);
            }
        }
        return ERROR_SUCCESS;
    });
    if (peeked != ERROR_SUCCESS || value != nullptr) {
        return peeked;
    }
    return m_database.Read([&] {
        KWRegistryKeyId key = 0;
        auto read = std::make_shared<SKWRegistryValue>();
        LSTATUS status = WalkPathCaching(base, names, key);
        if (status == ERROR_SUCCESS) {
            status = GetValue(key, name, *read);
        }
        if (status != ERROR_SUCCESS) {
            return status;
        }
        read->name.clear();
        value = read;
        std::string cacheKey;
        MakeCacheKey(key, name, cacheKey);
        CacheValue(std::move(cacheKey), value);
        CacheValueByPath(pathKey, value);
        return status;
    });
}

bool CKWRegistryStore::LookUpPath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                                  KWRegistryKeyId& key) {
    if (names.size() > 1) {
        MakePathKey(base, names, m_lookupKey);
        const auto found = m_pathKeyCache.find(m_lookupKey);
        if (found != m_pathKeyCache.end()) {
            key = found->second;
            return true;
        }
    }
    key = base;
    for (const std::string_view name : names) {
        MakeCacheKey(key, name, m_lookupKey);
        const auto found = m_subKeyCache.find(m_lookupKey);
        if (found == m_subKeyCache.end()) {
            return false;
        }
        key = found->second;
    }
    CachePath(base, names, key);
    return true;
}

void CKWRegistryStore::MakePathKey(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                                   std::string& cacheKey) {
    std::size_t size = sizeof base;
    for (const std::string_view name : names) {
        size += 1 + name.size();
    }
    cacheKey.resize(size);
    std::memcpy(&cacheKey[0], &base, sizeof base);
    cacheKey.pop_back();  // no backslash before the first name
    std::size_t at = sizeof base;
    for (const std::string_view name : names) {
        if (at > sizeof base) {
            cacheKey[at++] = '\\';
        }
        kwRegistryNames::FoldNameInto(name, &cacheKey[at]);
        at += name.size();
    }
}

void CKWRegistryStore::CachePath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                                 KWRegistryKeyId key) {
    if (names.empty()) {
        return;
    }
    if (m_pathKeyCache.size() >= kMaxCachedSubKeys) {
        m_pathKeyCache.clear();
    }
    std::string cacheKey;
    MakePathKey(base, names, cacheKey);
    m_pathKeyCache.emplace(std::move(cacheKey), key);
}

void CKWRegistryStore::ForgetKeys() {
    // Emptying a map costs as much as its buckets, even when it holds nothing.
    if (!m_subKeyCache.empty()) {
        m_subKeyCache.clear();
    }
    if (!m_pathKeyCache.empty()) {
        m_pathKeyCache.clear();
    }
    if (!m_subKeyLists.empty()) {
        m_subKeyLists.clear();
    }
}

LSTATUS CKWRegistryStore::WalkPathCaching(KWRegistryKeyId base,
                                          const std::vector<std::string_view>& names,
                                          KWRegistryKeyId& key) {
    bool isVolatile = false;
    LSTATUS status = CheckKey(base, isVolatile);
    key = base;
    for (std::size_t i = 0; status == ERROR_SUCCESS && i < names.size(); ++i) {
        KWRegistryKeyId child = 0;
        status = FindSubKey(key, names[i], child, isVolatile);
        if (status == ERROR_SUCCESS) {
            CacheSubKey(key, names[i], child);
            key = child;
        }
    }
    if (status == ERROR_SUCCESS) {
        CachePath(base, names, key);
    }
    return status;
}

void CKWRegistryStore::MakeCacheKey(KWRegistryKeyId key, std::string_view name,
                                    std::string& cacheKey) {
    cacheKey.resize(sizeof key + name.size());
    std::memcpy(&cacheKey[0], &key, sizeof key);
    kwRegistryNames::FoldNameInto(name, &cacheKey[sizeof key]);
}

void CKWRegistryStore::MakePathValueKey(KWRegistryKeyId base, std::string_view path,
                                        std::string_view name, std::string& cacheKey) {
    MakeCacheKey(base, path, cacheKey);
    const std::size_t nameAt = cacheKey.size() + 1;
    cacheKey.resize(nameAt + name.size());
    cacheKey[nameAt - 1] = '\0';
    kwRegistryNames::FoldNameInto(name, &cacheKey[nameAt]);
}

void CKWRegistryStore::CacheValueByPath(const std::string* pathKey, const CachedValue& value) {
    // Only values the value cache holds, so both are bounded together.
    if (pathKey == nullptr || value->data.size() > kMaxCachedValueSize) {
        return;
    }
    if (m_pathValueCache.size() >= kMaxCachedSubKeys) {
        m_pathValueCache.clear();
    }
    m_pathValueCache.emplace(*pathKey, value);
}

void CKWRegistryStore::ForgetChanged(CKWRegistryDatabase::EKWChange change) {
    // Emptying a map costs as much as its buckets, even when it holds nothing.
    if (change != CKWRegistryDatabase::kUnchanged && !m_pathValueCache.empty()) {
        m_pathValueCache.clear();
    }
    if (change != CKWRegistryDatabase::kUnchanged && !m_valueCache.empty()) {
        m_valueCache.clear();
        m_valueCacheBytes = 0;
    }
    if (change != CKWRegistryDatabase::kUnchanged && !m_subKeyLists.empty()) {
        m_subKeyLists.clear();
    }
    if (change == CKWRegistryDatabase::kAnyChange) {
        ForgetKeys();
    }
}

void CKWRegistryStore::CacheSubKey(KWRegistryKeyId parent, std::string_view name,
                                   KWRegistryKeyId child) {
    if (m_subKeyCache.size() >= kMaxCachedSubKeys) {
        m_subKeyCache.clear();
        m_pathKeyCache.clear();
    }
    std::string cacheKey;
    MakeCacheKey(parent, name, cacheKey);
    m_subKeyCache.emplace(std::move(cacheKey), child);
}

void CKWRegistryStore::CacheValue(std::string cacheKey, const CachedValue& value) {
    if (value->data.size() > kMaxCachedValueSize) {
        return;
    }
    const std::size_t size = cacheKey.size() + value->data.size();
    if (m_valueCacheBytes + size > kMaxValueCacheBytes) {
        m_pathValueCache.clear();
        m_valueCache.clear();
        m_valueCacheBytes = 0;
    }
    if (m_valueCache.emplace(std::move(cacheKey), value).second) {
        m_valueCacheBytes += size;
    }
}

LSTATUS CKWRegistryStore::GetValueAt(KWRegistryKeyId key, DWORD index, SKWRegistryValue& value) {
    const SKWEnumCursor* before = CursorBefore(key, index);
    CKWSqlQuery query(m_database.Connection(), before ? kSelectValueAfter : kSelectValueAt);
    query.Bind(1, key);
    query.Bind(2, before != nullptr ? before->row : index);
    if (const LSTATUS status = StepOneRow(query, ERROR_NO_MORE_ITEMS); status != ERROR_SUCCESS) {
        return status;
    }
    ReadValueRow(query, value);
    SKWEnumCursor cursor;
    cursor.index = index;
    cursor.row = query.Integer(3);
    KeepCursor(key, cursor);
    return ERROR_SUCCESS;
}

LSTATUS CKWRegistryStore::SetValue(KWRegistryKeyId key, std::string_view name, DWORD type,
                                   const BYTE* data, DWORD size) {
    const std::string fold = kwRegistryNames::FoldName(name);
    CKWSqlQuery upsert(m_database.Connection(), kUpsertValue);
    upsert.Bind(1, key);
    upsert.BindText(2, name);
    upsert.BindText(3, fold);
    upsert.Bind(4, type);
    upsert.BindBlob(5, data, size);
    const int result = upsert.Run();
    return result == SQLITE_OK ? Touch(key) : Status(result);
}

LSTATUS CKWRegistryStore::DeleteValue(KWRegistryKeyId key, std::string_view name) {
    const std::string fold = kwRegistryNames::FoldName(name);
    CKWSqliteConnection& connection = m_database.Connection();
    CKWSqlQuery remove(connection, kDeleteValue);
    remove.Bind(1, key);
    remove.BindText(2, fold);
    const int result = remove.Run();
    if (result != SQLITE_OK) {
        return Status(result);
    }
    return connection.Changes() == 0 ? ERROR_FILE_NOT_FOUND : Touch(key);
}

LSTATUS CKWRegistryStore::EndBatch() {
    return m_database.EndBatch([&] {
        const LSTATUS status = m_touchedInBatch.empty() ? ERROR_SUCCESS : TouchAllNow();
        m_touchedInBatch.clear();
        m_checkedInBatch.clear();
        return status;
    });
}

LSTATUS CKWRegistryStore::TouchAllNow() {
    // One statement for all the keys rather than one for each.
    std::string ids = "[";
    for (const KWRegistryKeyId key : m_touchedInBatch) {
        ids += std::to_string(key);
        ids += ',';
    }
    ids.back() = ']';
    CKWSqlQuery touch(m_database.Connection(), kTouchKeys);
    touch.BindText(1, ids);
    touch.Bind(2, FileTimeNow());
    return Status(touch.Run());
}

LSTATUS CKWRegistryStore::Touch(KWRegistryKeyId key) {
    if (m_database.IsInBatch()) {
        m_touchedInBatch.insert(key);
        return ERROR_SUCCESS;
    }
    return TouchNow(key);
}

LSTATUS CKWRegistryStore::TouchNow(KWRegistryKeyId key) {
    CKWSqlQuery touch(m_database.Connection(), kTouchKey);
    touch.Bind(1, key);
    touch.Bind(2, FileTimeNow());
    return Status(touch.Run());
}

const CKWRegistryStore::SKWEnumCursor* CKWRegistryStore::CursorBefore(KWRegistryKeyId key,
                                                                      DWORD index) {
    const unsigned version = m_database.Connection().DataVersion();
    if (version != m_cursorsVersion) {
        m_valueCursors.clear();
        m_cursorsVersion = version;
    }
    const auto found = m_valueCursors.find(key);
    return found != m_valueCursors.end() && index > 0 && found->second.index == index - 1
               ? &found->second
               : nullptr;
}

void CKWRegistryStore::KeepCursor(KWRegistryKeyId key, const SKWEnumCursor& cursor) {
    if (m_valueCursors.size() >= kMaxCursors && m_valueCursors.count(key) == 0) {
        m_valueCursors.clear();
    }
    m_valueCursors[key] = cursor;
}
