// The file format: four levels named after GUIDs, values and links as attributes.
#include <gtest/gtest.h>

#include <regex>

#include "XmlTestSupport.h"
#include "kwcore/object/CKWTypeSystem.h"

namespace {
const char* const kDocumentID = "{EC130930-944F-4394-B58A-D252EB277FFD}";

IKWFieldData* FieldData(CXmlNode* node, const char* fieldID) {
    return node->GetFieldData(CKWGuid(fieldID));
}

// Writes one object through the stream operations: a value, a null link and
// a collection of two links.
void WriteOneObject(CKWXMLFileArchive* archive, CXmlNode* node, CXmlNode* first, CXmlNode* second) {
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(kDocumentID), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kXmlNodeTypeID), nullptr);
    ASSERT_EQ(1, manifest->WriteTypeHeader(CXmlNode::GetCXmlNodeType()));
    CKWFieldStream* stream = manifest->CreateFieldStream(node->GetInstanceID(), nullptr);
    ASSERT_EQ(1, stream->WriteObjectHeader(node));
    ASSERT_EQ(1, stream->Write(FieldData(node, kXmlNameFieldID)));
    ASSERT_EQ(1, stream->WriteLink(FieldData(node, kXmlLinkFieldID), nullptr));
    CKWObjPtrList<IKWObject> links;
    links.Add(first);
    links.Add(second);
    auto iterator = links.GetIterator();
    ASSERT_EQ(1, stream->WriteLinks(FieldData(node, kXmlLinksFieldID), &iterator));
}

std::string Link(CXmlNode* node) {
    return "<L T=\"" + Attribute64(CKWGuid(kXmlNodeTypeID)) + "\" I=\"" +
           Attribute64(node->GetInstanceID()) + "\"/>";
}
}  // namespace

using XmlFileFormat = XmlArchiveTest;

TEST_F(XmlFileFormat, OneObjectGivesExactlyFourNestedLevels) {
    CXmlNode* node = NewNode("root");
    CXmlNode* first = NewNode("first");
    CXmlNode* second = NewNode("second");
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("one.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    WriteOneObject(archive.get(), node, first, second);
    ASSERT_TRUE(archive->Close());

    const std::string object = node->GetInstanceID().GetCStringXMLElement().GetStdString();
    const std::string expected =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n"
        "<KWXML>\n\n"
        "  <_MAkT7E-UlEO1itJS6yd__Q>\n"
        "    <" +
        ElementName(kXmlNodeTypeID) +
        ">\n"
        "      <" +
        object +
        ">\n"
        "        <" +
        ElementName(kXmlNameFieldID) +
        " V=\"root\"/>\n"
        "        <" +
        ElementName(kXmlLinkFieldID) +
        "/>\n"
        "        <" +
        ElementName(kXmlLinksFieldID) +
        ">\n"
        "          " +
        Link(first) +
        "\n"
        "          " +
        Link(second) +
        "\n"
        "        </" +
        ElementName(kXmlLinksFieldID) +
        ">\n"
        "      </" +
        object +
        ">\n"
        "    </" +
        ElementName(kXmlNodeTypeID) +
        ">\n"
        "  </_MAkT7E-UlEO1itJS6yd__Q>\n\n"
        "</KWXML>\n";
    EXPECT_EQ(expected, ReadText(Path("one.xml")));
}

TEST_F(XmlFileFormat, SavedObjectWritesFieldsInDeclarationOrderWithValuesOnlyOnValueFields) {
    CXmlNode* root = NewNode("root");
    root->m_iCount = -7;
    root->m_Tag = CKWGuid(kDocumentID);
    root->m_pLink = NewNode("linked");
    ASSERT_EQ(1, SaveGraph(Path("graph.xml"), root));

    const std::string text = ReadText(Path("graph.xml"));
    const std::string object = root->GetInstanceID().GetCStringXMLElement().GetStdString();
    const std::string fields = text.substr(text.find("<" + object + ">"));
    const std::regex order(
        "<" + ElementName(kXmlNameFieldID) + " V=\"root\"/>\\s*<" + ElementName(kXmlCountFieldID) +
            " V=\"-7\"/>\\s*<" + ElementName(kXmlTagFieldID) + " V=\"\\{EC130930-944F-4394-B58A-" +
            "D252EB277FFD\\}\"/>\\s*<" + ElementName(kXmlLinkFieldID) + " T=\"[^\"]{22}\" I=\"" +
            Attribute64(root->m_pLink->GetInstanceID()) + "\"/>\\s*<" +
            ElementName(kXmlLinksFieldID) + "/>",
        std::regex::icase);
    EXPECT_TRUE(std::regex_search(fields, order)) << text;
}

TEST_F(XmlFileFormat, ObjectsAppearInSaveOrderNotSorted) {
    auto* type = CXmlNode::GetCXmlNodeType();
    auto* root =
        dynamic_cast<CXmlNode*>(type->CreateInstance("{FFFFFFFF-0000-4000-8000-000000000001}"));
    auto* linked =
        dynamic_cast<CXmlNode*>(type->CreateInstance("{00000001-0000-4000-8000-000000000001}"));
    root->m_pLink = linked;
    ASSERT_EQ(1, SaveGraph(Path("order.xml"), root));

    const std::string text = ReadText(Path("order.xml"));
    const auto rootAt =
        text.find("<" + root->GetInstanceID().GetCStringXMLElement().GetStdString());
    const auto linkedAt =
        text.find("<" + linked->GetInstanceID().GetCStringXMLElement().GetStdString());
    ASSERT_NE(std::string::npos, linkedAt);
    EXPECT_LT(rootAt, linkedAt);
}

TEST(XmlTypes, FourClassesCarryTheirIDsNamesAndParents) {
    struct Expected {
        IKWObjectType* type;
        const char* id;
        const char* name;
        const char* parentID;
    };
    const Expected all[] = {
        {CKWXMLFileArchive::GetCKWXMLFileArchiveType(), "{EC130930-944F-4394-B58A-D252EB277FFD}",
         "CKWXMLFileArchive", "{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}"},
        {CKWXMLFileDocument::GetCKWXMLFileDocumentType(), "{9B4DB7C7-29CA-4F6D-A78B-D2825148CE30}",
         "CKWXMLFileDocument", "{4F87AD20-AE52-43A7-882C-599156B30828}"},
        {CKWXMLFileTypeManifest::GetCKWXMLFileTypeManifestType(),
         "{320B405E-56FE-442E-AF44-D64092E45411}", "CKWXMLFileTypeManifest",
         "{D13AE1B6-424A-436C-91C7-982A72F0B631}"},
        {CKWXMLFileFieldStream::GetCKWXMLFileFieldStreamType(),
         "{95945C1C-EC3E-43FF-BD76-FF68DC688A56}", "CKWXMLFileFieldStream",
         "{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}"},
    };
    for (const Expected& each : all) {
        EXPECT_EQ(CKWGuid(each.id), each.type->GetID());
        EXPECT_EQ(CString(each.name), each.type->GetName());
        EXPECT_EQ(CString(each.name), each.type->GetClassNameA());
        EXPECT_EQ(CKWGuid(each.parentID), each.type->GetParentTypeID());
        EXPECT_EQ(each.type, CKWTypeSystem::FindType(CKWGuid(each.id)));
    }
}
