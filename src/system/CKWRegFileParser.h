// The parser of "REGEDIT4" text for the registry import: turns the whole file
// into the keys and values it names, or into the first malformed line and
// why, before anything touches the registry.
#pragma once

#include "kwcore/platform/Win32Types.h"

#include <string>
#include <vector>

// One value line: set name to type and data, or delete it.
struct SKWRegFileValue {
    int line = 0;
    bool remove = false;
    std::string name;
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

// One key line with the value lines below it: create the key (or delete it
// with its whole tree) and apply the values in file order.
struct SKWRegFileKey {
    int line = 0;
    bool remove = false;
    HKEY root = nullptr;
    std::string subKey;
    std::vector<SKWRegFileValue> values;
};

class CKWRegFileParser {
public:
    // Parses text, the whole file. False at the first malformed line; the
    // keys parsed so far are then of no use.
    bool Parse(const std::string& text);

    const std::vector<SKWRegFileKey>& GetKeys() const { return m_keys; }
    // The 1-based line at fault and what is wrong with it, after a failure.
    int GetErrorLine() const { return m_errorLine; }
    const std::string& GetReason() const { return m_reason; }

private:
    // A byte list (hex: or hex(N):) still open: its text so far, and whether
    // the last line ended in a backslash and so must be continued.
    struct SPendingList {
        bool open = false;
        bool mustContinue = false;
        std::string text;
    };

    bool Fail(int line, const std::string& reason);
    bool ParseLine(int line, const std::string& text);
    bool ParseKeyLine(int line, const std::string& text);
    bool ParseValueLine(int line, const std::string& text);
    // The data after "name"=; fills value, or opens a byte list.
    bool ParseData(int line, const std::string& data, SKWRegFileValue& value);
    // Text after an opening quote (or after hex(2):): escapes, then the
    // closing quote as the last character; the data gains a terminating zero.
    bool ParseText(int line, const std::string& text, SKWRegFileValue& value);
    // Adds a line of the open byte list; a trailing backslash asks for more.
    void ContinueList(const std::string& text);
    // Turns the open byte list into the last value's data.
    bool CloseList();

    std::vector<SKWRegFileKey> m_keys;
    // False before the first key line and after a key deletion.
    bool m_inKey = false;
    SPendingList m_list;
    int m_errorLine = 0;
    std::string m_reason;
};
