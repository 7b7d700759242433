// Helpers for the tests that check stored bytes.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "kwcore/platform/Win32Types.h"

// Bytes written as in a hex dump: "03 'ab' ff" is 03 61 62 FF.
inline std::vector<BYTE> Hex(const std::string& text) {
    std::vector<BYTE> bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\'') {
            while (text[++i] != '\'') {
                bytes.push_back(static_cast<BYTE>(text[i]));
            }
        } else if (text[i] != ' ') {
            bytes.push_back(
                static_cast<BYTE>(std::strtoul(text.substr(i++, 2).c_str(), nullptr, 16)));
        }
    }
    return bytes;
}

inline std::vector<BYTE> Concat(std::vector<BYTE> head, const std::string& tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}
