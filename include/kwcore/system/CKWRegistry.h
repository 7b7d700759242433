// CKWRegistry: typed access to a host's settings below root\SOFTWARE, and the
// export of a registry tree to a "REGEDIT4" text file and its import back.
//
// Initialize opens root\SOFTWARE for reading and creates (or opens) the
// company key below it and the application key below that; the object owns
// the three keys and closes them when it goes. Key paths given to the getters
// and setters are relative to SOFTWARE (company\application\section) unless
// another base key is passed. Getters store the default in the output first,
// so it stays there after any failure; every access returns an
// _EKWRegistryErrors code and nothing throws.
//
//   CKWRegistry registry("Quellspar", "CoreLib", HKEY_CURRENT_USER);
//   registry.PutRegValue("Quellspar\\CoreLib\\Window", "Width", 640);
//   int width = 0;
//   if (registry.GetRegValue("Quellspar\\CoreLib\\Window", "Width", width, 800) != 0) {
//       // width is 800
//   }
//   CKWRegistry::WriteRegistryTreeToFile("HKCU\\Software\\Quellspar", "quellspar.reg");
//   int line = 0;
//   CString reason;
//   if (!CKWRegistry::ReadRegistryTreeFromFile("quellspar.reg", line, reason)) {
//       // nothing was written; line and reason say why
//   }
#pragma once

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Registry.h"
#include "kwcore/platform/Win32Types.h"

#include <map>
#include <vector>

enum _EKWRegistryErrors {
    KW_REGISTRY_SUCCESS = 0,
    // One of the three keys is missing (not initialised), or no key to read.
    KW_REGISTRY_NOT_INITIALIZED = 4,
    // Creating or opening the key, reading or writing the value failed, or the
    // value is absent.
    KW_REGISTRY_CALL_FAILED = 6,
    // The value exists with another type than the one asked for.
    KW_REGISTRY_WRONG_TYPE = 7
};

class KWCORE_API CKWRegistry {
public:
    CKWRegistry();
    CKWRegistry(CString company, CString application, HKEY root);
    virtual ~CKWRegistry();
    CKWRegistry(const CKWRegistry&) = delete;
    CKWRegistry& operator=(const CKWRegistry&) = delete;

    // Opens root\SOFTWARE (KEY_READ), then creates or opens company and
    // application below it (KEY_ALL_ACCESS). Keys held before are closed
    // first; after a failure all three are null and the result is 6.
    _EKWRegistryErrors Initialize(CString company, CString application, HKEY root);

    // Placeholders for classes that keep their settings here: they do nothing
    // and return 0.
    virtual int Load();
    virtual int Save();

