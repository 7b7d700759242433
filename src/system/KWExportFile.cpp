#include "KWExportFile.h"

#include <cerrno>
#include <cstdint>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace kwExportFile {

#if defined(_WIN32)

HANDLE Create(const char* fileName) {
    const HANDLE hFile = ::CreateFileA(fileName, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return hFile == INVALID_HANDLE_VALUE ? nullptr : hFile;
}

bool Write(HANDLE hFile, const char* data, size_t size) {
    DWORD written = 0;
    return ::WriteFile(hFile, data, static_cast<DWORD>(size), &written, nullptr) && written == size;
}

void Close(HANDLE hFile) {
    ::CloseHandle(hFile);
}

void Delete(const char* fileName) {
    ::DeleteFileA(fileName);
}

#else

// Descriptors are carried as descriptor + 1, so descriptor 0 is not null.
namespace {

int DescriptorOf(HANDLE hFile) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(hFile)) - 1;
}

}  // namespace

HANDLE Create(const char* fileName) {
    const int descriptor = ::open(fileName, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return descriptor < 0 ? nullptr : reinterpret_cast<HANDLE>(std::intptr_t{descriptor} + 1);
}

bool Write(HANDLE hFile, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(DescriptorOf(hFile), data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

void Close(HANDLE hFile) {
    ::close(DescriptorOf(hFile));
}

void Delete(const char* fileName) {
    ::unlink(fileName);
}

#endif  // _WIN32

}  // namespace kwExportFile
