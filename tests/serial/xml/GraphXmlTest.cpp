// Graphs and preference sets round-trip through XML archive files.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "GraphBuilders.h"
#include "XmlArchiveTest.h"
#include "kwcore/framework/CKWPreferences.h"
#include "kwcore/framework/CKWReleaseVisitor.h"

namespace {

CKWObjectTypeImpl* NodeType() {
    return CKWGraphNode::GetCKWGraphNodeType();
}
CKWObjectTypeImpl* EdgeType() {
    return CKWGraphEdge::GetCKWGraphEdgeType();
}
int Live(CKWObjectTypeImpl* type) {
    return type->GetInstanceCount();
}

// Each node's edges (by instance ID) as (edge, primary, secondary) IDs, in list order.
using Shape = std::map<CKWGuid, std::vector<std::vector<CKWGuid>>>;
CKWGuid IdOf(IKWObject* object) {
    return object ? object->GetInstanceID() : CKWGuid();
}

class GraphXml : public XmlArchiveTest {
protected:
    void TearDown() override {
        EdgeType()->ReleaseInstances();
        NodeType()->ReleaseInstances();
        CKWPreferences::GetCKWPreferencesType()->ReleaseInstances();
        CKWPreferenceSection::GetCKWPreferenceSectionType()->ReleaseInstances();
        XmlArchiveTest::TearDown();
    }

    // Nodes 0..4: a cycle 0-1-2-0, a tail 2-3, and 4 joined to 3 by edges
    // attached in an order unlike the IDs'. Their IDs are kept.
    void BuildAndRemember() {
        s_nodeIDs.clear();
        for (CKWGraphNode*& node : m_nodes) {
            node = NewNode();
            s_nodeIDs.push_back(node->GetInstanceID());
        }
        const int pairs[][2] = {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {4, 3}, {3, 4}};
        for (const auto& pair : pairs) {
            ASSERT_NE(Join(m_nodes[pair[0]], m_nodes[pair[1]]), nullptr);
        }
    }

    // The loaded node that was built as node i, if any.
    static CKWGraphNode* Node(std::size_t i) {
        return dynamic_cast<CKWGraphNode*>(NodeType()->FindInstance(s_nodeIDs[i]));
    }

    static Shape ShapeOf() {
        Shape shape;
        for (std::size_t i = 0; i < s_nodeIDs.size(); ++i) {
            CKWGraphNode* node = Node(i);
            if (!node) {
                continue;
            }
            auto& edges = shape[s_nodeIDs[i]];
            for (CKWGraphEdge* edge : node->m_EdgeList) {
                edges.push_back({IdOf(edge), IdOf(edge->GetPrimary()), IdOf(edge->GetSecondary())});
            }
        }
        return shape;
    }

    int Save(CKWSerialObject* root, const char* name, const CKWGuid& documentID = CKWGuid()) {
        return SaveXmlFile(Path(name), root, documentID);
    }

    static IKWObject* Load(CKWXMLFileArchive* archive, IKWObjectType* type, const CKWGuid& id) {
        return archive->Open(CKWArchive::modeRead)
                   ? LoadFromFirstDocument(archive, type->GetID(), id)
                   : nullptr;
    }

    // Saves the built graph from node 3, releases it and loads it back from node 0.
    CKWGraphNode* RoundTrip(KWOwned<CKWXMLFileArchive>& archive, const char* name) {
        BuildAndRemember();
        m_built = ShapeOf();
        EXPECT_EQ(Save(m_nodes[3], name, m_documentID), 1);
        NodeType()->ReleaseInstances();
        EXPECT_EQ(Live(EdgeType()), 0);
        archive = NewXmlArchive(Path(name));
        return dynamic_cast<CKWGraphNode*>(Load(archive.get(), NodeType(), s_nodeIDs[0]));
    }

