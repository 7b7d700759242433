// Tests of XML archive files on sample parts: each has a fresh folder for its
// files, removed with everything in it afterwards, when every part left alive
// is released too.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "CLinkCountingNode.h"
#include "CSamplePart.h"
#include "CTempFolder.h"
#include "XmlArchiveFiles.h"
#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

inline CSamplePart* NewPart(const char* name) {
    auto* part = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
    part->m_Name = name;
    return part;
}

inline void ReleaseAllParts() {
    CSamplePart::GetCSamplePartType()->ReleaseInstances();
    CLinkCountingNode::GetCLinkCountingNodeType()->ReleaseInstances();
}

inline int LivePartCount() {
    return CSamplePart::GetCSamplePartType()->GetInstanceCount();
}

// The part stored under that ID in the archive's first document, or null.
inline CSamplePart* LoadPart(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    return dynamic_cast<CSamplePart*>(
        LoadFromFirstDocument(archive, CKWGuid(kSamplePartTypeID), instanceID));
}

class XmlArchiveTest : public ::testing::Test {
protected:
    void TearDown() override { ReleaseAllParts(); }

    std::filesystem::path Path(const std::filesystem::path& name) const {
        return m_folder.GetPath() / name;
    }
    std::vector<std::string> FolderEntries() const { return m_folder.GetEntryNames(); }

    const CTempFolder m_folder{"kwxml-"};
};
