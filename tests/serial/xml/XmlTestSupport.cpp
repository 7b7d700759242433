#include <gtest/gtest.h>

#include "XmlTestSupport.h"

#include <fstream>
#include <iterator>
#include <list>

#include "kwcore/object/CKWTypeSystem.h"

KW_IMPLEMENT_SERIAL_TYPE(CXmlNode, kXmlNodeTypeID, "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CXmlNode)
KW_FIELD(m_Name, kXmlNameFieldID, "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iCount, kXmlCountFieldID, "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Tag, kXmlTagFieldID, "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pLink, kXmlLinkFieldID, kXmlNodeTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Links, kXmlLinksFieldID, kXmlNodeTypeID, KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

namespace {
// The test program is a host: it collects its types once they exist.
struct CollectXmlTestTypes {
    CollectXmlTestTypes() { CKWTypeSystem::Initialize("{7A8B9C0D-1E2F-4A3B-8C4D-5E6F7A8B9C0E}"); }
} s_collectXmlTestTypes;
}  // namespace

CXmlNode* NewNode(const char* name) {
    auto* node = dynamic_cast<CXmlNode*>(CXmlNode::GetCXmlNodeType()->CreateInstance(CKWGuid()));
    node->m_Name = name;
    return node;
}

void ReleaseAllNodes() {
    CXmlNode::GetCXmlNodeType()->ReleaseInstances();
}

int LiveNodeCount() {
    return CXmlNode::GetCXmlNodeType()->GetInstanceCount();
}

KWOwned<CKWXMLFileArchive> NewArchive(const std::filesystem::path& file) {
    KWOwned<CKWXMLFileArchive> archive(dynamic_cast<CKWXMLFileArchive*>(
        CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid())));
    archive->SetFile(file.string().c_str());
    return archive;
}

int SaveGraph(const std::filesystem::path& file, CXmlNode* root) {
    KWOwned<CKWXMLFileArchive> archive = NewArchive(file);
    if (!archive->Open(CKWArchive::modeWrite)) {
        return 0;
    }
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    const int saved = document && root->SerializeTo(document);
    return archive->Close() && saved ? 1 : 0;
}

CKWXMLFileDocument* FirstDocument(CKWXMLFileArchive* archive) {
    return dynamic_cast<CKWXMLFileDocument*>(archive->GetDocumentIterator().GetNext(1));
}

CXmlNode* LoadNode(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    CKWXMLFileDocument* document = FirstDocument(archive);
    if (!document) {
        return nullptr;
    }
    return dynamic_cast<CXmlNode*>(document->GetObjectA(CKWGuid(kXmlNodeTypeID), instanceID));
}

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

std::string ElementName(const char* guidText) {
    return CKWGuid(guidText).GetCStringXMLElement().GetStdString();
}

std::string Attribute64(const CKWGuid& guid) {
    return guid.GetCStringXML64().GetStdString();
}

void XmlArchiveTest::SetUp() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    m_dir = std::filesystem::temp_directory_path() /
            (std::string("kwxml-") + info->test_suite_name() + "-" + info->name() + "-" +
             CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString());
    std::filesystem::create_directories(m_dir);
}

void XmlArchiveTest::TearDown() {
    ReleaseAllNodes();
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
}

std::vector<std::string> XmlArchiveTest::FolderEntries() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_dir)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}
