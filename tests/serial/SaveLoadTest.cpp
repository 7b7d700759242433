// The save and load roads end to end, through the memory back-end.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "MemArchiveTest.h"

namespace {

using Links = std::vector<std::pair<CKWGuid, CKWGuid>>;

IKWSerializableAdaptor* AdaptorOf(IKWObject* object) {
    return static_cast<IKWSerializableAdaptor*>(object->GetInterface(IID_IKWSerializableAdaptor));
}

class SaveLoad : public MemArchiveTest {
protected:
    // a (assembly) -> link b -> link a; a's links b, c; c's links a.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemArchiveTest::SetUp());
        m_pA = KWTestCreate<CSampleAssembly>(CSampleAssembly::GetCSampleAssemblyType());
        m_pB = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        m_pC = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        ASSERT_TRUE(m_pA && m_pB && m_pC);
        m_aID = Fill(m_pA, "alpha", 7, m_tag, m_pB, {m_pB, m_pC});
        m_bID = Fill(m_pB, "beta", 0, CKWGuid(), m_pA, {});
        m_cID = Fill(m_pC, "gamma", -3, CKWGuid(), nullptr, {m_pA});
        m_pA->m_LinkMap.Add(m_pC);
        m_pA->m_LinkMap.Add(m_pB);
        m_pA->m_LoadOnly = "kept";
        m_pA->m_SaveOnly = "out";
    }

    static CKWGuid Fill(CSamplePart* part, const char* name, int count, const CKWGuid& tag,
                        CSamplePart* link, std::initializer_list<CSamplePart*> links) {
        part->m_Name = name;
        part->m_iCount = count;
        part->m_Tag = tag;
        part->m_pLink = link;
        for (CSamplePart* p : links) {
            part->m_Links.Add(p);
        }
        return part->GetInstanceID();
    }

    int Save(IKWObject* object) { return AdaptorOf(object)->SerializeTo(m_pDocument); }

    CMemFieldStream* StreamOf(const char* typeID, const CKWGuid& instanceID) {
        return m_pDocument->FindStream(CKWGuid(typeID), instanceID);
    }
    CMemFieldStream* StreamA() { return StreamOf(kSampleAssemblyTypeID, m_aID); }
    CMemFieldStream* StreamB() { return StreamOf(kSamplePartTypeID, m_bID); }
    CMemFieldStream* StreamC() { return StreamOf(kSamplePartTypeID, m_cID); }
    std::vector<CMemFieldStream*> Streams() { return {StreamA(), StreamB(), StreamC()}; }

    // Releases the graph and loads it back from a.
    CSampleAssembly* ReleaseAndLoad() {
        ReleaseSamples();
        return dynamic_cast<CSampleAssembly*>(
            m_pDocument->GetObjectA(CKWGuid(kSampleAssemblyTypeID), m_aID));
    }

    CSampleAssembly* m_pA = nullptr;
    CSamplePart* m_pB = nullptr;
    CSamplePart* m_pC = nullptr;
    CKWGuid m_aID, m_bID, m_cID, m_tag = CKWGuid::CreateNewGUID();
};

// ---------------------------------------------------------------- saving

TEST_F(SaveLoad, SavingWritesTheWholeGraphOncePerSession) {
    ASSERT_EQ(Save(m_pA), 1);
    EXPECT_EQ(Save(m_pC), 1);
    for (CMemFieldStream* stream : Streams()) {
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(stream->m_iHeaderWrites, 1);
    }
    EXPECT_EQ(m_pDocument->GetTypeManifestCollection()->GetCount(), 2);
    EXPECT_EQ(m_pA->m_hookCalls, (std::vector<CString>{"BeforeSave", "AfterSave"}));
    m_pDocument->AdvanceSerialSessionID();
    EXPECT_EQ(Save(m_pC), 1);
    for (CMemFieldStream* stream : Streams()) {
        EXPECT_EQ(stream->m_iHeaderWrites, 2);
    }
}

TEST_F(SaveLoad, ValuesAndLinksAreStoredByFieldInTableOrder) {
    ASSERT_EQ(Save(m_pA), 1);
    CMemFieldStream* a = StreamA();
    EXPECT_EQ(
        a->m_writeOrder,
        (std::vector<CKWGuid>{CKWGuid(kNameFieldID), CKWGuid(kCountFieldID), CKWGuid(kTagFieldID),
                              CKWGuid(kLinkFieldID), CKWGuid(kLinksFieldID),
                              CKWGuid(kLinkMapFieldID), CKWGuid(kSaveOnlyFieldID)}));
    EXPECT_EQ(std::string(a->m_fields[CKWGuid(kNameFieldID)].text), "alpha");
    EXPECT_EQ(std::string(a->m_fields[CKWGuid(kCountFieldID)].text), "7");
    EXPECT_EQ(a->m_fields[CKWGuid(kTagFieldID)].text, m_tag.GetCString());
    const CKWGuid part(kSamplePartTypeID);
    EXPECT_EQ(a->m_fields[CKWGuid(kLinkFieldID)].links, (Links{{part, m_bID}}));
    EXPECT_EQ(a->m_fields[CKWGuid(kLinksFieldID)].links, (Links{{part, m_bID}, {part, m_cID}}));
    EXPECT_EQ(a->m_fields[CKWGuid(kLinkMapFieldID)].links.size(), 2u);
    EXPECT_TRUE(StreamC()->m_fields[CKWGuid(kLinkFieldID)].links.empty());
}

