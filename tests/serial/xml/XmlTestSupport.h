// Host classes, temporary folders and archive helpers for the XML archive tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"
#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

inline constexpr const char* kXmlNodeTypeID = "{6A1F0C3E-2B7D-4E59-A1C4-7D3E9B2F5A10}";
inline constexpr const char* kXmlNameFieldID = "{0B3D5F71-9A2C-4E8B-B6D4-1F3A5C7E9B20}";
inline constexpr const char* kXmlCountFieldID = "{1C4E6082-AB3D-4F9C-87E5-2A4B6D8FAC31}";
inline constexpr const char* kXmlTagFieldID = "{2D5F7193-BC4E-40AD-98F6-3B5C7E9ABD42}";
inline constexpr const char* kXmlLinkFieldID = "{3E6082A4-CD5F-41BE-A907-4C6D8FABCE53}";
inline constexpr const char* kXmlLinksFieldID = "{4F7193B5-DE60-42CF-BA18-5D7E9ABCDF64}";

// A host class with a text, an int, a GUID, a link and a link list.
class CXmlNode : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CXmlNode)

public:
    CString m_Name;
    int m_iCount = 0;
    CKWGuid m_Tag;
    CXmlNode* m_pLink = nullptr;
    CKWObjPtrList<CXmlNode> m_Links;

protected:
    CXmlNode() = default;
};

struct SReleaseObject {
    void operator()(IKWObject* object) const { object->Release(); }
};
template <class T>
using KWOwned = std::unique_ptr<T, SReleaseObject>;

CXmlNode* NewNode(const char* name);
// Releases every CXmlNode alive.
void ReleaseAllNodes();
int LiveNodeCount();

KWOwned<CKWXMLFileArchive> NewArchive(const std::filesystem::path& file);
// Saves the graph reachable from root into a new archive file; 1 on success.
int SaveGraph(const std::filesystem::path& file, CXmlNode* root);
// The node stored under that ID in the file's first document, or null.
CXmlNode* LoadNode(CKWXMLFileArchive* archive, const CKWGuid& instanceID);
CKWXMLFileDocument* FirstDocument(CKWXMLFileArchive* archive);

std::string ReadText(const std::filesystem::path& file);
void WriteText(const std::filesystem::path& file, const std::string& text);
std::string ElementName(const char* guidText);
std::string Attribute64(const CKWGuid& guid);

// A fresh folder per test, removed with everything in it afterwards; every
// node left alive is released too.
class XmlArchiveTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    std::filesystem::path Path(const char* name) const { return m_dir / name; }
    std::vector<std::string> FolderEntries() const;

    std::filesystem::path m_dir;
};
