// A save replaces the file only with a complete one.
#include <gtest/gtest.h>

#include "XmlArchiveTest.h"

using XmlAtomicSave = XmlArchiveTest;

TEST_F(XmlAtomicSave, SaveReplacesTheFileKeepingItsPermissionsAndLeavesNoTemporaryFile) {
    using std::filesystem::perms;
    WriteText(Path("model.xml"), "previous");
    std::filesystem::permissions(Path("model.xml"), perms::owner_read | perms::owner_write);
    ASSERT_EQ(1, SaveXmlFile(Path("model.xml"), NewPart("root")));
    EXPECT_EQ(0u, ReadText(Path("model.xml")).find("<?xml"));
    EXPECT_EQ(perms::owner_read | perms::owner_write,
              std::filesystem::status(Path("model.xml")).permissions());
    EXPECT_EQ(std::vector<std::string>{"model.xml"}, FolderEntries());
}

TEST_F(XmlAtomicSave, FailedSaveLeavesTheTargetAndNoTemporaryFile) {
    std::filesystem::create_directory(Path("model.xml"));
    WriteText(Path("model.xml") / "inside", "kept");
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("model.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    NewPart("root")->SerializeTo(archive->CreateNewDocument(CKWGuid(), nullptr));
    EXPECT_TRUE(archive->Close());  // kept: the result does not tell
    EXPECT_EQ("kept", ReadText(Path("model.xml") / "inside"));
    EXPECT_EQ(std::vector<std::string>{"model.xml"}, FolderEntries());
}

TEST_F(XmlAtomicSave, SaveIntoAMissingFolderCreatesNothing) {
    ASSERT_EQ(1, SaveXmlFile(Path("nowhere") / "model.xml", NewPart("root")));
    EXPECT_TRUE(FolderEntries().empty());
}
