// A test with an in-memory archive open for writing and one document in it.
// Sample parts record their calls meanwhile. Afterwards every sample object
// still alive is released with the archive, and nothing stored may be left.
#pragma once

#include <gtest/gtest.h>

#include "CLinkCountingNode.h"
#include "CMemArchive.h"
#include "CSamplePart.h"
#include "KWTestObjects.h"

class MemArchiveTest : public ::testing::Test {
protected:
    void SetUp() override {
        CSamplePart::s_bRecordCalls = true;
        m_pArchive = KWTestCreate<CMemArchive>(CMemArchive::GetCMemArchiveType());
        ASSERT_NE(m_pArchive, nullptr);
        ASSERT_TRUE(m_pArchive->Open(CKWArchive::modeWrite));
        m_pDocument =
            dynamic_cast<CMemDocument*>(m_pArchive->CreateNewDocument(CKWGuid(), nullptr));
        ASSERT_NE(m_pDocument, nullptr);
    }

    void TearDown() override {
        CMemFieldStream::s_failingFieldID = CKWGuid();
        CSamplePart::s_bRecordCalls = false;
        ReleaseSamples();
        if (m_pArchive) {
            m_pArchive->Release();
        }
        EXPECT_EQ(CMemDocument::GetCMemDocumentType()->GetInstanceCount(), 0);
        EXPECT_EQ(CMemTypeManifest::GetCMemTypeManifestType()->GetInstanceCount(), 0);
        EXPECT_EQ(CMemFieldStream::GetCMemFieldStreamType()->GetInstanceCount(), 0);
    }

    static void ReleaseSamples() {
        CSampleAssembly::GetCSampleAssemblyType()->ReleaseInstances();
        CSamplePart::GetCSamplePartType()->ReleaseInstances();
        CLinkCountingNode::GetCLinkCountingNodeType()->ReleaseInstances();
    }

    CMemArchive* m_pArchive = nullptr;
    CMemDocument* m_pDocument = nullptr;
};
