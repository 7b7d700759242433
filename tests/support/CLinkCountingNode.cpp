#include "CLinkCountingNode.h"

#include <map>
#include <new>

#include "CSamplePart.h"
#include "kwcore/serial/CKWFieldAdaptor.h"
#include "kwcore/serial/CKWFieldDataAdaptor.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/IKWFieldStream.h"

namespace {

class CNodeIterator : public IKWIterator<IKWObject> {
public:
    explicit CNodeIterator(const std::vector<CLinkCountingNode*>& nodes) : m_nodes(nodes) {}
    IKWObject* GetNext(int bFromStart) override {
        if (bFromStart) {
            m_next = 0;
        }
        return m_next < m_nodes.size() ? m_nodes[m_next++] : nullptr;
    }
    void Reset(int bFromStart) override {
        if (bFromStart) {
            m_next = 0;
        }
    }
    bool IsValid() override { return true; }

private:
    const std::vector<CLinkCountingNode*>& m_nodes;
    std::size_t m_next = 0;
};

// Takes what a stream resolves; unresolved links are kept as null entries.
class CNodeCollector : public IKWCollection<IKWObject> {
public:
    explicit CNodeCollector(std::vector<CLinkCountingNode*>& nodes) : m_nodes(nodes) {}
    int GetCount() override { return static_cast<int>(m_nodes.size()); }
    void* Find(CKWGuid) override { return nullptr; }
    void RemoveAll(bool) override { m_nodes.clear(); }
    int Add(IKWObject* element) override {
        m_nodes.push_back(dynamic_cast<CLinkCountingNode*>(element));
        return 1;
    }
    int Remove(IKWObject*) override { return 0; }

private:
    std::vector<CLinkCountingNode*>& m_nodes;
};

class CCountedLinksData : public CKWFieldDataAdaptor {
public:
    CCountedLinksData(IKWField* field, CLinkCountingNode* node)
        : CKWFieldDataAdaptor(field, node), m_pNode(node) {}

    int SerializeTo(IKWFieldStream* stream) override {
        CNodeIterator links(m_pNode->m_Links);
        if (!stream || !stream->WriteLinks(this, &links)) {
            return 0;
        }
        for (CLinkCountingNode* link : m_pNode->m_Links) {
            if (!KWSaveLinkedObject(stream, link)) {
                return 0;
            }
        }
        return 1;
    }
    int SerializeFrom(IKWFieldStream* stream) override {
        ++m_pNode->m_iLinkReads;
        m_pNode->m_Links.clear();
        CNodeCollector links(m_pNode->m_Links);
        return stream ? stream->ReadLinks(this, &links) : 0;
    }

private:
    CLinkCountingNode* m_pNode;
};

class CCountedLinksField : public CKWFieldAdaptor {
public:
    IKWFieldData* CreateFieldData(CKWSerialObject* object) override {
        auto* node = dynamic_cast<CLinkCountingNode*>(object);
        return node ? new (std::nothrow) CCountedLinksData(this, node) : nullptr;
    }
};

void AddCountedLinksField(CKWSerialObjectTypeImpl* origin, CKWSerialObjectTypeImpl* table) {
    IKWField* field = new CCountedLinksField;
    field->SetName("m_Links");
    field->SetFieldID(CKWGuid(kCountedLinksFieldID));
    field->SetDataTypeID(CKWGuid(kLinkCountingNodeTypeID));
    field->SetOriginType(origin);
    if (!table->AddField(field)) {
        field->Release();
    }
}

}  // namespace

KW_IMPLEMENT_SERIAL_TYPE(CLinkCountingNode, kLinkCountingNodeTypeID, kSerialObjectTypeID)
KW_BEGIN_FIELDS(CLinkCountingNode)
KW_FIELD(m_Name, "{9F4DB063-8E5C-4A3A-97F2-4A0C3E619D85}", kTextTypeID, KW_FIELD_LOAD_SAVE)
AddCountedLinksField(this, kwFieldTable);
KW_END_FIELDS()

std::vector<CLinkCountingNode*> NewLinkCountingGraph() {
    std::vector<CLinkCountingNode*> nodes;
    for (const char* name : {"a", "b", "c"}) {
        nodes.push_back(
            KWTestCreate<CLinkCountingNode>(CLinkCountingNode::GetCLinkCountingNodeType()));
        nodes.back()->m_Name = name;
    }
    CLinkCountingNode* const a = nodes[0];
    CLinkCountingNode* const b = nodes[1];
    CLinkCountingNode* const c = nodes[2];
    a->m_Links = {b, c};
    b->m_Links = {a, c};
    c->m_Links = {b, a, c};
    return nodes;
}

std::string DescribeLinkCountingGraph(CLinkCountingNode* start) {
    std::map<std::string, CLinkCountingNode*> byName;
    std::vector<CLinkCountingNode*> open{start};
    std::string doubled;
    while (!open.empty()) {
        CLinkCountingNode* node = open.back();
        open.pop_back();
        auto [named, added] = byName.emplace(static_cast<const char*>(node->m_Name), node);
        if (!added) {
            doubled += named->second == node ? "" : " " + named->first + "!";
            continue;
        }
        for (CLinkCountingNode* link : node->m_Links) {
            if (link) {
                open.push_back(link);
            }
        }
    }
    std::string text;
    for (const auto& [name, node] : byName) {
        text += (text.empty() ? "" : " ") + name + ":" + std::to_string(node->m_iLinkReads) + ">";
        for (std::size_t i = 0; i < node->m_Links.size(); ++i) {
            text +=
                (i ? "," : "") + (node->m_Links[i] ? std::string(node->m_Links[i]->m_Name) : "-");
        }
    }
    return text + doubled;
}

namespace {
const SCollectTypes s_collectLinkCountingTypes(kKWTestRepositoryID);
}  // namespace
