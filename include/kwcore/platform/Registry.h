// The Win32 registry functions the library uses: keys opened and created
// below the predefined roots, typed values, enumeration and deletion.
//
// On Windows they are advapi32's own. Elsewhere the library provides them
// over its registry store, a SQLite database per user ($KWCORE_REGISTRY, else
// $XDG_CONFIG_HOME/kwcore/registry.db, else ~/.config/kwcore/registry.db)
// with the same handles, value types, sizes and error codes. Key and value
// names are case-insensitive (ASCII letters) and keep the case they were
// created with; sub-keys enumerate in case-insensitive alphabetical order,
// values in the order they were created. Every call is one transaction, so
// threads and processes share the store safely; a CKWRegistryBatch makes a
// thread's writes one transaction. docs/platform.md lists the limits and
// the code of every failure.
//
//   HKEY key = nullptr;
//   if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Quellspar\\CoreLib", 0, nullptr,
//                       REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
//                       nullptr) == ERROR_SUCCESS) {
//       const DWORD width = 640;
//       RegSetValueExA(key, "Width", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&width),
//                      sizeof width);
//       RegCloseKey(key);
//   }
#pragma once

#include "kwcore/platform/Win32Types.h"

#if defined(_WIN32)

#include <winreg.h>

#else

#include "kwcore/platform/Export.h"

// Opens lpSubKey below hKey (null or "" opens hKey again). ERROR_FILE_NOT_FOUND
// when a key on the path is missing; *phkResult is null after any failure.
KWCORE_API LSTATUS RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                                 PHKEY phkResult);

// Opens lpSubKey below hKey, creating it and any missing key above it.
// REG_OPTION_VOLATILE makes the created keys last until the next reboot; a
// key below a volatile key must be volatile (ERROR_CHILD_MUST_BE_VOLATILE).
// The disposition says whether the last key was created or already there.
// Keys have no class: lpClass and lpSecurityAttributes are ignored.
KWCORE_API LSTATUS RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass,
                                   DWORD dwOptions, REGSAM samDesired,
                                   const LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                   PHKEY phkResult, LPDWORD lpdwDisposition);

// Stores cbData bytes of lpData under lpValueName (null or "" names the
// default value) with the type dwType, exactly as given.
KWCORE_API LSTATUS RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD Reserved, DWORD dwType,
                                  const BYTE* lpData, DWORD cbData);

// Sets a value of the key lpSubKey below hkey (null or "" sets it on hkey,
// which then needs KEY_SET_VALUE), creating the key and any missing key
// above it first, as RegCreateKeyExA would, without opening a handle.
KWCORE_API LSTATUS RegSetKeyValueA(HKEY hKey, LPCSTR lpSubKey, LPCSTR lpValueName, DWORD dwType,
                                   LPCVOID lpData, DWORD cbData);

// Reads a value: its type, and its bytes when lpData is not null. *lpcbData
// holds the buffer size and receives the value's size; a buffer too small
// gives ERROR_MORE_DATA and the size needed.
KWCORE_API LSTATUS RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved,
                                    LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);

// Reads the value lpValue of the key lpSubKey below hkey (null or "" reads
// from hkey, which then needs KEY_QUERY_VALUE) without opening a handle.
// dwFlags names the types accepted (RRF_RT_*; another gives
// ERROR_UNSUPPORTED_TYPE, and a REG_BINARY of the wrong size for RRF_RT_DWORD
// or RRF_RT_QWORD ERROR_DATATYPE_MISMATCH). A REG_EXPAND_SZ is returned
// expanded, as REG_SZ, unless RRF_NOEXPAND is given; asking for
// RRF_RT_REG_EXPAND_SZ without it is ERROR_INVALID_PARAMETER. Strings always
// end in their terminators, counted in the size. The size protocol is
// RegQueryValueExA's; RRF_ZEROONFAILURE zeroes the buffer after a failure.
// A missing key or value is ERROR_FILE_NOT_FOUND.
KWCORE_API LSTATUS RegGetValueA(HKEY hkey, LPCSTR lpSubKey, LPCSTR lpValue, DWORD dwFlags,
                                LPDWORD pdwType, PVOID pvData, LPDWORD pcbData);

// The key's sub-key and value counts, its longest sub-key name, value name
// (in characters, without the terminator) and value data (in bytes), and
// when it last changed. Keys have no class and no security descriptor: both
// sizes are 0.
KWCORE_API LSTATUS RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass,
                                    LPDWORD lpReserved, LPDWORD lpcSubKeys,
                                    LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                    LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                    LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                    PFILETIME lpftLastWriteTime);

// The name of the dwIndex-th sub-key in case-insensitive alphabetical order;
// ERROR_NO_MORE_ITEMS past the last one.
KWCORE_API LSTATUS RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                 LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                 PFILETIME lpftLastWriteTime);

// The dwIndex-th value in creation order (setting a value again keeps its
// place); ERROR_NO_MORE_ITEMS past the last one.
KWCORE_API LSTATUS RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName,
                                 LPDWORD lpcchValueName, LPDWORD lpReserved, LPDWORD lpType,
                                 LPBYTE lpData, LPDWORD lpcbData);

KWCORE_API LSTATUS RegDeleteValueA(HKEY hKey, LPCSTR lpValueName);

// Deletes lpSubKey below hKey with its values. A key with sub-keys, and a
// predefined root, are refused with ERROR_ACCESS_DENIED.
KWCORE_API LSTATUS RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey);

// Makes everything written so far durable on disk; inside a batch, the
// batch when it commits.
KWCORE_API LSTATUS RegFlushKey(HKEY hKey);

// Closing a predefined root does nothing and succeeds.
KWCORE_API LSTATUS RegCloseKey(HKEY hKey);

#endif  // _WIN32
