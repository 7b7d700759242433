// Loading is tolerant of what it does not need and strict about field elements.
#include <gtest/gtest.h>

#include "XmlArchiveTest.h"

#include <utility>
#include <vector>

namespace {
void Replace(std::string& text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    ASSERT_NE(std::string::npos, at) << from;
    text.replace(at, from.size(), to);
}

std::string Open(const CKWGuid& id) {
    return "<" + ElementName(id) + ">";
}

CKWXMLFileFieldStream* StreamOf(CKWXMLFileArchive* archive, const CKWGuid& instanceID) {
    CKWXMLFileDocument* document = FirstXmlDocument(archive);
    auto* manifest = static_cast<CKWTypeManifest*>(
        document->GetTypeManifestCollection()->Find(CKWGuid(kSamplePartTypeID)));
    return manifest ? dynamic_cast<CKWXMLFileFieldStream*>(static_cast<CKWFieldStream*>(
                          manifest->GetInstanceFieldStreamCollection()->Find(instanceID)))
                    : nullptr;
}

// Records what ReadLinks adds, null entries included.
class CRecordingCollection : public IKWCollection<IKWObject> {
public:
    int GetCount() override { return static_cast<int>(m_added.size()); }
    void* Find(CKWGuid) override { return nullptr; }
    void RemoveAll(bool) override { m_added.clear(); }
    int Add(IKWObject* element) override {
        m_added.push_back(element);
        return 1;
    }
    int Remove(IKWObject*) override { return 0; }

    std::vector<IKWObject*> m_added;
};
}  // namespace

class XmlLoading : public XmlArchiveTest {
protected:
    // Saves root -> linked; the text of the file.
    std::string SaveTwo() {
        CSamplePart* root = NewPart("root");
        root->m_pLink = NewPart("linked");
        root->m_Links.Add(root->m_pLink);
        m_root = root->GetInstanceID();
        m_linked = root->m_pLink->GetInstanceID();
        EXPECT_EQ(1, SaveXmlFile(Path("in.xml"), root));
        ReleaseAllParts();
        return ReadText(Path("in.xml"));
    }
    void OpenText(const std::string& text) {
        WriteText(Path("in.xml"), text);
        m_archive = NewXmlArchive(Path("in.xml"));
        EXPECT_TRUE(m_archive->Open(CKWArchive::modeRead));
    }
    CSamplePart* LoadRoot(const std::string& text) {
        OpenText(text);
        return LoadPart(m_archive.get(), m_root);
    }

    CKWGuid m_root, m_linked;
    KWOwned<CKWXMLFileArchive> m_archive;
};

TEST_F(XmlLoading, AnyRootNameCommentsAndWrongLengthNamesAreIgnored) {
    const std::string original = SaveTwo();
    const std::string type = Open(CKWGuid(kSamplePartTypeID));
    const std::string wrong = "<_abc/><_ABCDEFGHIJKLMNOPQRSTUVW/><_ABCDEFGHIJKLMNOPQRSTU/><x/>";
    const std::vector<std::vector<std::pair<std::string, std::string>>> edits = {
        {{"<KWXML>", "<Other>"}, {"</KWXML>", "</Other>"}},
        {{Open(m_root), "<!-- object -->\n\n  " + Open(m_root) + "<!-- fields -->\n \t"},
         {"<KWXML>", "<KWXML><!-- documents -->"}},
        {{"<KWXML>", "<KWXML>" + wrong},
         {type, type + wrong},
         {Open(m_root), Open(m_root) + wrong}},
    };
    for (const auto& edit : edits) {
        std::string text = original;
        for (const auto& change : edit) {
            Replace(text, change.first, change.second);
        }
        CSamplePart* root = LoadRoot(text);
        ASSERT_NE(nullptr, root) << text;
        EXPECT_EQ(m_root, root->GetInstanceID());
        ASSERT_NE(nullptr, root->m_pLink);
        EXPECT_EQ(CString("linked"), root->m_pLink->m_Name);
        EXPECT_EQ(1, FirstXmlDocument(m_archive.get())->GetTypeManifestCollection()->GetCount());
        ReleaseAllParts();
        m_archive.reset();
    }
}

TEST_F(XmlLoading, FieldElementRepeatedDeeperInTheObjectFailsRead) {
    std::string text = SaveTwo();
    const std::string nameField = "<" + ElementName(kNameFieldID);
    const std::string linksField = "<" + ElementName(kLinksFieldID) + ">";
    Replace(text, linksField, linksField + nameField + " V=\"again\"/>");
    EXPECT_EQ(nullptr, LoadRoot(text));

    CSamplePart* probe = NewPart("probe");
    CKWXMLFileFieldStream* stream = StreamOf(m_archive.get(), m_root);
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(0, stream->Read(probe->GetFieldData(CKWGuid(kNameFieldID))));
    EXPECT_EQ(CString("probe"), probe->m_Name);
}

TEST_F(XmlLoading, MissingFieldElementFailsTheObjectsLoad) {
    std::string text = SaveTwo();
    const std::string nameField = "<" + ElementName(kNameFieldID) + " V=\"root\"/>";
    Replace(text, nameField, "");
    EXPECT_EQ(nullptr, LoadRoot(text));
    EXPECT_EQ(0, LivePartCount());
}

TEST_F(XmlLoading, LinksToUnknownTypesOrBadIDsReadAsUnset) {
    std::string text = SaveTwo();
    const std::string linkField = "<" + ElementName(kLinkFieldID) + " ";
    const auto at = text.find(linkField);
    ASSERT_NE(std::string::npos, at);
    text.replace(at, text.find("/>", at) - at, linkField + "T=\"nonsense\" I=\"x\"");
    CSamplePart* root = LoadRoot(text);
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(nullptr, root->m_pLink);
}

TEST_F(XmlLoading, UnresolvedLinksAreAddedAsNullEntries) {
    std::string text = SaveTwo();
    // The first "L" names an instance the file does not hold.
    Replace(text, "<L T=",
            "<L T=\"" + Attribute64(CKWGuid(kSamplePartTypeID)) +
                "\" I=\"AAAAAAAAAAAAAAAAAAAAAA\"/><L T=");
    OpenText(text);
    CKWXMLFileFieldStream* stream = StreamOf(m_archive.get(), m_root);
    ASSERT_NE(nullptr, stream);
    CSamplePart* probe = NewPart("probe");
    CRecordingCollection links;
    EXPECT_EQ(1, stream->ReadLinks(probe->GetFieldData(CKWGuid(kLinksFieldID)), &links));
    ASSERT_EQ(2u, links.m_added.size());
    EXPECT_EQ(nullptr, links.m_added[0]);
    ASSERT_NE(nullptr, links.m_added[1]);
    EXPECT_EQ(m_linked, links.m_added[1]->GetInstanceID());
}

TEST_F(XmlLoading, ReadTypeHeaderAddsAnElementAsWritingDoes) {
    LoadRoot(SaveTwo());
    auto* manifest = dynamic_cast<CKWXMLFileTypeManifest*>(
        static_cast<CKWTypeManifest*>(FirstXmlDocument(m_archive.get())
                                          ->GetTypeManifestCollection()
                                          ->Find(CKWGuid(kSamplePartTypeID))));
    ASSERT_NE(nullptr, manifest);
    const auto* loaded = manifest->GetManifestElement();
    EXPECT_EQ(1, manifest->ReadTypeHeader(CSamplePart::GetCSamplePartType()));
    EXPECT_NE(loaded, manifest->GetManifestElement());
    EXPECT_EQ(0, manifest->ReadTypeHeader(nullptr));
}
