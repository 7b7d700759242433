// The stored hierarchy: results, access modes, children and their ownership.
#include <gtest/gtest.h>

#include <string>

#include "SerialTestTypes.h"

namespace {

int LiveCount(CKWObjectTypeImpl* type) {
    return type->GetInstanceCount();
}

class Hierarchy : public ::testing::Test {
protected:
    void SetUp() override {
        m_pArchive = KWTestCreate<CMemArchive>(CMemArchive::GetCMemArchiveType());
        ASSERT_NE(m_pArchive, nullptr);
    }
    void TearDown() override {
        if (m_pArchive) {
            m_pArchive->Release();
        }
        EXPECT_EQ(LiveCount(CMemDocument::GetCMemDocumentType()), 0);
        EXPECT_EQ(LiveCount(CMemTypeManifest::GetCMemTypeManifestType()), 0);
        EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 0);
    }

    CMemArchive* m_pArchive = nullptr;
};

TEST(KWBOOL, CarriesSuccessAndAnOptionalMessage) {
    EXPECT_TRUE(CKWBOOL());
    EXPECT_FALSE(CKWBOOL(false));
    const CKWBOOL failed(false, "why");
    EXPECT_FALSE(failed.Succeeded());
    EXPECT_EQ(std::string(failed.GetMessageText()), "why");
    EXPECT_TRUE(CKWBOOL(true).GetMessageText().IsEmpty());
}

TEST_F(Hierarchy, SaveNeedsTheWriteBit) {
    struct Row {
        CKWArchive::AccessMode mode;
        bool saves;
    };
    const Row rows[] = {{CKWArchive::modeNone, false},
                        {CKWArchive::modeRead, false},
                        {CKWArchive::modeWrite, true},
                        {CKWArchive::modeReadWrite, true}};
    for (const Row& row : rows) {
        EXPECT_TRUE(m_pArchive->OpenWithUI(row.mode));
        EXPECT_EQ(m_pArchive->GetAccessMode(), row.mode);
        const CKWBOOL saved = m_pArchive->SaveWithUI();
        EXPECT_EQ(saved.Succeeded(), row.saves) << row.mode;
        EXPECT_EQ(std::string(saved.GetMessageText()),
                  row.saves ? "" : "Archive Not Open in Write Mode");
        EXPECT_TRUE(m_pArchive->CloseWithUI());
    }
    EXPECT_EQ(std::string(m_pArchive->Save().GetMessageText()), "Archive Not Open in Write Mode");
}

TEST_F(Hierarchy, EachLevelMakesTheBackEndsClassesUnderTheirKeys) {
    const CKWGuid documentID = CKWGuid::CreateNewGUID();
    const CKWGuid instanceID = CKWGuid::CreateNewGUID();
    CKWDocument* document = m_pArchive->CreateNewDocument(documentID, nullptr);
    ASSERT_NE(dynamic_cast<CMemDocument*>(document), nullptr);
    EXPECT_EQ(document->GetInstanceID(), documentID);
    EXPECT_EQ(m_pArchive->GetDocumentCollection()->Find(documentID), document);

    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
    ASSERT_NE(dynamic_cast<CMemTypeManifest*>(manifest), nullptr);
    EXPECT_EQ(manifest->GetStoredTypeID(), CKWGuid(kPartTypeID));
    EXPECT_EQ(manifest->GetDocument(), document);
    EXPECT_EQ(document->GetTypeManifestCollection()->Find(CKWGuid(kPartTypeID)), manifest);

    CKWFieldStream* stream = manifest->CreateFieldStream(instanceID, nullptr);
    ASSERT_NE(dynamic_cast<CMemFieldStream*>(stream), nullptr);
    EXPECT_EQ(stream->GetStoredInstanceID(), instanceID);
    EXPECT_EQ(stream->GetDocument(), document);
    EXPECT_EQ(stream->GetInterface(IID_IKWFieldStream), static_cast<IKWFieldStream*>(stream));
    EXPECT_EQ(stream->GetInterface(IID_IKWObject), static_cast<IKWObject*>(stream));
    EXPECT_EQ(manifest->GetInstanceFieldStreamCollection()->Find(instanceID), stream);
}

TEST_F(Hierarchy, TakenAndEmptyKeysAreRefused) {
    const CKWGuid documentID = CKWGuid::CreateNewGUID();
    CKWDocument* document = m_pArchive->CreateNewDocument(documentID, nullptr);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(m_pArchive->CreateNewDocument(documentID, nullptr), nullptr);
    CKWDocument* fresh = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    ASSERT_NE(fresh, nullptr);
    EXPECT_TRUE(fresh->GetInstanceID().IsValid());
    EXPECT_EQ(m_pArchive->GetDocumentCollection()->GetCount(), 2);

    EXPECT_EQ(document->CreateTypeManifest(CKWGuid(), nullptr), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
    EXPECT_EQ(document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr), nullptr);
    EXPECT_EQ(manifest->CreateFieldStream(CKWGuid(), nullptr), nullptr);
    const CKWGuid instanceID = CKWGuid::CreateNewGUID();
    EXPECT_NE(manifest->CreateFieldStream(instanceID, nullptr), nullptr);
    EXPECT_EQ(manifest->CreateFieldStream(instanceID, nullptr), nullptr);
    EXPECT_EQ(manifest->GetInstanceFieldStreamCollection()->GetCount(), 1);
}

