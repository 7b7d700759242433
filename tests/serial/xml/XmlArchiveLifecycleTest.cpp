// Open, Close and the stream operations give the results hosts rely on.
#include <gtest/gtest.h>

#include "XmlTestSupport.h"

namespace {
// A stream ready for its object header, in an archive open for writing.
CKWFieldStream* NewStream(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kXmlNodeTypeID), nullptr);
    manifest->WriteTypeHeader(CXmlNode::GetCXmlNodeType());
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

TEST_F(XmlArchiveLifecycle, CloseWithoutOpenReturnsTrueAndWritesNothing) {
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("never.xml"));
    EXPECT_TRUE(archive->Close());
    EXPECT_TRUE(archive->Close());
    EXPECT_FALSE(std::filesystem::exists(Path("never.xml")));
}

TEST_F(XmlArchiveLifecycle, ClosingAReadArchiveWritesNothing) {
    ASSERT_EQ(1, SaveGraph(Path("read.xml"), NewNode("root")));
    const auto before = std::filesystem::last_write_time(Path("read.xml"));
    const std::string text = ReadText(Path("read.xml"));
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("read.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    EXPECT_NE(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
    EXPECT_TRUE(archive->Close());
    EXPECT_EQ(text, ReadText(Path("read.xml")));
    EXPECT_EQ(before, std::filesystem::last_write_time(Path("read.xml")));
}

TEST_F(XmlArchiveLifecycle, OnlyReadAndWriteModesOpen) {
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("modes.xml"));
    EXPECT_FALSE(archive->Open(CKWArchive::modeReadWrite));
    EXPECT_TRUE(archive->Close());
    EXPECT_FALSE(archive->Open(CKWArchive::modeNone));
    EXPECT_TRUE(archive->Close());
    EXPECT_FALSE(std::filesystem::exists(Path("modes.xml")));
}

