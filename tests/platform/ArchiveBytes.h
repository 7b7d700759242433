// Helpers for the tests that check stored bytes.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "kwcore/platform/Win32Types.h"

inline std::vector<BYTE> Bytes(std::initializer_list<int> values) {
    std::vector<BYTE> bytes;
    for (int value : values) {
        bytes.push_back(static_cast<BYTE>(value));
    }
    return bytes;
}

inline std::vector<BYTE> Concat(std::vector<BYTE> head, const std::string& tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}
