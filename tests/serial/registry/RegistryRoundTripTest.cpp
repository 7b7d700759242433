// Graphs and preference sets saved to the registry load back unchanged.
#include <string>
#include <vector>

#include "GraphBuilders.h"
#include "RegistrySerializerTest.h"
#include "kwcore/framework/CKWPreferences.h"
#include "kwcore/framework/CKWReleaseVisitor.h"
#include "kwcore/serial/CKWTypeManifest.h"

namespace {
std::vector<CSamplePart*> Links(const CSamplePart* part) {
    return ElementsOf(part->m_Links.GetIterator());
}
}  // namespace

class RegistryRoundTrip : public RegistrySerializerTest {
protected:
    void TearDown() override {
        CKWGraphEdge::GetCKWGraphEdgeType()->ReleaseInstances();
        CKWGraphNode::GetCKWGraphNodeType()->ReleaseInstances();
        CKWPreferences::GetCKWPreferencesType()->ReleaseInstances();
        CKWPreferenceSection::GetCKWPreferenceSectionType()->ReleaseInstances();
        RegistrySerializerTest::TearDown();
    }

    // A serializer of the location after Open.
    static KWOwned<CKWRegistrySerializer> Opened(const std::string& location) {
        KWOwned<CKWRegistrySerializer> serializer = NewSerializer(location);
        EXPECT_EQ(1, serializer->Open());
        return serializer;
    }

    static CSamplePart* LoadPart(CKWRegistrySerializer* serializer, const CKWGuid& id) {
        return dynamic_cast<CSamplePart*>(serializer->GetObjectA(CKWGuid(kSamplePartTypeID), id));
    }
};

TEST_F(RegistryRoundTrip, GraphWithCycleLoadsOnceWithEveryFieldKind) {
    CSamplePart* a = NewPart("a \"quoted\" \\ name");
    CSamplePart* b = NewPart("");
    CSamplePart* c = NewPart("Gr\u00fc\u00dfe");
    a->m_iCount = 2147483647;
    b->m_iCount = -42;
    c->m_Tag = CKWGuid("{0F1E2D3C-4B5A-4968-8776-A5B4C3D2E1F0}");
    a->m_pLink = b;
    a->m_Links.Add(b);
    a->m_Links.Add(c);
    b->m_Links.Add(c);
    c->m_pLink = a;
    ASSERT_EQ(1, Save(Location(), a));
    const CKWGuid ida = a->GetInstanceID(), idb = b->GetInstanceID(), idc = c->GetInstanceID();
    CSamplePart::GetCSamplePartType()->ReleaseInstances();

    KWOwned<CKWRegistrySerializer> serializer = Opened(Location());
    EXPECT_EQ(1, serializer->GetTypeManifestCollection()->GetCount());
    a = LoadPart(serializer.get(), ida);
    ASSERT_NE(nullptr, a);
    EXPECT_EQ(3, CSamplePart::GetCSamplePartType()->GetInstanceCount());
    b = a->m_pLink;
    ASSERT_NE(nullptr, b);
    ASSERT_EQ(2u, Links(a).size());
    c = Links(a)[1];
    EXPECT_EQ(b, Links(a)[0]);
    EXPECT_EQ(idb, b->GetInstanceID());
    EXPECT_EQ(idc, c->GetInstanceID());
    EXPECT_EQ(std::vector<CSamplePart*>{c}, Links(b));
    EXPECT_EQ(a, c->m_pLink);
    EXPECT_EQ(nullptr, b->m_pLink);
    EXPECT_EQ(CString("a \"quoted\" \\ name"), a->m_Name);
    EXPECT_EQ(CString(""), b->m_Name);
    EXPECT_EQ(CString("Gr\u00fc\u00dfe"), c->m_Name);
    EXPECT_EQ(2147483647, a->m_iCount);
    EXPECT_EQ(-42, b->m_iCount);
    EXPECT_EQ(CKWGuid("{0F1E2D3C-4B5A-4968-8776-A5B4C3D2E1F0}"), c->m_Tag);
    EXPECT_FALSE(b->m_Tag.IsValid());
    EXPECT_EQ(a, LoadPart(serializer.get(), ida));
    EXPECT_EQ(3, CSamplePart::GetCSamplePartType()->GetInstanceCount());
}

