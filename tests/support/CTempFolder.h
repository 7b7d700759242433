// A fresh folder under the system's temporary folder, removed with everything
// in it when the CTempFolder goes; and whole files read and written as text.
//
//   CTempFolder folder("kwxml-");
//   WriteText(folder.GetPath() / "in.xml", "<KWXML/>");
#pragma once

#include <filesystem>
#include <string>
#include <vector>

class CTempFolder {
public:
    // Named prefix followed by a new GUID.
    explicit CTempFolder(const std::string& prefix);
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::filesystem::path& GetPath() const { return m_path; }
    // The names of what the folder holds, in no particular order.
    std::vector<std::string> GetEntryNames() const;

private:
    std::filesystem::path m_path;
};

// The file's bytes; empty when it cannot be read.
std::string ReadText(const std::filesystem::path& file);
void WriteText(const std::filesystem::path& file, const std::string& text);
