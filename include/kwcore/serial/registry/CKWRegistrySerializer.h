// CKWRegistrySerializer: a document stored in the registry below one
// location (a root key and a path P).
//
// Each stored type is the key P\T (T its type ID in brace form) with the
// value "Type Manifest Name"; each stored object is the key P\T\I (I its
// instance ID), holding one value per field, named after the field: plain
// fields as REG_SZ text, links and link collections as REG_BINARY string
// lists of "T:" and "I:" pairs. Type and object keys are created volatile,
// so the system drops them when it restarts. Sub-keys whose names are not
// GUIDs are ignored on load. A missing object key or value reads nothing and
// is no failure: an object asked for by an ID that has no key loads with its
// defaults.
//
// Besides, it reads and writes typed values in its current key, the key
// opened last: DWORDs, strings, and MFC's arrays and string lists in their
// archive byte layout. Every call records the registry status (GetLastError),
// and every operation returns 0 on failure, never throws.
//
//   auto* serializer = ... CreateInstance of GetCKWRegistrySerializerType();
//   serializer->SetLocation(HKEY_CURRENT_USER, "Software\\Quellspar\\Scene");
//   root->SerializeTo(serializer);                 // save
//   serializer->Open();                            // load: reads the manifests
//   IKWObject* loaded = serializer->GetObjectA(typeID, instanceID);
#pragma once

#include <vector>

#include "kwcore/platform/Arrays.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/CStringList.h"
#include "kwcore/platform/Registry.h"
#include "kwcore/platform/Win32Types.h"
#include "kwcore/serial/CKWDocument.h"

class KWCORE_API CKWRegistrySerializer : public CKWDocument {
    KW_DECLARE_TYPE(CKWRegistrySerializer, CKWObjectTypeImpl)

public:
    // Stores the location; opens nothing.
    void SetLocation(HKEY root, const char* path);
    HKEY GetRootKey() const { return m_hRootKey; }
    const CString& GetLocationPath() const { return m_LocationPath; }

    // Opens (or creates) the location and makes a manifest, with its
    // streams, for each type key found there. kept: gives 1 even when the
    // location cannot be opened; GetLastError tells.
    int Open() override;
    CKWTypeManifest* CreateTypeManifest(CKWGuid typeID, IKWObjectType* storedType) override;

    // Opens root\path as the current key, creating it (volatile) when it
    // is missing.
    int OpenRegistry(HKEY root, const char* path);
    // Closes the current key.
    void CloseRegistry();
    // Creates root\path, volatile, as the current key (opens it when there).
    int CreateKey(HKEY root, const char* path);
    // Opens root\path as the current key when it exists; creates nothing.
    int VerifyKey(HKEY root, const char* path);
    // The same below the location's root key.
    int VerifyKey(const char* path);
    // 1 when the current key has a value of that name.
    int VerifyValue(const char* name);
    int DeleteValue(const char* name);
    // Deletes the key root\path (which must have no sub-keys).
    int DeleteValueKey(HKEY root, const char* path);
    // Replaces names by the names of the current key's sub-keys.
    int EnumerateSubKeys(CStringList& names);

    // Values of the current key. int and DWORD are REG_DWORD; text is REG_SZ
    // with its terminating zero; arrays and lists are REG_BINARY in their
    // archive form; a RECT is REG_BINARY left, top, right, bottom and a POINT
    // x, y, each a little-endian LONG.
    int Write(const char* name, int value);
    int Write(const char* name, DWORD value);
    int Write(const char* name, const char* text);
    int Write(const char* name, CByteArray& values);
    int Write(const char* name, CDWordArray& values);
    int Write(const char* name, CWordArray& values);
    int Write(const char* name, CStringArray& values);
    int Write(const char* name, CStringList& values);
    int Write(const char* name, RECT* rect);
    int Write(const char* name, POINT*& point);
    // A value that is missing, of another type or malformed gives 0 and
    // leaves the target unchanged. A list read replaces the list's contents.
    int Read(const char* name, int& value);
    int Read(const char* name, DWORD& value);
    int Read(const char* name, CString& text);
    int Read(const char* name, CByteArray& values);
    int Read(const char* name, CDWordArray& values);
    int Read(const char* name, CWordArray& values);
    int Read(const char* name, CStringArray& values);
    int Read(const char* name, CStringList& values);
    int Read(const char* name, RECT& rect);
    int Read(const char* name, POINT& point);

    // The status of the last registry call (ERROR_SUCCESS is 0), and the
    // type and byte size of the last value written or read (0 after key
    // operations).
    LONG GetLastError() const { return m_lLastError; }
    DWORD GetLastValueType() const { return m_dwLastValueType; }
    DWORD GetLastValueSize() const { return m_dwLastValueSize; }
    HKEY GetCurrentKey() const { return m_hCurrentKey; }

    // The key paths of a stored type and of a stored object.
    CString TypeKeyPath(const CKWGuid& typeID) const;
    CString ObjectKeyPath(const CKWGuid& typeID, const CKWGuid& instanceID) const;

protected:
    CKWRegistrySerializer() = default;

    // A manifest for each sub-key of the current key named after a GUID.
    int LoadTypeManifests();
    IKWObjectType* GetTypeManifestType() const override;
    int OnBeforeRelease() override;

private:
    // Records a key operation's status; 1 for success.
    int KeyResult(LONG status);
    // Makes key the current key, closing the one before.
    void SetCurrentKey(HKEY key);
    int SetValue(const char* name, DWORD type, const BYTE* data, DWORD size);
    // The value's bytes when it exists with that type.
    int QueryValue(const char* name, DWORD type, std::vector<BYTE>& data);
    int WriteArchived(const char* name, CObject& values);
    template <class T>
    int ReadArchived(const char* name, T& values);

    LONG m_lLastError = 0;
    DWORD m_dwLastValueType = 0;
    DWORD m_dwLastValueSize = 0;
    HKEY m_hCurrentKey = nullptr;
    HKEY m_hRootKey = nullptr;
    CString m_LocationPath;
};
