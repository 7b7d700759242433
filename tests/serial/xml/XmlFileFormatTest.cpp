// The file format: four levels named after GUIDs, values and links as attributes.
#include <gtest/gtest.h>

#include <regex>

#include "XmlTestSupport.h"

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
    const std::string type = ElementName(kXmlNodeTypeID);
    const std::string links = ElementName(kXmlLinksFieldID);
    const std::string lines[] = {
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>",
        "<KWXML>",
        "",
        "  <_MAkT7E-UlEO1itJS6yd__Q>",
        "    <" + type + ">",
        "      <" + object + ">",
        "        <" + ElementName(kXmlNameFieldID) + " V=\"root\"/>",
        "        <" + ElementName(kXmlLinkFieldID) + "/>",
        "        <" + links + ">",
        "          " + Link(first),
        "          " + Link(second),
        "        </" + links + ">",
        "      </" + object + ">",
        "    </" + type + ">",
        "  </_MAkT7E-UlEO1itJS6yd__Q>",
        "",
        "</KWXML>",
    };
    std::string expected;
    for (const std::string& line : lines) {
        expected += line + "\n";
    }
    EXPECT_EQ(expected, ReadText(Path("one.xml")));
}

TEST_F(XmlFileFormat, SavedObjectsComeInSaveOrderWithFieldsInDeclarationOrder) {
    // IDs chosen so that sorting would put the linked object first.
    auto* type = CXmlNode::GetCXmlNodeType();
    auto* root =
        dynamic_cast<CXmlNode*>(type->CreateInstance("{FFFFFFFF-0000-4000-8000-000000000001}"));
    root->m_Name = "root";
    root->m_iCount = -7;
    root->m_Tag = CKWGuid(kDocumentID);
    root->m_pLink =
        dynamic_cast<CXmlNode*>(type->CreateInstance("{00000001-0000-4000-8000-000000000001}"));
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
    EXPECT_NE(
        std::string::npos,
        fields.find("<" + root->m_pLink->GetInstanceID().GetCStringXMLElement().GetStdString()));
}