    // Reading creates keyPath below base (the SOFTWARE key when base is null)
    // when it is missing; the value itself must exist. Integers read REG_DWORD
    // values, strings REG_SZ; the list reads a REG_MULTI_SZ up to its first
    // empty string; the map reads a REG_MULTI_SZ whose strings are a GUID in
    // brace form, "=" and the text (strings of another form are skipped).
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, int& value, int defaultValue,
                                   HKEY base = nullptr);
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, unsigned long& value,
                                   unsigned long defaultValue, HKEY base = nullptr);
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, long& value,
                                   long defaultValue, HKEY base = nullptr);
    // DWORD is unsigned int where unsigned long is 64 bits wide: this form
    // takes it on every platform.
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, unsigned int& value,
                                   unsigned int defaultValue, HKEY base = nullptr);
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, CString& value,
                                   CString defaultValue, HKEY base = nullptr);
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName, std::vector<CString>& value,
                                   std::vector<CString> defaultValue, HKEY base = nullptr);
    _EKWRegistryErrors GetRegValue(CString keyPath, CString valueName,
                                   std::map<CKWGuid, CString>& value,
                                   std::map<CKWGuid, CString> defaultValue, HKEY base = nullptr);

    // Writing creates keyPath as reading does. Integers are stored as 4-byte
    // REG_DWORD values (a long or unsigned long of 64 bits keeps its low 32), strings as REG_SZ
    // with their terminating zero, a list as REG_MULTI_SZ: each string and its zero, then two more
    // zero bytes (one more than the usual double terminator, kept so stored sizes match those
    // written by earlier versions).
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName, int value,
                                   HKEY base = nullptr);
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName, unsigned long value,
                                   HKEY base = nullptr);
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName, long value,
                                   HKEY base = nullptr);
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName, unsigned int value,
                                   HKEY base = nullptr);
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName, CString value,
                                   HKEY base = nullptr);
    _EKWRegistryErrors PutRegValue(CString keyPath, CString valueName,
                                   const std::vector<CString>& value, HKEY base = nullptr);

    // Writes root\subKey with all its values and sub-keys to fileName as
    // "REGEDIT4" text (CRLF lines; values before sub-keys, each in
    // enumeration order). root must be one of the predefined HKEY_* roots.
    // False for an empty argument, an unknown root, a file that cannot be
    // made, or a key that cannot be read; a file begun is then deleted.
    static bool WriteRegistryTreeToFile(HKEY root, const char* subKey, const char* fileName);
    // The same for "ROOT\sub\key", where ROOT is a root's long name
    // ("HKEY_CURRENT_USER") or short one ("HKCU").
    static bool WriteRegistryTreeToFile(const char* keyPath, const char* fileName);

    // Reads a "REGEDIT4" file back into the registry: everything
    // WriteRegistryTreeToFile writes, byte for byte, and the usual regedit
    // forms (@= default values, a trailing backslash continuing a byte list,
    // [-key] and "name"=- deletions, ; comments). Value names are taken verbatim,
    // as the exporter writes them; strings gain their terminating zero. The
    // whole file is parsed first and nothing is written when any line is
    // malformed; a last line without its line break counts as a truncated
    // file. Keys are created non-volatile. False on any failure: errorLine is
    // then the 1-based line at fault (0 for a file that cannot be read) and
    // reason says what is wrong. Only a registry call failing part-way (the
    // line and the call's error code are reported) leaves the import
    // half-applied.
    static bool ReadRegistryTreeFromFile(const char* fileName);
    static bool ReadRegistryTreeFromFile(const char* fileName, int& errorLine, CString& reason);

    // Splits "ROOT\sub\key" into the predefined root that ROOT names (long or
    // short name, as above) and the sub-key after the first backslash. False,
    // with both left alone, without a backslash or for an unknown root.
    static bool SplitKeyPath(const char* keyPath, HKEY& root, CString& subKey);

protected:
    // The file handle is the platform's: a kernel32 file handle on Windows,
    // a file descriptor plus one carried in the HANDLE elsewhere.
    //
    // Writes the whole of text; throws std::runtime_error when it cannot.
    static void WriteFileString(HANDLE hFile, const char* text);
    // Writes one value line. keyName and valueIndex are not part of the text;
    // false when a write fails.
    static bool WriteRegValue(HANDLE hFile, const char* keyName, const char* valueName,
                              int valueIndex, DWORD type, const BYTE* data, DWORD size);
    // Writes the key parent\subKey, named rootName\subKey, then its sub-keys
    // depth first. False when a key cannot be opened or read; a failed write
    // throws as WriteFileString does.
    static bool WriteValuesAndSubkeys(const char* rootName, HKEY parent, const char* subKey,
                                      HANDLE hFile);

    // Reads a REG_SZ value of an open key into value (the default stays on
    // failure).
    _EKWRegistryErrors GetStringValueFromReg(HKEY key, CString valueName, CString& value,
                                             CString defaultValue);

private:
    bool IsInitialized() const;
    void CloseKeys();
    // Creates or opens keyPath below base (or the SOFTWARE key) and reads the
    // value of the expected type into data.
    _EKWRegistryErrors ReadValue(const CString& keyPath, const CString& valueName, HKEY base,
                                 DWORD expectedType, std::vector<BYTE>& data) const;
    _EKWRegistryErrors WriteValue(const CString& keyPath, const CString& valueName, HKEY base,
                                  DWORD type, const void* data, DWORD size) const;
    _EKWRegistryErrors WriteDword(const CString& keyPath, const CString& valueName, HKEY base,
                                  DWORD value) const;
    // Reads a REG_DWORD into an integer, sign-extended for the signed ones.
    template <class Integer>
    _EKWRegistryErrors ReadInteger(const CString& keyPath, const CString& valueName, HKEY base,
                                   Integer& value, Integer defaultValue) const;
    _EKWRegistryErrors ReadStringList(const CString& keyPath, const CString& valueName, HKEY base,
                                      std::vector<CString>& strings) const;

    HKEY m_hSoftwareKey;
    HKEY m_hCompanyKey;
    HKEY m_hApplicationKey;
};