TEST(HierarchyBase, TheBaseClassesMakeBaseChildrenButNoAbstractStreams) {
    auto* archive = KWTestCreate<CKWArchive>(CKWArchive::GetCKWArchiveType());
    ASSERT_NE(archive, nullptr);
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetType(), CKWDocument::GetCKWDocumentType());
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->GetType(), CKWTypeManifest::GetCKWTypeManifestType());
    EXPECT_EQ(manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr), nullptr);
    EXPECT_EQ(manifest->WriteTypeHeader(nullptr), 0);
    EXPECT_EQ(manifest->TypeHeaderIsWritten(), 0);
    EXPECT_EQ(manifest->WriteTypeHeader(CTestPart::GetCTestPartType()), 1);
    EXPECT_EQ(manifest->TypeHeaderIsWritten(), 1);
    EXPECT_EQ(archive->Release(), 1);
    EXPECT_EQ(CKWDocument::GetCKWDocumentType()->GetInstanceCount(), 0);
    EXPECT_EQ(CKWTypeManifest::GetCKWTypeManifestType()->GetInstanceCount(), 0);
}

TEST_F(Hierarchy, DeletingReleasesTheChildAndWhatItHolds) {
    CKWDocument* first = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    CKWDocument* second = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = first->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
    manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
    const CKWGuid streamID = CKWGuid::CreateNewGUID();
    manifest->CreateFieldStream(streamID, nullptr);
    second->CreateTypeManifest(CKWGuid(kAssemblyTypeID), nullptr);

    EXPECT_EQ(manifest->DeleteFieldStream(streamID), 1);
    EXPECT_EQ(manifest->DeleteFieldStream(streamID), 0);
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 1);
    EXPECT_EQ(second->DeleteTypeManifest(CKWGuid(kAssemblyTypeID)), 1);
    EXPECT_EQ(second->DeleteTypeManifest(CKWGuid(kAssemblyTypeID)), 0);
    EXPECT_EQ(LiveCount(CMemTypeManifest::GetCMemTypeManifestType()), 1);

    EXPECT_TRUE(m_pArchive->DeleteDocument(first->GetInstanceID()));
    EXPECT_FALSE(m_pArchive->DeleteDocument(CKWGuid::CreateNewGUID()));
    EXPECT_EQ(LiveCount(CMemTypeManifest::GetCMemTypeManifestType()), 0);
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 0);
    EXPECT_TRUE(m_pArchive->DeleteAllDocuments());
    EXPECT_EQ(m_pArchive->GetDocumentCollection()->GetCount(), 0);
    EXPECT_EQ(LiveCount(CMemDocument::GetCMemDocumentType()), 0);
}

TEST_F(Hierarchy, ReleasingTheArchiveReleasesEverythingBelow) {
    for (int d = 0; d < 2; ++d) {
        CKWDocument* document = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
        CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
        manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
        EXPECT_EQ(document->DeleteAllTypeManifests(), 1);
        manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
        manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
        manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
        EXPECT_EQ(manifest->DeleteAllFieldStreams(), 1);
        manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
    }
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 2);
    EXPECT_EQ(m_pArchive->Release(), 1);
    m_pArchive = nullptr;  // TearDown checks that nothing is left
}

TEST_F(Hierarchy, StreamsRememberTheirSessionAndResultUntilANewSession) {
    CKWDocument* document = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kPartTypeID), nullptr);
    CKWFieldStream* stream = manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
    const CKWGuid session = document->GetSerialSessionID();
    EXPECT_TRUE(session.IsValid());
    EXPECT_EQ(stream->ObjectHasBeenSerialized(session), 0);
    EXPECT_EQ(stream->ObjectHasBeenSerialized(CKWGuid()), 0);
    stream->SetObjectSerialized(session);
    EXPECT_EQ(stream->ObjectHasBeenSerialized(session), 1);
    EXPECT_EQ(stream->ObjectHasBeenSerialized(CKWGuid::CreateNewGUID()), 0);
    EXPECT_EQ(stream->GetResult(), nullptr);
    stream->SetResult(stream);
    EXPECT_EQ(stream->GetResult(), stream);
    document->AdvanceSerialSessionID();
    EXPECT_TRUE(document->GetSerialSessionID().IsValid());
    EXPECT_EQ(stream->ObjectHasBeenSerialized(document->GetSerialSessionID()), 0);
}

}  // namespace
