// The keys and values of one registry store, by key ID. Each operation runs
// inside a transaction of the store's database (Read or Write), so a call
// made of several operations is seen whole by other threads and processes.
//
//   store.Write([&] {
//       std::int64_t child = 0;
//       return store.AddSubKey(parent, "Settings", false, child);
//   });
#pragma once

#include "CKWRegistryDatabase.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

typedef std::int64_t KWRegistryKeyId;

struct SKWRegistryKeyInfo {
    DWORD subKeys = 0;
    DWORD maxSubKeyNameLength = 0;
    DWORD values = 0;
    DWORD maxValueNameLength = 0;
    DWORD maxValueDataSize = 0;
    ULONGLONG lastWriteTime = 0;  // a FILETIME
};

struct SKWRegistryValue {
    std::string name;
    DWORD type = REG_NONE;
    std::string data;
};

class CKWRegistryStore {
public:
    explicit CKWRegistryStore(std::string path) : m_database(std::move(path)) {}

    const std::string& GetPath() const { return m_database.GetPath(); }

    LSTATUS Read(const std::function<LSTATUS()>& work) { return m_database.Read(work); }
    LSTATUS Write(const std::function<LSTATUS()>& work) {
        return ForgetCheckedOnFailure(m_database.Write(work));
    }
    // For work that makes one change at most (see CKWRegistryDatabase), such
    // as SetValue and DeleteValue.
    LSTATUS WriteOneChange(const std::function<LSTATUS()>& work) {
        return ForgetCheckedOnFailure(m_database.WriteOneChange(work));
    }
    LSTATUS Flush() { return m_database.Flush(); }
    LSTATUS BeginBatch() { return m_database.BeginBatch(); }
    // Keys written in a batch are marked as changed once, when it commits.
    LSTATUS EndBatch();

    // ERROR_KEY_DELETED when the key is gone. Inside a batch a key is
    // looked up once: only the batch changes the store while it lasts.
    LSTATUS CheckKey(KWRegistryKeyId key, bool& isVolatile);
    // ERROR_FILE_NOT_FOUND when parent has no sub-key of that name.
    LSTATUS FindSubKey(KWRegistryKeyId parent, std::string_view name, KWRegistryKeyId& child,
                       bool& isVolatile);
    LSTATUS AddSubKey(KWRegistryKeyId parent, std::string_view name, bool isVolatile,
                      KWRegistryKeyId& child);
    // Deletes a key without sub-keys and its values; ERROR_ACCESS_DENIED for
    // a key with sub-keys and for a predefined root.
    LSTATUS DeleteKey(KWRegistryKeyId key);

    LSTATUS GetKeyInfo(KWRegistryKeyId key, SKWRegistryKeyInfo& info);
    // The sub-key at index in the order of folded names, in a transaction of
    // its own: from the key's list of sub-keys, read whole at the first
    // index and kept while nothing has been committed since.
    // ERROR_KEY_DELETED, ERROR_NO_MORE_ITEMS past the last sub-key.
    LSTATUS EnumSubKey(KWRegistryKeyId key, DWORD index, std::string& name,
                       ULONGLONG& lastWriteTime);

    // The key that names lead to from base, in a transaction of its own:
    // from the cache of sub-keys found before while nothing has been
    // committed since, else from the database. ERROR_KEY_DELETED when base
    // is gone, ERROR_FILE_NOT_FOUND when a key on the way is missing.
    LSTATUS FindPath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                     KWRegistryKeyId& key);
    // The same for a sub-key path as RegOpenKeyExA takes it: a path found
    // before is known by its text and needs no splitting; else path is split
    // into names (see kwRegistryNames::SplitKeyPath), which stay empty on a
    // hit. Empty names give base itself, unchecked.
    LSTATUS FindPath(KWRegistryKeyId base, const char* path, std::vector<std::string_view>& names,
                     KWRegistryKeyId& key);
    // A value of a key, in a transaction of its own: from the cache of values
    // read before while nothing has been committed since, else from the
    // database. ERROR_KEY_DELETED, ERROR_FILE_NOT_FOUND as below.
    // The value is shared with the cache, and holds no name.
    LSTATUS ReadValue(KWRegistryKeyId key, std::string_view name,
                      std::shared_ptr<const SKWRegistryValue>& value);
    // The same for the key at path below base (a sub-key path as
    // RegOpenKeyExA takes it), under one lock when this path and name were
    // read before, or the path's keys and the value are cached, and nothing
    // has been committed since; ERROR_FILE_NOT_FOUND also when a key on the
    // way is missing, and the path's own codes.
    LSTATUS ReadPathValue(KWRegistryKeyId base, const char* path, std::string_view name,
                          std::shared_ptr<const SKWRegistryValue>& value);
    // ERROR_FILE_NOT_FOUND when there is no such value.
    LSTATUS GetValue(KWRegistryKeyId key, std::string_view name, SKWRegistryValue& value);
    // ERROR_NO_MORE_ITEMS past the last value.
    LSTATUS GetValueAt(KWRegistryKeyId key, DWORD index, SKWRegistryValue& value);
    LSTATUS SetValue(KWRegistryKeyId key, std::string_view name, DWORD type, const BYTE* data,
                     DWORD size);
    LSTATUS DeleteValue(KWRegistryKeyId key, std::string_view name);

