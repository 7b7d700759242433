// Open, Close and the stream operations give the results hosts rely on.
#include <gtest/gtest.h>

#include "XmlArchiveTest.h"

namespace {
// A stream ready for its object header, in an archive open for writing.
CKWFieldStream* NewStream(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    manifest->WriteTypeHeader(CSamplePart::GetCSamplePartType());
    return manifest->CreateFieldStream(instanceID, nullptr);
}

size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}
}  // namespace

using XmlArchiveLifecycle = XmlArchiveTest;

TEST_F(XmlArchiveLifecycle, UnopenedArchivesCloseTrueAndWriteNothing) {
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("never.xml"));
    EXPECT_TRUE(archive->Close());
    EXPECT_EQ(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
    for (CKWArchive::AccessMode mode : {CKWArchive::modeReadWrite, CKWArchive::modeNone}) {
        EXPECT_FALSE(archive->Open(mode)) << mode;
        EXPECT_TRUE(archive->Close());
    }
    EXPECT_FALSE(std::filesystem::exists(Path("never.xml")));
    KWOwned<CKWXMLFileArchive> unnamed = NewXmlArchive("");
    EXPECT_FALSE(unnamed->OpenWithUI(CKWArchive::modeWrite));
    EXPECT_FALSE(unnamed->CloseWithUI());
}

TEST_F(XmlArchiveLifecycle, ClosingAReadArchiveWritesNothingAndSaveIsRefused) {
    ASSERT_EQ(1, SaveXmlFile(Path("read.xml"), NewPart("root")));
    const auto before = std::filesystem::last_write_time(Path("read.xml"));
    const std::string text = ReadText(Path("read.xml"));
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("read.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    EXPECT_NE(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
    const CKWBOOL refused = archive->Save();
    EXPECT_FALSE(refused);
    EXPECT_EQ(CString("Archive Not Open in Write Mode"), refused.GetMessageText());
    EXPECT_TRUE(archive->Close());
    EXPECT_EQ(text, ReadText(Path("read.xml")));
    EXPECT_EQ(before, std::filesystem::last_write_time(Path("read.xml")));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    EXPECT_TRUE(archive->Save());
    EXPECT_TRUE(archive->Close());
}

TEST_F(XmlArchiveLifecycle, SecondObjectHeaderIsRefusedAndEmptyLinksGiveAnEmptyElement) {
    CSamplePart* part = NewPart("one");
    CSamplePart* other = NewPart("two");
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("header.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWFieldStream* stream = NewStream(archive.get(), part->GetInstanceID());
    EXPECT_EQ(1, stream->WriteObjectHeader(part));
    EXPECT_EQ(0, stream->WriteObjectHeader(other));
    EXPECT_EQ(0, stream->WriteObjectHeader(part));
    CKWObjPtrList<IKWObject> none;
    auto iterator = none.GetIterator();
    EXPECT_EQ(1, stream->WriteLinks(part->GetFieldData(CKWGuid(kLinksFieldID)), &iterator));
    ASSERT_TRUE(archive->Close());
    const std::string text = ReadText(Path("header.xml"));
    EXPECT_EQ(1u, Count(text, "<" + ElementName(kLinksFieldID) + "/>"));
    EXPECT_EQ(1u, Count(text, "<" + ElementName(part->GetInstanceID())));
    EXPECT_EQ(0u, Count(text, "<" + ElementName(other->GetInstanceID())));
}

TEST_F(XmlArchiveLifecycle, StreamWritesNeedTheirParentElements) {
    CSamplePart* part = NewPart("one");
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("parents.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    CKWFieldStream* stream = manifest->CreateFieldStream(part->GetInstanceID(), nullptr);
    IKWFieldData* name = part->GetFieldData(CKWGuid(kNameFieldID));
    EXPECT_EQ(0, stream->WriteObjectHeader(part));  // no type header yet
    EXPECT_EQ(0, stream->Write(name));              // no object element yet
    EXPECT_EQ(0, stream->WriteLink(name, part));
    EXPECT_EQ(0, manifest->WriteTypeHeader(nullptr));
    EXPECT_TRUE(archive->Close());
}