    CKWGraphNode* m_nodes[5] = {};
    Shape m_built;
    const CKWGuid m_documentID = CKWGuid::CreateNewGUID();
    static std::vector<CKWGuid> s_nodeIDs;
};
std::vector<CKWGuid> GraphXml::s_nodeIDs;

TEST_F(GraphXml, SavingOneNodeWritesTheWholeGraphOnceAndLoadingOneNodeRebuildsIt) {
    KWOwned<CKWXMLFileArchive> archive;
    CKWGraphNode* first = RoundTrip(archive, "graph.xml");
    ASSERT_NE(first, nullptr);
    CKWXMLFileDocument* document = FirstXmlDocument(archive.get());
    auto* nodes = static_cast<CKWTypeManifest*>(
        document->GetTypeManifestCollection()->Find(NodeType()->GetID()));
    auto* edges = static_cast<CKWTypeManifest*>(
        document->GetTypeManifestCollection()->Find(EdgeType()->GetID()));
    ASSERT_TRUE(nodes && edges);
    EXPECT_EQ(nodes->GetInstanceFieldStreamCollection()->GetCount(), 5);
    EXPECT_EQ(edges->GetInstanceFieldStreamCollection()->GetCount(), 6);
    EXPECT_EQ(Live(NodeType()), 5);
    EXPECT_EQ(Live(EdgeType()), 6);
    EXPECT_EQ(ShapeOf(), m_built);  // edge lists in their order, ends as built
    for (std::size_t i = 0; i < 5; ++i) {
        ASSERT_NE(Node(i), nullptr);
        for (CKWGraphEdge* edge : Node(i)->m_EdgeList) {
            EXPECT_TRUE(edge->IsConnected());
        }
    }
    const std::string text = ReadText(Path("graph.xml"));
    EXPECT_NE(text.find(ElementName("{BC46ABAF-175D-4139-9B08-1B063477ADDE}")), std::string::npos);
    // Released like a graph that was built: nothing is left.
    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    ASSERT_EQ(releaser->Start(first), 1);
    releaser->Release();
    EXPECT_EQ(Live(NodeType()) + Live(EdgeType()), 0);
}

TEST_F(GraphXml, ALoadedGraphIsSavedAgainToTheSameFile) {
    KWOwned<CKWXMLFileArchive> archive;
    ASSERT_NE(RoundTrip(archive, "first.xml"), nullptr);
    ASSERT_NE(Node(3), nullptr);
    ASSERT_EQ(Save(Node(3), "second.xml", m_documentID), 1);
    EXPECT_EQ(ReadText(Path("first.xml")), ReadText(Path("second.xml")));
}

TEST_F(GraphXml, LinksToMissingOrWronglyTypedObjectsGiveAPartialGraph) {
    BuildAndRemember();
    ASSERT_EQ(Save(m_nodes[0], "graph.xml"), 1);
    const CKWGuid lostID = s_nodeIDs[4];
    const CKWGuid edgeOfOne = IdOf(m_nodes[1]->GetEdge(1));  // the 1-2 edge
    NodeType()->ReleaseInstances();
    std::string text = ReadText(Path("graph.xml"));
    // Node 4 is gone from the file; node 1's second edge link names the node type.
    const std::string lost = "<" + ElementName(lostID) + ">";
    const std::size_t from = text.find(lost);
    ASSERT_NE(from, std::string::npos);
    const std::string close = "</" + lost.substr(1);
    text.erase(from, text.find(close, from) + close.size() - from);
    const std::string wrong =
        "T=\"" + Attribute64(EdgeType()->GetID()) + "\" I=\"" + Attribute64(edgeOfOne) + "\"";
    std::size_t link = text.find(wrong);
    ASSERT_NE(link, std::string::npos);
    text.replace(
        link, wrong.size(),
        "T=\"" + Attribute64(NodeType()->GetID()) + "\" I=\"" + Attribute64(edgeOfOne) + "\"");
    WriteText(Path("graph.xml"), text);

    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("graph.xml"));
    auto* first = dynamic_cast<CKWGraphNode*>(Load(archive.get(), NodeType(), s_nodeIDs[0]));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(NodeType()->FindInstance(lostID), nullptr);
    ASSERT_NE(Node(1), nullptr);
    EXPECT_EQ(Node(1)->m_EdgeList.GetCount(), 1);  // the wrongly typed link is left out
    // The edges to the missing node have one end only and are not connected.
    ASSERT_NE(Node(3), nullptr);
    int halfEdges = 0;
    for (CKWGraphEdge* edge : Node(3)->m_EdgeList) {
        if (!edge->GetPrimary() || !edge->GetSecondary()) {
            ++halfEdges;
            EXPECT_FALSE(edge->IsConnected());
        }
    }
    EXPECT_EQ(halfEdges, 2);
    // Releasing in any order leaves nothing behind.
    NodeType()->ReleaseInstances();
    EdgeType()->ReleaseInstances();
    EXPECT_EQ(Live(NodeType()) + Live(EdgeType()), 0);
}

TEST_F(GraphXml, APreferenceSetKeepsItsSectionsThroughAFile) {
    auto* set = KWTestCreate<CKWPreferences>(CKWPreferences::GetCKWPreferencesType());
    CKWPreferenceSection* display = set->AddNewSection("Display");
    CKWPreferenceSection* plain = set->AddNewSection("A Preference Section");
    ASSERT_TRUE(display && plain);
    display->m_Description = "Colours & \"fonts\"";
    const CKWGuid setID = set->GetInstanceID();
    const CKWGuid displayID = display->GetInstanceID();
    const CKWGuid plainID = plain->GetInstanceID();
    ASSERT_EQ(Save(set, "preferences.xml"), 1);
    set->Release();
    ASSERT_EQ(CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount(), 0);

    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(Path("preferences.xml"));
    auto* loaded = dynamic_cast<CKWPreferences*>(
        Load(archive.get(), CKWPreferences::GetCKWPreferencesType(), setID));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetSectionCount(), 2);
    CKWPreferenceSection* back = loaded->GetSection(displayID);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(loaded->FindSection("Display"), back);
    EXPECT_EQ(std::string(back->m_Description), "Colours & \"fonts\"");
    ASSERT_NE(loaded->GetSection(plainID), nullptr);
    EXPECT_EQ(std::string(loaded->GetSection(plainID)->m_Description), "A Preference Section");
    EXPECT_EQ(CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount(), 2);
    loaded->Release();
    EXPECT_EQ(CKWPreferenceSection::GetCKWPreferenceSectionType()->GetInstanceCount(), 0);
}

}  // namespace