private:
    // Where the last enumeration of a key stopped: the next index continues
    // from there instead of counting from the first row again, as long as
    // the database has not changed since.
    struct SKWEnumCursor {
        DWORD index = 0;
        std::int64_t row = 0;  // of the value at index
    };
    typedef std::unordered_map<KWRegistryKeyId, SKWEnumCursor> CursorMap;

    // A failed write inside a batch may have undone keys checked in it.
    LSTATUS ForgetCheckedOnFailure(LSTATUS status);

    // Marks the key as changed now; inside a batch, when it commits.
    LSTATUS Touch(KWRegistryKeyId key);
    LSTATUS TouchNow(KWRegistryKeyId key);
    // Marks every key of m_touchedInBatch, which holds one at least.
    LSTATUS TouchAllNow();
    // The cursor of key that stands just before index, or null.
    const SKWEnumCursor* CursorBefore(KWRegistryKeyId key, DWORD index);
    void KeepCursor(KWRegistryKeyId key, const SKWEnumCursor& cursor);

    struct SKWSubKeyEntry {
        std::string name;
        ULONGLONG lastWriteTime = 0;
    };
    typedef std::shared_ptr<const std::vector<SKWSubKeyEntry>> SubKeyList;
    // Inside a transaction: the sub-keys of key, in their order.
    LSTATUS ReadSubKeyList(KWRegistryKeyId key, SubKeyList& list);
    void CacheSubKeyList(KWRegistryKeyId key, const SubKeyList& list);

    typedef std::shared_ptr<const SKWRegistryValue> CachedValue;

    // The caches' key for a sub-key or a value: the key ID's bytes and the
    // folded name, written over cacheKey.
    static void MakeCacheKey(KWRegistryKeyId key, std::string_view name, std::string& cacheKey);
    // Under the database's mutex: empties the caches that change outdates.
    void ForgetChanged(CKWRegistryDatabase::EKWChange change);
    // ReadPathValue for the key that names lead to; a value it finds is also
    // kept under pathKey unless that is null.
    LSTATUS ReadValueOf(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                        std::string_view name, const std::string* pathKey,
                        std::shared_ptr<const SKWRegistryValue>& value);
    // The key of a value read by path: base's bytes, the folded path, a
    // zero byte and the folded name.
    static void MakePathValueKey(KWRegistryKeyId base, std::string_view path, std::string_view name,
                                 std::string& cacheKey);
    void CacheValueByPath(const std::string* pathKey, const CachedValue& value);
    // Under the mutex: whether the caches of paths and sub-keys hold every
    // key on the path, and the last one.
    bool LookUpPath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                    KWRegistryKeyId& key);
    // Inside a transaction: the key names lead to from base, cached on the way.
    LSTATUS WalkPathCaching(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                            KWRegistryKeyId& key);
    void CacheValue(std::string cacheKey, const CachedValue& value);
    void CacheSubKey(KWRegistryKeyId parent, std::string_view name, KWRegistryKeyId child);
    // The path cache's key: base's bytes and the folded names joined by
    // backslashes, written over cacheKey; so a path's own text, folded,
    // finds it.
    static void MakePathKey(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                            std::string& cacheKey);
    void CachePath(KWRegistryKeyId base, const std::vector<std::string_view>& names,
                   KWRegistryKeyId key);
    // Empties the caches that a deleted key outdates.
    void ForgetKeys();

    CKWRegistryDatabase m_database;
    // Values read, valid while the database's Peek finds nothing changed.
    std::unordered_map<std::string, CachedValue> m_valueCache;
    std::size_t m_valueCacheBytes = 0;
    // The values of m_valueCache again, by the path they were read by.
    std::unordered_map<std::string, CachedValue> m_pathValueCache;
    // Sub-keys found, by parent and name; emptied also when a key is deleted.
    std::unordered_map<std::string, KWRegistryKeyId> m_subKeyCache;
    // Keys found by a path, emptied with m_subKeyCache.
    std::unordered_map<std::string, KWRegistryKeyId> m_pathKeyCache;
    // Sub-keys of keys enumerated, emptied by any change.
    std::unordered_map<KWRegistryKeyId, SubKeyList> m_subKeyLists;
    std::string m_lookupKey;  // reused for look-ups, under the mutex
    // Keys the running batch changed, and the keys it found, with whether
    // they are volatile.
    std::unordered_set<KWRegistryKeyId> m_touchedInBatch;
    std::unordered_map<KWRegistryKeyId, bool> m_checkedInBatch;
    CursorMap m_valueCursors;
    unsigned m_cursorsVersion = 0;
};