TEST_F(RegistryRoundTrip, ANodeGraphWithACycleIsRebuiltFromAnyNode) {
    std::vector<CKWGraphNode*> nodes = NewChain(4);
    ASSERT_EQ(4u, nodes.size());
    ASSERT_NE(nullptr, Join(nodes[3], nodes[0]));
    ASSERT_NE(nullptr, Join(nodes[1], nodes[3]));
    // Each node's edges as (primary, secondary) instance IDs, in list order.
    auto shape = [](const std::vector<CKWGraphNode*>& graph) {
        std::vector<std::vector<CKWGuid>> ends;
        for (CKWGraphNode* node : graph) {
            for (CKWGraphEdge* edge : node->m_EdgeList) {
                ends.push_back({node->GetInstanceID(), edge->GetPrimary()->GetInstanceID(),
                                edge->GetSecondary()->GetInstanceID()});
            }
        }
        return ends;
    };
    const auto built = shape(nodes);
    std::vector<CKWGuid> ids;
    for (CKWGraphNode* node : nodes) {
        ids.push_back(node->GetInstanceID());
    }
    ASSERT_EQ(1, nodes[2]->SerializeTo(NewSerializer(Location()).get()));
    CKWGraphNode::GetCKWGraphNodeType()->ReleaseInstances();
    ASSERT_EQ(0, CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount());

    KWOwned<CKWRegistrySerializer> serializer = Opened(Location());
    EXPECT_EQ(2, serializer->GetTypeManifestCollection()->GetCount());
    auto* first = dynamic_cast<CKWGraphNode*>(
        serializer->GetObjectA(CKWGraphNode::GetCKWGraphNodeType()->GetID(), ids[0]));
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(4, CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount());
    EXPECT_EQ(5, CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount());
    std::vector<CKWGraphNode*> loaded;
    for (const CKWGuid& id : ids) {
        loaded.push_back(
            dynamic_cast<CKWGraphNode*>(CKWGraphNode::GetCKWGraphNodeType()->FindInstance(id)));
        ASSERT_NE(nullptr, loaded.back());
    }
    EXPECT_EQ(built, shape(loaded));
    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(1, releaser->Start(first));
    releaser->Release();
    EXPECT_EQ(0, CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount() +
                     CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount());
}

TEST_F(RegistryRoundTrip, ASecondSessionOverwritesTheValuesInPlace) {
    CSamplePart* part = NewPart("first");
    KWOwned<CKWRegistrySerializer> serializer = NewSerializer(Location());
    ASSERT_EQ(1, part->SerializeTo(serializer.get()));
    part->m_Name = "second";
    ASSERT_EQ(1, part->SerializeTo(serializer.get()));  // same session: not written again
    serializer->AdvanceSerialSessionID();
    part->m_Name = "third";
    ASSERT_EQ(1, part->SerializeTo(serializer.get()));
    const CKWGuid id = part->GetInstanceID();
    CSamplePart::GetCSamplePartType()->ReleaseInstances();

    CSamplePart* loaded = LoadPart(Opened(Location()).get(), id);
    ASSERT_NE(nullptr, loaded);
    EXPECT_EQ(CString("third"), loaded->m_Name);
}

TEST_F(RegistryRoundTrip, APreferenceSetKeepsItsSections) {
    auto* set = KWTestCreate<CKWPreferences>(CKWPreferences::GetCKWPreferencesType());
    CKWPreferenceSection* display = set->AddNewSection("Display");
    CKWPreferenceSection* plain = set->AddNewSection("A Preference Section");
    ASSERT_TRUE(display && plain);
    display->m_Description = "Colours & \"fonts\"";
    const CKWGuid setID = set->GetInstanceID();
    const CKWGuid displayID = display->GetInstanceID();
    const CKWGuid plainID = plain->GetInstanceID();
    ASSERT_EQ(1, set->SerializeTo(NewSerializer(Location()).get()));
    set->Release();
    ASSERT_EQ(0, CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount());

    KWOwned<CKWRegistrySerializer> serializer = Opened(Location());
    auto* loaded = dynamic_cast<CKWPreferences*>(
        serializer->GetObjectA(CKWPreferences::GetCKWPreferencesType()->GetID(), setID));
    ASSERT_NE(nullptr, loaded);
    EXPECT_EQ(2, loaded->GetSectionCount());
    CKWPreferenceSection* back = loaded->GetSection(displayID);
    ASSERT_NE(nullptr, back);
    EXPECT_EQ(back, loaded->FindSection("Display"));
    EXPECT_EQ(std::string("Colours & \"fonts\""), std::string(back->m_Description));
    ASSERT_NE(nullptr, loaded->GetSection(plainID));
    loaded->Release();
    EXPECT_EQ(0, CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount());
}

