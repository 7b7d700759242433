// The output file of the registry exporter, on each platform's own calls:
// kernel32 on Windows, a POSIX file descriptor carried in the HANDLE
// elsewhere.
#pragma once

#include "kwcore/platform/Win32Types.h"

#include <cstddef>

namespace kwExportFile {

// Creates fileName for reading and writing, unshared, truncating an existing
// file; null when it cannot be made.
HANDLE Create(const char* fileName);
// True when all size bytes were written.
bool Write(HANDLE hFile, const char* data, size_t size);
void Close(HANDLE hFile);
void Delete(const char* fileName);

}  // namespace kwExportFile
