// Files that are missing, empty, cut short, not XML or badly nested give
// false from Open, never a crash, and are never changed by the read.
#include <gtest/gtest.h>

#include "XmlArchiveTest.h"

namespace {
// Nine levels of ten entity references each: 10^9 copies unless bounded.
std::string BillionLaughs() {
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE KWXML [<!ENTITY e0 \"lol\">";
    for (int level = 1; level < 10; ++level) {
        text += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            text += "&e" + std::to_string(level - 1) + ";";
        }
        text += "\">";
    }
    return text + "]><KWXML V=\"&e9;\"/>";
}
}  // namespace

using XmlBadInput = XmlArchiveTest;

TEST_F(XmlBadInput, MissingFileOrAFolderFailsOpenAndNothingIsCreated) {
    for (const std::filesystem::path& file : {Path("missing.xml"), m_folder.GetPath()}) {
        KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
        EXPECT_FALSE(archive->Open(CKWArchive::modeRead)) << file;
        EXPECT_EQ(0, archive->GetDocumentCollection()->GetCount());
        EXPECT_TRUE(archive->Close());
    }
    EXPECT_TRUE(FolderEntries().empty());
}

TEST_F(XmlBadInput, BrokenFilesFailOpenAndStayUnchanged) {
    CSamplePart* root = NewPart("root");
    root->m_pLink = NewPart("linked");
    ASSERT_EQ(1, SaveXmlFile(Path("good.xml"), root));
    const CKWGuid rootID = root->GetInstanceID();
    ReleaseAllParts();
    const std::string good = ReadText(Path("good.xml"));
    const std::string broken[] = {
        "",
        good.substr(0, good.size() / 2),
        good.substr(0, good.size() - 3),
        "not XML at all \x01\xFF",
        "<KWXML><a></KWXML></a>",
        "<?xml version=\"1.0\"?><KWXML>",
        "<!DOCTYPE KWXML SYSTEM \"http://127.0.0.1:9/none.dtd\"><KWXML/>",
        BillionLaughs(),
    };
    for (const std::string& text : broken) {
        WriteText(Path("bad.xml"), text);
        KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("bad.xml"));
        EXPECT_FALSE(archive->Open(CKWArchive::modeRead)) << text;
        LoadPart(archive.get(), rootID);
        ReleaseAllParts();
        EXPECT_TRUE(archive->Close());
        EXPECT_EQ(text, ReadText(Path("bad.xml")));
    }
}

TEST_F(XmlBadInput, CutShortFileStillBuildsWhatWasParsed) {
    CSamplePart* root = NewPart("root");
    ASSERT_EQ(1, SaveXmlFile(Path("cut.xml"), root));
    const std::string good = ReadText(Path("cut.xml"));
    WriteText(Path("cut.xml"), good.substr(0, good.rfind("</KWXML>")));
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("cut.xml"));
    EXPECT_FALSE(archive->Open(CKWArchive::modeRead));
    EXPECT_EQ(1, archive->GetDocumentCollection()->GetCount());
}
