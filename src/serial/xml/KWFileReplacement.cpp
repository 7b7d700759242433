#include "KWFileReplacement.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "kwcore/object/CKWGuid.h"

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace kwFileReplacement {
namespace {
// A name beside target that nothing has taken.
fs::path TemporaryPathBeside(const fs::path& target) {
    const std::string unique = CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString();
    fs::path temporary = target;
    temporary.replace_filename("." + target.filename().string() + "." + unique + ".tmp");
    return temporary;
}

// Written and flushed to the disk, so the rename never exposes a file whose
// content a crash could still lose.
bool WriteDurably(const fs::path& path, const std::string& content) {
    std::FILE* file = std::fopen(path.string().c_str(), "wb");
    if (!file) {
        return false;
    }
    bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size() &&
                   std::fflush(file) == 0;
#if !defined(_WIN32)
    written = written && ::fsync(::fileno(file)) == 0;
#endif
    return std::fclose(file) == 0 && written;
}

void CopyPermissions(const fs::path& from, const fs::path& to) {
    std::error_code error;
    const fs::file_status status = fs::status(from, error);
    if (!error && fs::exists(status)) {
        fs::permissions(to, status.permissions(), error);
    }
}
}  // namespace

bool Replace(const std::string& target, const std::string& content) {
    const fs::path targetPath(target);
    const fs::path temporary = TemporaryPathBeside(targetPath);
    std::error_code error;
    if (WriteDurably(temporary, content)) {
        CopyPermissions(targetPath, temporary);
        fs::rename(temporary, targetPath, error);
        if (!error) {
            return true;
        }
    }
    fs::remove(temporary, error);
    return false;
}

}  // namespace kwFileReplacement
