// The stored hierarchy: results, access modes, children and their ownership.
#include <gtest/gtest.h>

#include <string>

#include "MemArchiveTest.h"

namespace {

int LiveCount(CKWObjectTypeImpl* type) {
    return type->GetInstanceCount();
}

using Hierarchy = MemArchiveTest;

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
        const CKWBOOL saved = m_pArchive->SaveWithUI();
        EXPECT_EQ(saved.Succeeded(), row.saves) << row.mode;
        EXPECT_EQ(std::string(saved.GetMessageText()),
                  row.saves ? "" : "Archive Not Open in Write Mode");
        EXPECT_TRUE(m_pArchive->CloseWithUI());
    }
    EXPECT_EQ(std::string(m_pArchive->Save().GetMessageText()), "Archive Not Open in Write Mode");
}

TEST_F(Hierarchy, EachLevelMakesTheBackEndsClassesUnderUniqueKeys) {
    const CKWGuid documentID = CKWGuid::CreateNewGUID();
    const CKWGuid instanceID = CKWGuid::CreateNewGUID();
    CKWDocument* document = m_pArchive->CreateNewDocument(documentID, nullptr);
    ASSERT_NE(dynamic_cast<CMemDocument*>(document), nullptr);
    EXPECT_EQ(m_pArchive->GetDocumentCollection()->Find(documentID), document);
    EXPECT_EQ(m_pArchive->CreateNewDocument(documentID, nullptr), nullptr);
    CKWDocument* fresh = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    ASSERT_NE(fresh, nullptr);
    EXPECT_TRUE(fresh->GetInstanceID().IsValid());

    EXPECT_EQ(document->CreateTypeManifest(CKWGuid(), nullptr), nullptr);
    CKWTypeManifest* manifest = document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    ASSERT_NE(dynamic_cast<CMemTypeManifest*>(manifest), nullptr);
    EXPECT_EQ(manifest->GetDocument(), document);
    EXPECT_EQ(document->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr), nullptr);

    EXPECT_EQ(manifest->CreateFieldStream(CKWGuid(), nullptr), nullptr);
    CKWFieldStream* stream = manifest->CreateFieldStream(instanceID, nullptr);
    ASSERT_NE(dynamic_cast<CMemFieldStream*>(stream), nullptr);
    EXPECT_EQ(stream->GetStoredInstanceID(), instanceID);
    EXPECT_EQ(stream->GetDocument(), document);
    EXPECT_EQ(manifest->CreateFieldStream(instanceID, nullptr), nullptr);
    EXPECT_EQ(manifest->GetInstanceFieldStreamCollection()->GetCount(), 1);
}

TEST_F(Hierarchy, DeletingReleasesTheChildAndWhatItHolds) {
    CKWDocument* first = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    CKWDocument* second = m_pArchive->CreateNewDocument(CKWGuid(), nullptr);
    CKWTypeManifest* manifest = first->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr);
    manifest->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
    const CKWGuid streamID = CKWGuid::CreateNewGUID();
    manifest->CreateFieldStream(streamID, nullptr);
    second->CreateTypeManifest(CKWGuid(kSampleAssemblyTypeID), nullptr)
        ->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);

    EXPECT_EQ(manifest->DeleteFieldStream(streamID), 1);
    EXPECT_EQ(manifest->DeleteFieldStream(streamID), 0);
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 2);
    EXPECT_EQ(second->DeleteAllTypeManifests(), 1);
    EXPECT_EQ(second->DeleteTypeManifest(CKWGuid(kSampleAssemblyTypeID)), 0);
    EXPECT_EQ(LiveCount(CMemTypeManifest::GetCMemTypeManifestType()), 1);
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 1);

    EXPECT_FALSE(m_pArchive->DeleteDocument(CKWGuid::CreateNewGUID()));
    EXPECT_TRUE(m_pArchive->DeleteDocument(first->GetInstanceID()));
    EXPECT_EQ(LiveCount(CMemTypeManifest::GetCMemTypeManifestType()), 0);
    EXPECT_EQ(LiveCount(CMemFieldStream::GetCMemFieldStreamType()), 0);
    m_pArchive->CreateNewDocument(CKWGuid(), nullptr)
        ->CreateTypeManifest(CKWGuid(kSamplePartTypeID), nullptr)
        ->CreateFieldStream(CKWGuid::CreateNewGUID(), nullptr);
    EXPECT_EQ(m_pArchive->Release(), 1);  // the fixture checks that nothing is left
    m_pArchive = nullptr;
}

}  // namespace