TEST_F(RegistryRoundTrip, OpenSkipsKeysNotNamedAfterGuids) {
    CSamplePart* part = NewPart("p");
    ASSERT_EQ(1, Save(Location(), part));
    const CKWGuid typeID(kSamplePartTypeID);
    const std::string typeKey = Location() + "\\" + KeyName(typeID);
    for (const std::string& stray :
         {Location() + "\\Settings", Location() + "\\{not-a-guid-at-all-but-long-enough}",
          typeKey + "\\x", typeKey + "\\00000000-0000-0000-0000-000000000000"}) {
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyExA(HKEY_CURRENT_USER, stray.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr));
        RegCloseKey(key);
    }
    KWOwned<CKWRegistrySerializer> serializer = Opened(Location());
    EXPECT_EQ(1, serializer->GetTypeManifestCollection()->GetCount());
    CKWTypeManifest* manifest = serializer->GetTypeManifestIterator().GetNext(1);
    ASSERT_NE(nullptr, manifest);
    EXPECT_EQ(typeID, manifest->GetStoredTypeID());
    EXPECT_EQ(1, manifest->GetInstanceFieldStreamCollection()->GetCount());
    const CKWGuid id = part->GetInstanceID();
    CSamplePart::GetCSamplePartType()->ReleaseInstances();
    CSamplePart* loaded = LoadPart(serializer.get(), id);
    ASSERT_NE(nullptr, loaded);
    EXPECT_EQ(CString("p"), loaded->m_Name);
}

TEST_F(RegistryRoundTrip, MissingKeysAndValuesLoadNothingAndKeepDefaults) {
    KWOwned<CKWRegistrySerializer> missing = NewSerializer(Location("Nowhere\\Deeper"));
    EXPECT_EQ(1, missing->Open());
    EXPECT_EQ(0, missing->GetTypeManifestCollection()->GetCount());
    // An object without a key reads no field: it loads with its defaults.
    const CKWGuid unknown = CKWGuid::CreateNewGUID();
    CSamplePart* blank = LoadPart(missing.get(), unknown);
    ASSERT_NE(nullptr, blank);
    EXPECT_EQ(unknown, blank->GetInstanceID());
    EXPECT_EQ(CString(""), blank->m_Name);
    EXPECT_EQ(nullptr, LoadPart(missing.get(), CKWGuid()));

    // An object key without values: the fields keep their defaults.
    CSamplePart* part = NewPart("p");
    part->m_iCount = 5;
    ASSERT_EQ(1, Save(Location(), part));
    const CKWGuid id = part->GetInstanceID();
    const std::string objectKey =
        Location() + "\\" + KeyName(CKWGuid(kSamplePartTypeID)) + "\\" + KeyName(id);
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExA(HKEY_CURRENT_USER, objectKey.c_str(), 0, KEY_ALL_ACCESS, &key));
    for (const char* name : {"m_Name", "m_iCount", "m_pLink", "m_Links"}) {
        RegDeleteValueA(key, name);
    }
    RegCloseKey(key);
    CSamplePart::GetCSamplePartType()->ReleaseInstances();
    CSamplePart* loaded = LoadPart(Opened(Location()).get(), id);
    ASSERT_NE(nullptr, loaded);
    EXPECT_EQ(CString(""), loaded->m_Name);
    EXPECT_EQ(0, loaded->m_iCount);
    EXPECT_EQ(nullptr, loaded->m_pLink);

    KWOwned<CKWRegistrySerializer> unrooted = NewSerializer("Software");
    unrooted->SetLocation(nullptr, "Software");
    EXPECT_EQ(1, unrooted->Open());
    EXPECT_NE(0, unrooted->GetLastError());
    EXPECT_EQ(0, unrooted->GetTypeManifestCollection()->GetCount());
}
