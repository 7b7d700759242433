#include "CTempFolder.h"

#include <fstream>
#include <iterator>
#include <system_error>

#include "kwcore/object/CKWGuid.h"

CTempFolder::CTempFolder(const std::string& prefix)
    : m_path(std::filesystem::temp_directory_path() /
             (prefix + CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString())) {
    std::filesystem::create_directories(m_path);
}

CTempFolder::~CTempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> CTempFolder::GetEntryNames() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}
