// Graphs and text saved to a real file read back unchanged.
#include <gtest/gtest.h>

#include "XmlArchiveTest.h"

namespace {
struct SSavedGraph {
    CKWGuid a, b, c;
};

// a -> b, a [b, c], b [c], c -> a: every field kind and a cycle.
SSavedGraph SaveCycle(const std::filesystem::path& file) {
    CSamplePart* a = NewPart("a");
    CSamplePart* b = NewPart("b");
    CSamplePart* c = NewPart("c");
    a->m_iCount = 2147483647;
    b->m_iCount = -42;
    c->m_Tag = CKWGuid("{0F1E2D3C-4B5A-4968-8776-A5B4C3D2E1F0}");
    a->m_pLink = b;
    a->m_Links.Add(b);
    a->m_Links.Add(c);
    b->m_Links.Add(c);
    c->m_pLink = a;
    EXPECT_EQ(1, SaveXmlFile(file, a));
    SSavedGraph ids{a->GetInstanceID(), b->GetInstanceID(), c->GetInstanceID()};
    ReleaseAllParts();
    return ids;
}

std::vector<CSamplePart*> Links(const CSamplePart* part) {
    return ElementsOf(part->m_Links.GetIterator());
}

// The text of one saved and reloaded name.
CString RoundTripName(const std::filesystem::path& file, const CString& name) {
    CSamplePart* part = NewPart("");
    part->m_Name = name;
    const CKWGuid id = part->GetInstanceID();
    EXPECT_EQ(1, SaveXmlFile(file, part));
    ReleaseAllParts();
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
    EXPECT_TRUE(archive->Open(CKWArchive::modeRead));
    CSamplePart* loaded = LoadPart(archive.get(), id);
    archive->Close();
    return loaded ? loaded->m_Name : CString("<not loaded>");
}
}  // namespace

using XmlRoundTrip = XmlArchiveTest;

TEST_F(XmlRoundTrip, GraphWithCycleIsWrittenAndLoadedOnceWithAllFields) {
    const SSavedGraph ids = SaveCycle(Path("graph.xml"));
    const std::string text = ReadText(Path("graph.xml"));
    for (const CKWGuid& id : {ids.a, ids.b, ids.c}) {
        const std::string open = "<" + ElementName(id) + ">";
        EXPECT_NE(std::string::npos, text.find(open));
        EXPECT_EQ(text.find(open), text.rfind(open));
    }
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("graph.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    CSamplePart* a = LoadPart(archive.get(), ids.a);
    ASSERT_NE(nullptr, a);
    EXPECT_EQ(3, LivePartCount());

    CSamplePart* b = a->m_pLink;
    ASSERT_NE(nullptr, b);
    ASSERT_EQ(2u, Links(a).size());
    CSamplePart* c = Links(a)[1];
    EXPECT_EQ(b, Links(a)[0]);
    EXPECT_EQ(ids.b, b->GetInstanceID());
    EXPECT_EQ(ids.c, c->GetInstanceID());
    EXPECT_EQ(std::vector<CSamplePart*>{c}, Links(b));
    EXPECT_EQ(a, c->m_pLink);
    EXPECT_EQ(2147483647, a->m_iCount);
    EXPECT_EQ(-42, b->m_iCount);
    EXPECT_EQ(CKWGuid("{0F1E2D3C-4B5A-4968-8776-A5B4C3D2E1F0}"), c->m_Tag);
    EXPECT_FALSE(b->m_Tag.IsValid());
    EXPECT_EQ(nullptr, b->m_pLink);
    EXPECT_TRUE(archive->Close());
}

TEST_F(XmlRoundTrip, EachFieldIsReadOncePerObjectWhereverTheLoadStarts) {
    auto* type = CLinkCountingNode::GetCLinkCountingNodeType();
    const std::vector<CLinkCountingNode*> nodes = NewLinkCountingGraph();
    ASSERT_EQ(1, SaveXmlFile(Path("counted.xml"), nodes[0]));
    std::vector<CKWGuid> ids;
    for (CLinkCountingNode* node : nodes) {
        ids.push_back(node->GetInstanceID());
    }
    ReleaseAllParts();
    for (const CKWGuid& id : ids) {
        KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("counted.xml"));
        ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
        auto* loaded = dynamic_cast<CLinkCountingNode*>(
            LoadFromFirstDocument(archive.get(), type->GetID(), id));
        ASSERT_NE(nullptr, loaded);
        EXPECT_EQ(kLinkCountingGraphLoaded, DescribeLinkCountingGraph(loaded));
        EXPECT_EQ(3, type->GetInstanceCount());
        ReleaseAllParts();
    }
}

TEST_F(XmlRoundTrip, AnyTextReadsBackByteForByte) {
    const CString texts[] = {
        "",
        "plain",
        "Gr\u00fc\u00dfe \u65e5\u672c \U0001F642",  // non-ASCII, up to 4 bytes
        "<a href=\"x\">&amp; &lt; ]]> </a>",
        "'single' \"double\"",
        "  leading and trailing blanks  ",
        "line\nbreak",
        "tab\tand\r\nCRLF\rCR",
        " \n\t ",
    };
    for (const CString& text : texts) {
        EXPECT_EQ(text, RoundTripName(Path("text.xml"), text));
    }
    RoundTripName(Path("blanks.xml"), "a\tb\nc\rd");
    EXPECT_NE(std::string::npos, ReadText(Path("blanks.xml")).find("V=\"a&#x9;b&#xA;c&#xD;d\""));
}

TEST_F(XmlRoundTrip, TextXmlCannotCarryFailsTheSaveAndTheFileStillLoads) {
    const CString unfit[] = {"bad \xFF\xFE UTF-8", "control \x01", CString("nul \0 inside", 13),
                             "U+FFFF \xEF\xBF\xBF"};
    for (const CString& text : unfit) {
        CSamplePart* part = NewPart("");
        part->m_Name = text;
        EXPECT_EQ(0, SaveXmlFile(Path("bad.xml"), part));
        KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("bad.xml"));
        EXPECT_TRUE(archive->Open(CKWArchive::modeRead));
        EXPECT_TRUE(archive->Close());
        ReleaseAllParts();
    }
}

TEST_F(XmlRoundTrip, FileNamesAreTakenAsTheyAre) {
    const char* const names[] = {"with space.xml", "per%25cent#hash.xml",
                                 "gr\u00fc\u00dfe-\u65e5.xml", "file:colon.xml"};
    for (const char* name : names) {
        EXPECT_EQ(CString("kept"), RoundTripName(Path(name), "kept")) << name;
        EXPECT_TRUE(std::filesystem::exists(Path(name))) << name;
    }
}
