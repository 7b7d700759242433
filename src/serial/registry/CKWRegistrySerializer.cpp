#include "kwcore/serial/registry/CKWRegistrySerializer.h"

#include <limits>

#include "kwcore/platform/CArchive.h"
#include "kwcore/serial/registry/CKWRegistryTypeManifest.h"

KW_IMPLEMENT_TYPE(CKWRegistrySerializer, "{6B835319-DE4F-445F-AC3A-2794DD5F1265}",
                  "{4F87AD20-AE52-43A7-882C-599156B30828}")

namespace {
// Handles the system owns: never closed here.
bool IsPredefinedKey(HKEY key) {
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS,
                      HKEY_PERFORMANCE_DATA, HKEY_CURRENT_CONFIG, HKEY_DYN_DATA}) {
        if (key == root) {
            return true;
        }
    }
    return false;
}
}  // namespace

void CKWRegistrySerializer::SetLocation(HKEY root, const char* path) {
    m_hRootKey = root;
    m_LocationPath = path ? path : "";
}

int CKWRegistrySerializer::Open() {
    OpenRegistry(m_hRootKey, m_LocationPath);
    LoadTypeManifests();
    return 1;
}

CKWTypeManifest* CKWRegistrySerializer::CreateTypeManifest(CKWGuid typeID,
                                                           IKWObjectType* storedType) {
    CKWTypeManifest* manifest = CKWDocument::CreateTypeManifest(typeID, storedType);
    auto* registryManifest = dynamic_cast<CKWRegistryTypeManifest*>(manifest);
    if (registryManifest && !storedType) {
        registryManifest->LoadFieldStreams();
    }
    return manifest;
}

int CKWRegistrySerializer::OpenRegistry(HKEY root, const char* path) {
    return VerifyKey(root, path) || CreateKey(root, path);
}

void CKWRegistrySerializer::CloseRegistry() {
    SetCurrentKey(nullptr);
}

int CKWRegistrySerializer::CreateKey(HKEY root, const char* path) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    const LONG status = RegCreateKeyExA(root, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                        nullptr, &key, &disposition);
    SetCurrentKey(status == ERROR_SUCCESS ? key : nullptr);
    return KeyResult(status);
}

int CKWRegistrySerializer::VerifyKey(HKEY root, const char* path) {
    HKEY key = nullptr;
    const LONG status = RegOpenKeyExA(root, path, 0, KEY_ALL_ACCESS, &key);
    SetCurrentKey(status == ERROR_SUCCESS ? key : nullptr);
    return KeyResult(status);
}

int CKWRegistrySerializer::VerifyKey(const char* path) {
    return VerifyKey(m_hRootKey, path);
}

int CKWRegistrySerializer::VerifyValue(const char* name) {
    DWORD type = 0;
    DWORD size = 0;
    m_lLastError = RegQueryValueExA(m_hCurrentKey, name, nullptr, &type, nullptr, &size);
    m_dwLastValueType = m_lLastError == ERROR_SUCCESS ? type : 0;
    m_dwLastValueSize = m_lLastError == ERROR_SUCCESS ? size : 0;
    return m_lLastError == ERROR_SUCCESS ? 1 : 0;
}

int CKWRegistrySerializer::DeleteValue(const char* name) {
    return KeyResult(RegDeleteValueA(m_hCurrentKey, name));
}

int CKWRegistrySerializer::DeleteValueKey(HKEY root, const char* path) {
    return KeyResult(RegDeleteKeyA(root, path));
}