TEST_F(SaveLoad, AFailingFieldStopsTheSaveWithTheFieldsBeforeItWritten) {
    CMemFieldStream::s_failingFieldID = CKWGuid(kTagFieldID);
    EXPECT_EQ(Save(m_pA), 0);
    EXPECT_EQ(StreamA()->m_writeOrder,
              (std::vector<CKWGuid>{CKWGuid(kNameFieldID), CKWGuid(kCountFieldID)}));
    EXPECT_EQ(m_pA->m_hookCalls, (std::vector<CString>{"BeforeSave"}));
    EXPECT_EQ(StreamB(), nullptr);  // the link after the failing field was never reached
}

TEST_F(SaveLoad, AFailingLinkedObjectFailsTheObjectThatLinksIt) {
    m_pA->m_pLink = m_pC;
    m_pC->m_Links.RemoveAll(false);
    CMemFieldStream::s_failingFieldID = CKWGuid(kLinksFieldID);
    EXPECT_EQ(Save(m_pA), 0);
    EXPECT_EQ(StreamC()->m_writeOrder.size(), 4u);
}

// ---------------------------------------------------------------- loading

TEST_F(SaveLoad, LoadingReadsEachObjectOnceAndRebuildsTheGraphWithItsIDs) {
    ASSERT_EQ(Save(m_pA), 1);
    // The load-only field is never saved, so its stored value is put in by hand.
    StreamA()->m_fields[CKWGuid(kLoadOnlyFieldID)].text = "kept";
    CSampleAssembly* a = ReleaseAndLoad();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->GetInstanceID(), m_aID);
    EXPECT_EQ(std::string(a->m_Name), "alpha");
    EXPECT_EQ(a->m_iCount, 7);
    EXPECT_EQ(a->m_Tag, m_tag);
    CSamplePart* b = a->m_pLink;
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->GetInstanceID(), m_bID);
    EXPECT_EQ(b->m_pLink, a);  // the cycle closes on the same object
    std::vector<CKWGuid> parts;
    for (CSamplePart* part : a->m_Links) {
        parts.push_back(part->GetInstanceID());
    }
    EXPECT_EQ(parts, (std::vector<CKWGuid>{m_bID, m_cID}));
    CSamplePart* c = a->m_Links.FindObject(m_cID);
    EXPECT_EQ(c->m_iCount, -3);
    EXPECT_EQ(c->m_pLink, nullptr);
    EXPECT_TRUE(c->m_Links.Contains(a));
    EXPECT_EQ(a->m_LinkMap.GetCount(), 2);
    EXPECT_EQ(a->m_LinkMap.FindObject(m_bID), b);
    EXPECT_EQ(a->m_hookCalls, (std::vector<CString>{"BeforeLoad", "AfterLoad"}));
    EXPECT_EQ(CSamplePart::GetCSamplePartType()->GetInstanceCount(), 2);
    EXPECT_EQ(m_pDocument->GetObjectA(CKWGuid(kSampleAssemblyTypeID), m_aID), a);
    for (CMemFieldStream* stream : Streams()) {
        EXPECT_EQ(stream->m_iHeaderReads, 1);
    }
}

TEST_F(SaveLoad, FlagsChooseTheDirectionsAFieldTakes) {
    ASSERT_EQ(Save(m_pA), 1);
    CMemFieldStream* stream = StreamA();
    EXPECT_EQ(stream->m_fields.count(CKWGuid(kLoadOnlyFieldID)), 0u);  // 1: never written
    EXPECT_EQ(std::string(stream->m_fields[CKWGuid(kSaveOnlyFieldID)].text), "out");  // 2
    stream->m_fields[CKWGuid(kLoadOnlyFieldID)].text = "legacy";
    stream->m_fields[CKWGuid(kSaveOnlyFieldID)].text = "changed";
    CSampleAssembly* a = ReleaseAndLoad();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(std::string(a->m_LoadOnly), "legacy");  // 1: read
    EXPECT_TRUE(a->m_SaveOnly.IsEmpty());             // 2: not read back
    EXPECT_EQ(std::string(a->m_Name), "alpha");       // 3: both
}