TEST_F(XmlArchiveLifecycle, DocumentsNeedAnOpenArchive) {
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("docs.xml"));
    EXPECT_EQ(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    EXPECT_NE(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
    EXPECT_TRUE(archive->Close());
    EXPECT_EQ(nullptr, archive->CreateNewDocument(CKWGuid(), nullptr));
}

TEST_F(XmlArchiveLifecycle, SaveSucceedsOnlyInWriteMode) {
    ASSERT_EQ(1, SaveGraph(Path("save.xml"), NewNode("root")));
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("save.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    const CKWBOOL refused = archive->Save();
    EXPECT_FALSE(refused);
    EXPECT_EQ(CString("Archive Not Open in Write Mode"), refused.GetMessageText());
    archive->Close();
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    EXPECT_TRUE(archive->Save());
    archive->Close();
}

TEST_F(XmlArchiveLifecycle, DialogFormsWithoutFileNameReportCancel) {
    KWOwned<CKWXMLFileArchive> archive = NewArchive("");
    EXPECT_FALSE(archive->OpenWithUI(CKWArchive::modeWrite));
    EXPECT_FALSE(archive->CloseWithUI());

    KWOwned<CKWXMLFileArchive> named = NewArchive(Path("named.xml"));
    ASSERT_TRUE(named->OpenWithUI(CKWArchive::modeWrite));
    EXPECT_TRUE(named->CloseWithUI());
    EXPECT_TRUE(std::filesystem::exists(Path("named.xml")));
}

TEST_F(XmlArchiveLifecycle, SecondObjectHeaderOnAStreamIsRefused) {
    CXmlNode* node = NewNode("one");
    CXmlNode* other = NewNode("two");
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("header.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWFieldStream* stream = NewStream(archive.get(), node->GetInstanceID());
    EXPECT_EQ(1, stream->WriteObjectHeader(node));
    EXPECT_EQ(0, stream->WriteObjectHeader(other));
    EXPECT_EQ(0, stream->WriteObjectHeader(node));
    ASSERT_TRUE(archive->Close());
    const std::string text = ReadText(Path("header.xml"));
    EXPECT_EQ(1u, Count(text, "<" + node->GetInstanceID().GetCStringXMLElement().GetStdString()));
    EXPECT_EQ(0u, Count(text, "<" + other->GetInstanceID().GetCStringXMLElement().GetStdString()));
}

TEST_F(XmlArchiveLifecycle, StreamWritesNeedTheirParentElements) {
    CXmlNode* node = NewNode("one");
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("parents.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kXmlNodeTypeID), nullptr);
    CKWFieldStream* stream = manifest->CreateFieldStream(node->GetInstanceID(), nullptr);
    IKWFieldData* name = node->GetFieldData(CKWGuid(kXmlNameFieldID));
    EXPECT_EQ(0, stream->WriteObjectHeader(node));  // no type header yet
    EXPECT_EQ(0, stream->Write(name));              // no object element yet
    EXPECT_EQ(0, stream->WriteLink(name, node));
    EXPECT_EQ(0, manifest->WriteTypeHeader(nullptr));
    EXPECT_EQ(0, manifest->TypeHeaderIsWritten());
    EXPECT_TRUE(archive->Close());
}

TEST_F(XmlArchiveLifecycle, EmptyLinkCollectionGivesAnEmptyFieldElement) {
    CXmlNode* node = NewNode("one");
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("empty.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWFieldStream* stream = NewStream(archive.get(), node->GetInstanceID());
    ASSERT_EQ(1, stream->WriteObjectHeader(node));
    CKWObjPtrList<IKWObject> none;
    auto iterator = none.GetIterator();
    EXPECT_EQ(1, stream->WriteLinks(node->GetFieldData(CKWGuid(kXmlLinksFieldID)), &iterator));
    EXPECT_EQ(0, stream->WriteLinks(node->GetFieldData(CKWGuid(kXmlLinksFieldID)), nullptr));
    ASSERT_TRUE(archive->Close());
    EXPECT_EQ(2u, Count(ReadText(Path("empty.xml")), "<" + ElementName(kXmlLinksFieldID) + "/>"));
}

TEST_F(XmlArchiveLifecycle, StreamsForgetTheDomWhenTheArchiveCloses) {
    CXmlNode* node = NewNode("one");
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("closed.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWFieldStream* stream = NewStream(archive.get(), node->GetInstanceID());
    ASSERT_EQ(1, stream->WriteObjectHeader(node));
    ASSERT_TRUE(archive->Close());
    IKWFieldData* name = node->GetFieldData(CKWGuid(kXmlNameFieldID));
    EXPECT_EQ(0, stream->Write(name));
    EXPECT_EQ(0, stream->Read(name));
    EXPECT_EQ(0, stream->ReadObjectHeader(node));
    EXPECT_EQ(nullptr, stream->ReadLink(name));
}

TEST_F(XmlArchiveLifecycle, ArchivesReopenAndOverlapAndGoWithoutClose) {
    KWOwned<CKWXMLFileArchive> first = NewArchive(Path("first.xml"));
    KWOwned<CKWXMLFileArchive> second = NewArchive(Path("second.xml"));
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(first->Open(CKWArchive::modeWrite));
        ASSERT_TRUE(second->Open(CKWArchive::modeWrite));
        ASSERT_TRUE(first->Open(CKWArchive::modeWrite));  // a second Open starts over
        EXPECT_TRUE(first->Close());
        ASSERT_TRUE(first->Open(CKWArchive::modeRead));
        EXPECT_TRUE(second->Close());
        EXPECT_TRUE(first->Close());
    }
    ASSERT_TRUE(first->Open(CKWArchive::modeRead));
    first.reset();  // released while open: nothing is left behind
    KWOwned<CKWXMLFileArchive> third = NewArchive(Path("second.xml"));
    EXPECT_TRUE(third->Open(CKWArchive::modeRead));
    EXPECT_TRUE(third->Close());
}

TEST_F(XmlArchiveLifecycle, EachReadOpenBuildsTheDocumentsAnew) {
    CXmlNode* node = NewNode("again");
    const CKWGuid id = node->GetInstanceID();
    ASSERT_EQ(1, SaveGraph(Path("again.xml"), node));
    ReleaseAllNodes();
    KWOwned<CKWXMLFileArchive> archive = NewArchive(Path("again.xml"));
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
        EXPECT_EQ(1, archive->GetDocumentCollection()->GetCount());
        CXmlNode* loaded = LoadNode(archive.get(), id);
        ASSERT_NE(nullptr, loaded);
        EXPECT_EQ(CString("again"), loaded->m_Name);
        EXPECT_TRUE(archive->Close());
        ReleaseAllNodes();
    }
}
