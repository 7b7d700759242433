// Open, Close and the stream operations give the results hosts rely on; a
// save replaces the file only with a complete one; files that are missing,
// empty, cut short, not XML or badly nested give false from Open, never a
// crash, and are never changed by the read.
#include <gtest/gtest.h>

#include <xercesc/dom/DOMError.hpp>

#include "XmlArchiveTest.h"

namespace {
// A stream ready for its object header, in an archive open for writing.
CKWFieldStream* NewStream(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    manifest->WriteTypeHeader(CSamplePart::GetCSamplePartType());
    return manifest->CreateFieldStream(instanceID, nullptr);
}

// The worst error a DOM writer reports.
class CFatalWriterError : public XERCES_CPP_NAMESPACE::DOMError {
public:
    ErrorSeverity getSeverity() const override { return DOM_SEVERITY_FATAL_ERROR; }
    const XMLCh* getMessage() const override { return nullptr; }
    XERCES_CPP_NAMESPACE::DOMLocator* getLocation() const override { return nullptr; }
    void* getRelatedException() const override { return nullptr; }
    const XMLCh* getType() const override { return nullptr; }
    void* getRelatedData() const override { return nullptr; }
};

size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

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

TEST_F(XmlArchiveLifecycle, IsItsWritersErrorHandlerAndItsStreamsOpenAndCloseAsNoOps) {
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("bases.xml"));
    IKWObject* object = archive.get();
    auto* handler = dynamic_cast<XERCES_CPP_NAMESPACE::DOMErrorHandler*>(object);
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler, static_cast<XERCES_CPP_NAMESPACE::DOMErrorHandler*>(archive.get()));
    EXPECT_EQ(dynamic_cast<CKWArchive*>(handler), archive.get());
    EXPECT_TRUE(handler->handleError(CFatalWriterError()));  // the writer goes on after any error
    CSamplePart* part = NewPart("one");
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    auto* stream =
        dynamic_cast<CKWXMLFileFieldStream*>(NewStream(archive.get(), part->GetInstanceID()));
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->Open(), 1);
    EXPECT_EQ(stream->Close(), 1);
    EXPECT_EQ(stream->WriteObjectHeader(part), 1);
    EXPECT_TRUE(archive->Close());
}

// The host's pointer to a document stays good across Close and Open.
TEST_F(XmlArchiveLifecycle, HeldDocumentsStayAcrossOpenAndTakeTheOpenedFile) {
    CSamplePart* part = NewPart("kept");
    const CKWGuid partID = part->GetInstanceID();
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("held.xml"));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    ASSERT_TRUE(archive->Close());
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    ASSERT_EQ(archive->GetDocumentCollection()->Find(document->GetInstanceID()), document);
    ASSERT_EQ(part->SerializeTo(document), 1);
    ASSERT_TRUE(archive->Close());
    ReleaseAllParts();
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    EXPECT_EQ(archive->GetDocumentCollection()->GetCount(), 1);
    auto* loaded =
        dynamic_cast<CSamplePart*>(document->GetObjectA(CKWGuid(kSamplePartTypeID), partID));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(std::string(loaded->m_Name), "kept");
    EXPECT_TRUE(archive->Close());
}

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