TEST_F(SaveLoad, EachFieldIsReadOncePerObjectWhereverTheLoadStarts) {
    auto* type = CLinkCountingNode::GetCLinkCountingNodeType();
    std::vector<std::pair<CKWDocument*, CKWGuid>> starts;  // a document for each start
    for (CLinkCountingNode* start : NewLinkCountingGraph()) {
        starts.emplace_back(m_pArchive->CreateNewDocument(CKWGuid(), nullptr),
                            start->GetInstanceID());
        ASSERT_EQ(start->SerializeTo(starts.back().first), 1);
    }
    type->ReleaseInstances();
    for (const auto& [document, startID] : starts) {
        auto* loaded =
            dynamic_cast<CLinkCountingNode*>(document->GetObjectA(type->GetID(), startID));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->GetInstanceID(), startID);
        EXPECT_EQ(DescribeLinkCountingGraph(loaded), kLinkCountingGraphLoaded);
        EXPECT_EQ(type->GetInstanceCount(), 3);
        type->ReleaseInstances();
    }
}

TEST_F(SaveLoad, AnObjectThatCannotBeReadIsReleasedAndItsLinksStayUnset) {
    ASSERT_EQ(Save(m_pA), 1);
    StreamA()->m_fields[CKWGuid(kLoadOnlyFieldID)].text = "";
    StreamB()->m_fields[CKWGuid(kCountFieldID)].text = "not a number";
    CSampleAssembly* a = ReleaseAndLoad();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->m_pLink, nullptr);
    EXPECT_EQ(a->m_Links.GetCount(), 1);
    EXPECT_EQ(StreamB()->GetResult(), nullptr);
    EXPECT_EQ(CSamplePart::GetCSamplePartType()->GetInstanceCount(), 1);  // c alone
}

TEST_F(SaveLoad, AFailingFieldStopsTheLoadWithTheFieldsBeforeItReadAndLinksKept) {
    ASSERT_EQ(Save(m_pA), 1);
    // a fails at its load-only field, after b and c were read and linked to it.
    EXPECT_EQ(ReleaseAndLoad(), nullptr);
    auto* b =
        dynamic_cast<CSamplePart*>(m_pDocument->GetObjectA(CKWGuid(kSamplePartTypeID), m_bID));
    ASSERT_NE(b, nullptr);
    ASSERT_NE(b->m_pLink, nullptr);
    EXPECT_EQ(b->m_pLink->GetInstanceID(), m_aID);
    EXPECT_EQ(std::string(b->m_pLink->m_Name), "alpha");
    EXPECT_EQ(CSampleAssembly::GetCSampleAssemblyType()->GetInstanceCount(), 1);
}

TEST_F(SaveLoad, SerializeFromReadsAHostMadeObjectOncePerSession) {
    ASSERT_EQ(Save(m_pA), 1);
    StreamA()->m_fields[CKWGuid(kLoadOnlyFieldID)].text = "kept";
    ReleaseSamples();
    m_pDocument->AdvanceSerialSessionID();
    auto* b = dynamic_cast<CSamplePart*>(CSamplePart::GetCSamplePartType()->CreateInstance(m_bID));
    ASSERT_NE(b, nullptr);
    ASSERT_EQ(b->SerializeFrom(m_pDocument, nullptr, nullptr), 1);
    EXPECT_EQ(std::string(b->m_Name), "beta");
    ASSERT_NE(b->m_pLink, nullptr);
    EXPECT_EQ(b->m_pLink->GetInstanceID(), m_aID);
    EXPECT_EQ(b->m_pLink->m_pLink, b);  // the link back resolves to b, not to a copy
    EXPECT_EQ(StreamB()->m_iHeaderReads, 1);
    b->m_Name = "edited";
    EXPECT_EQ(b->SerializeFrom(m_pDocument, nullptr, nullptr), 1);
    EXPECT_EQ(std::string(b->m_Name), "edited");  // read once in a session
    m_pDocument->AdvanceSerialSessionID();
    EXPECT_EQ(b->SerializeFrom(m_pDocument, nullptr, StreamB()), 1);
    EXPECT_EQ(std::string(b->m_Name), "beta");
}

TEST_F(SaveLoad, NullDocumentsUnknownTypesAndUnstoredObjectsFail) {
    EXPECT_EQ(AdaptorOf(m_pA)->SerializeTo(nullptr), 0);
    EXPECT_EQ(AdaptorOf(m_pA)->SerializeFieldDataTo(nullptr), 0);
    ASSERT_EQ(Save(m_pB), 1);
    const int parts = CSamplePart::GetCSamplePartType()->GetInstanceCount();
    EXPECT_EQ(m_pDocument->GetObjectA(CKWGuid::CreateNewGUID(), m_aID), nullptr);
    EXPECT_EQ(m_pDocument->GetObjectA(CKWGuid(kSamplePartTypeID), CKWGuid::CreateNewGUID()),
              nullptr);
    EXPECT_EQ(m_pDocument->GetObjectA(CKWGuid(), m_aID), nullptr);
    EXPECT_EQ(CSamplePart::GetCSamplePartType()->GetInstanceCount(), parts);
    auto* stray = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
    EXPECT_EQ(stray->SerializeFrom(m_pDocument, nullptr, nullptr), 0);
    EXPECT_EQ(stray->SerializeFrom(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(StreamOf(kSamplePartTypeID, stray->GetInstanceID()), nullptr);
}

}  // namespace