int CKWRegistrySerializer::EnumerateSubKeys(CStringList& names) {
    names.RemoveAll();
    DWORD count = 0;
    DWORD longest = 0;
    LONG status = RegQueryInfoKeyA(m_hCurrentKey, nullptr, nullptr, nullptr, &count, &longest,
                                   nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    std::vector<char> name(longest + 1);
    for (DWORD index = 0; status == ERROR_SUCCESS && index < count; ++index) {
        DWORD length = static_cast<DWORD>(name.size());
        status = RegEnumKeyExA(m_hCurrentKey, index, name.data(), &length, nullptr, nullptr,
                               nullptr, nullptr);
        if (status == ERROR_SUCCESS) {
            names.AddTail(CString(name.data()));
        }
    }
    return KeyResult(status);
}

int CKWRegistrySerializer::Write(const char* name, int value) {
    return Write(name, static_cast<DWORD>(value));
}

int CKWRegistrySerializer::Write(const char* name, DWORD value) {
    CArchive archive(CArchive::store);
    archive << value;
    return SetValue(name, REG_DWORD, archive.GetBytes().data(), sizeof value);
}

int CKWRegistrySerializer::Write(const char* name, const char* text) {
    if (!text) {
        return 0;
    }
    const std::size_t size = std::char_traits<char>::length(text) + 1;
    if (size > std::numeric_limits<DWORD>::max()) {
        return 0;
    }
    return SetValue(name, REG_SZ, reinterpret_cast<const BYTE*>(text), static_cast<DWORD>(size));
}

int CKWRegistrySerializer::Write(const char* name, CByteArray& values) {
    return WriteArchived(name, values);
}

int CKWRegistrySerializer::Write(const char* name, CDWordArray& values) {
    return WriteArchived(name, values);
}

int CKWRegistrySerializer::Write(const char* name, CWordArray& values) {
    return WriteArchived(name, values);
}

int CKWRegistrySerializer::Write(const char* name, CStringArray& values) {
    return WriteArchived(name, values);
}

int CKWRegistrySerializer::Write(const char* name, CStringList& values) {
    return WriteArchived(name, values);
}

int CKWRegistrySerializer::Write(const char* name, RECT* rect) {
    if (!rect) {
        return 0;
    }
    CArchive archive(CArchive::store);
    archive << rect->left << rect->top << rect->right << rect->bottom;
    return SetValue(name, REG_BINARY, archive.GetBytes().data(),
                    static_cast<DWORD>(archive.GetBytes().size()));
}

int CKWRegistrySerializer::Write(const char* name, POINT*& point) {
    if (!point) {
        return 0;
    }
    CArchive archive(CArchive::store);
    archive << point->x << point->y;
    return SetValue(name, REG_BINARY, archive.GetBytes().data(),
                    static_cast<DWORD>(archive.GetBytes().size()));
}

int CKWRegistrySerializer::Read(const char* name, int& value) {
    DWORD stored = 0;
    if (!Read(name, stored)) {
        return 0;
    }
    value = static_cast<int>(stored);
    return 1;
}

int CKWRegistrySerializer::Read(const char* name, DWORD& value) {
    std::vector<BYTE> data;
    if (!QueryValue(name, REG_DWORD, data) || data.size() != sizeof value) {
        return 0;
    }
    CArchive archive(std::move(data));
    archive >> value;
    return 1;
}

// A stored text may lack its terminating zero, or hold one early: it ends at
// the first zero or at the end of the data.
int CKWRegistrySerializer::Read(const char* name, CString& text) {
    std::vector<BYTE> data;
    if (!QueryValue(name, REG_SZ, data)) {
        return 0;
    }
    std::size_t length = 0;
    while (length < data.size() && data[length] != 0) {
        ++length;
    }
    text = CString(std::string(reinterpret_cast<const char*>(data.data()), length).c_str());
    return 1;
}

int CKWRegistrySerializer::Read(const char* name, CByteArray& values) {
    return ReadArchived(name, values);
}

int CKWRegistrySerializer::Read(const char* name, CDWordArray& values) {
    return ReadArchived(name, values);
}

int CKWRegistrySerializer::Read(const char* name, CWordArray& values) {
    return ReadArchived(name, values);
}

int CKWRegistrySerializer::Read(const char* name, CStringArray& values) {
    return ReadArchived(name, values);
}

int CKWRegistrySerializer::Read(const char* name, CStringList& values) {
    return ReadArchived(name, values);
}

int CKWRegistrySerializer::Read(const char* name, RECT& rect) {
    std::vector<BYTE> data;
    if (!QueryValue(name, REG_BINARY, data) || data.size() != 4 * sizeof(LONG)) {
        return 0;
    }
    CArchive archive(std::move(data));
    archive >> rect.left >> rect.top >> rect.right >> rect.bottom;
    return 1;
}

int CKWRegistrySerializer::Read(const char* name, POINT& point) {
    std::vector<BYTE> data;
    if (!QueryValue(name, REG_BINARY, data) || data.size() != 2 * sizeof(LONG)) {
        return 0;
    }
    CArchive archive(std::move(data));
    archive >> point.x >> point.y;
    return 1;
}

CString CKWRegistrySerializer::TypeKeyPath(const CKWGuid& typeID) const {
    CString path;
    path.Format("%s\\%s", static_cast<const char*>(m_LocationPath),
                static_cast<const char*>(typeID.GetCString()));
    return path;
}

CString CKWRegistrySerializer::ObjectKeyPath(const CKWGuid& typeID,
                                             const CKWGuid& instanceID) const {
    CString path;
    path.Format("%s\\%s\\%s", static_cast<const char*>(m_LocationPath),
                static_cast<const char*>(typeID.GetCString()),
                static_cast<const char*>(instanceID.GetCString()));
    return path;
}

// kept: each manifest's streams are loaded twice, once as it is made and
// once here; the second finds every stream there already.
int CKWRegistrySerializer::LoadTypeManifests() {
    CStringList names;
    if (!EnumerateSubKeys(names)) {
        return 0;
    }
    for (POSITION position = names.GetHeadPosition(); position;) {
        CKWGuid typeID;
        typeID.SetCString(names.GetNext(position));
        if (!typeID.IsValid()) {
            continue;
        }
        if (auto* manifest =
                dynamic_cast<CKWRegistryTypeManifest*>(CreateTypeManifest(typeID, nullptr))) {
            manifest->LoadFieldStreams();
        }
    }
    return 1;
}

IKWObjectType* CKWRegistrySerializer::GetTypeManifestType() const {
    return CKWRegistryTypeManifest::GetCKWRegistryTypeManifestType();
}

int CKWRegistrySerializer::OnBeforeRelease() {
    CloseRegistry();
    return CKWDocument::OnBeforeRelease();
}

int CKWRegistrySerializer::KeyResult(LONG status) {
    m_lLastError = status;
    m_dwLastValueType = 0;
    m_dwLastValueSize = 0;
    return status == ERROR_SUCCESS ? 1 : 0;
}

void CKWRegistrySerializer::SetCurrentKey(HKEY key) {
    if (m_hCurrentKey && m_hCurrentKey != key && !IsPredefinedKey(m_hCurrentKey)) {
        RegCloseKey(m_hCurrentKey);
    }
    m_hCurrentKey = key;
}

int CKWRegistrySerializer::SetValue(const char* name, DWORD type, const BYTE* data, DWORD size) {
    m_lLastError = RegSetValueExA(m_hCurrentKey, name, 0, type, data, size);
    m_dwLastValueType = type;
    m_dwLastValueSize = size;
    return m_lLastError == ERROR_SUCCESS ? 1 : 0;
}

// The size is asked first, then the bytes; a value that grows between the two
// calls gives ERROR_MORE_DATA and 0.
int CKWRegistrySerializer::QueryValue(const char* name, DWORD type, std::vector<BYTE>& data) {
    DWORD storedType = 0;
    DWORD size = 0;
    m_lLastError = RegQueryValueExA(m_hCurrentKey, name, nullptr, &storedType, nullptr, &size);
    if (m_lLastError == ERROR_SUCCESS && storedType == type) {
        data.resize(size);
        m_lLastError = RegQueryValueExA(m_hCurrentKey, name, nullptr, &storedType,
                                        size ? data.data() : nullptr, &size);
        data.resize(size);
    }
    m_dwLastValueType = m_lLastError == ERROR_SUCCESS ? storedType : 0;
    m_dwLastValueSize = m_lLastError == ERROR_SUCCESS ? size : 0;
    return m_lLastError == ERROR_SUCCESS && storedType == type ? 1 : 0;
}

int CKWRegistrySerializer::WriteArchived(const char* name, CObject& values) {
    CArchive archive(CArchive::store);
    values.Serialize(archive);
    const std::vector<BYTE>& bytes = archive.GetBytes();
    if (bytes.size() > std::numeric_limits<DWORD>::max()) {
        return 0;
    }
    return SetValue(name, REG_BINARY, bytes.data(), static_cast<DWORD>(bytes.size()));
}

template <class T>
int CKWRegistrySerializer::ReadArchived(const char* name, T& values) {
    std::vector<BYTE> data;
    if (!QueryValue(name, REG_BINARY, data)) {
        return 0;
    }
    CArchive archive(std::move(data));
    T stored;
    stored.Serialize(archive);
    if (archive.HasFailed()) {
        return 0;
    }
    values = std::move(stored);
    return 1;
}
