// The file format: four levels named after GUIDs, values and links as attributes.
#include <gtest/gtest.h>

#include <regex>

#include "XmlArchiveTest.h"

namespace {
const char* const kDocumentID = "{EC130930-944F-4394-B58A-D252EB277FFD}";

IKWFieldData* FieldData(CSamplePart* part, const char* fieldID) {
    return part->GetFieldData(CKWGuid(fieldID));
}

// Writes one object through the stream operations: a value, a null link and
// a collection of two links.
void WriteOneObject(CKWXMLFileArchive* archive, CSamplePart* part, CSamplePart* first,
                    CSamplePart* second) {
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(kDocumentID), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    ASSERT_EQ(1, manifest->WriteTypeHeader(CSamplePart::GetCSamplePartType()));
    CKWFieldStream* stream = manifest->CreateFieldStream(part->GetInstanceID(), nullptr);
    ASSERT_EQ(1, stream->WriteObjectHeader(part));
    ASSERT_EQ(1, stream->Write(FieldData(part, kNameFieldID)));
    ASSERT_EQ(1, stream->WriteLink(FieldData(part, kLinkFieldID), nullptr));
    CKWObjPtrList<IKWObject> links;
    links.Add(first);
    links.Add(second);
    auto iterator = links.GetIterator();
    ASSERT_EQ(1, stream->WriteLinks(FieldData(part, kLinksFieldID), &iterator));
}

std::string Link(CSamplePart* part) {
    return "<L T=\"" + Attribute64(CKWGuid(kSamplePartTypeID)) + "\" I=\"" +
           Attribute64(part->GetInstanceID()) + "\"/>";
}
}  // namespace

using XmlFileFormat = XmlArchiveTest;

TEST_F(XmlFileFormat, OneObjectGivesExactlyFourNestedLevels) {
    CSamplePart* part = NewPart("root");
    CSamplePart* first = NewPart("first");
    CSamplePart* second = NewPart("second");
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("one.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    WriteOneObject(archive.get(), part, first, second);
    ASSERT_TRUE(archive->Close());

    const std::string object = ElementName(part->GetInstanceID());
    const std::string type = ElementName(kSamplePartTypeID);
    const std::string links = ElementName(kLinksFieldID);
    const std::string lines[] = {
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>",
        "<KWXML>",
        "",
        "  <_MAkT7E-UlEO1itJS6yd__Q>",
        "    <" + type + ">",
        "      <" + object + ">",
        "        <" + ElementName(kNameFieldID) + " V=\"root\"/>",
        "        <" + ElementName(kLinkFieldID) + "/>",
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
    auto* type = CSamplePart::GetCSamplePartType();
    auto* root = KWTestCreate<CSamplePart>(type, "{FFFFFFFF-0000-4000-8000-000000000001}");
    root->m_Name = "root";
    root->m_iCount = -7;
    root->m_Tag = CKWGuid(kDocumentID);
    root->m_pLink = KWTestCreate<CSamplePart>(type, "{00000001-0000-4000-8000-000000000001}");
    ASSERT_EQ(1, SaveXmlFile(Path("graph.xml"), root));

    const std::string text = ReadText(Path("graph.xml"));
    const std::string object = ElementName(root->GetInstanceID());
    const std::string fields = text.substr(text.find("<" + object + ">"));
    const std::regex order(
        "<" + ElementName(kNameFieldID) + " V=\"root\"/>\\s*<" + ElementName(kCountFieldID) +
            " V=\"-7\"/>\\s*<" + ElementName(kTagFieldID) + " V=\"\\{EC130930-944F-4394-B58A-" +
            "D252EB277FFD\\}\"/>\\s*<" + ElementName(kLinkFieldID) + " T=\"[^\"]{22}\" I=\"" +
            Attribute64(root->m_pLink->GetInstanceID()) + "\"/>\\s*<" + ElementName(kLinksFieldID) +
            "/>",
        std::regex::icase);
    EXPECT_TRUE(std::regex_search(fields, order)) << text;
    EXPECT_NE(std::string::npos, fields.find("<" + ElementName(root->m_pLink->GetInstanceID())));
}
