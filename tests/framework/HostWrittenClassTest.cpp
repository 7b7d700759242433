// Classes written the way a host writes them from the interface alone: each
// nested type class by hand, without the library's macros. They compile only
// if every override matches the library's virtuals, and they must be made
// through the type system and behave like the library's own classes.
#include <gtest/gtest.h>

#include <vector>

#include "CMemArchive.h"
#include "GraphBuilders.h"
#include "KWTestObjects.h"
#include "kwcore/framework/CKWDFSVisitor.h"
#include "kwcore/framework/CKWObserver.h"
#include "kwcore/framework/CKWToolEventRouter.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWFieldT.h"
#include "kwcore/serial/CKWSerialObject.h"

namespace {

const CKWGuid kObjectImplTypeID("{3719246B-C3B0-4AE9-9723-6E998C42484A}");
const CKWGuid kShapeTypeID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697801}");
const CKWGuid kNoteTypeID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697802}");
const CKWGuid kTextFieldID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697803}");
const CKWGuid kAlarmTypeID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697804}");
const CKWGuid kWatcherTypeID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697805}");
const CKWGuid kCounterTypeID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697806}");
const CKWGuid kHostRepositoryID("{6A0E4C21-9B57-4D3F-8E12-3C4B5A697807}");

int s_iShapeDestructors = 0;

class CHostShape : public CKWObjectImpl {
public:
    class CHostShapeType : public CKWObjectTypeImpl {
    public:
        CHostShapeType() {
            SetName("CHostShape");
            SetClassName("CHostShape");
            SetParentTypeID(kObjectImplTypeID);
            SetID(kShapeTypeID);
        }

    protected:
        IKWObject* CTOR() override { return new CHostShape; }
        void DTOR(IKWObject* object) override { delete object; }
    };

    static CHostShapeType* GetCHostShapeType() { return &m_CHostShapeType; }
    IKWObjectType* GetType() override { return &m_CHostShapeType; }
    int Release() override { return m_CHostShapeType.ReleaseInstance(this); }

    int m_iBeforeRelease = 0;
    bool m_bMayGo = true;

protected:
    CHostShape() = default;
    ~CHostShape() override { ++s_iShapeDestructors; }

    int OnBeforeRelease() override { return ++m_iBeforeRelease, m_bMayGo ? 1 : 0; }

    static CHostShapeType m_CHostShapeType;
};
CHostShape::CHostShapeType CHostShape::m_CHostShapeType;

class CHostNote : public CKWSerialObject {
public:
    class CHostNoteType : public CKWSerialObjectTypeImpl {
    public:
        CHostNoteType() {
            SetName("CHostNote");
            SetClassName("CHostNote");
            SetParentTypeID(CKWSerialObject::GetCKWSerialObjectType()->GetID());
            SetID(kNoteTypeID);
        }
        void InitializeType() override { CreateFields(this, nullptr); }
        // The table once, then each note's field data from it.
        void CreateFields(CKWSerialObjectTypeImpl* type, IKWObject* object) override {
            if (!GetField(kTextFieldID)) {
                IKWField* text = new CKWFieldT<CString>(&TextOf);
                text->SetName("m_Text");
                text->SetFieldID(kTextFieldID);
                text->SetDataTypeID(CKWGuid("{9FD8ACE1-6007-4A97-BB0A-01A0E7999305}"));
                text->SetOriginType(this);
                AddField(text);
            }
            auto* note = dynamic_cast<CHostNote*>(object);
            if (note && type == this) {
                note->AddFieldData(GetField(kTextFieldID)->CreateFieldData(note));
            }
        }

    protected:
        IKWObject* CTOR() override { return new CHostNote; }
        void DTOR(IKWObject* object) override { delete static_cast<CHostNote*>(object); }
    };

    static CHostNoteType* GetCHostNoteType() { return &m_CHostNoteType; }
    IKWObjectType* GetType() override { return &m_CHostNoteType; }
    int Release() override { return m_CHostNoteType.ReleaseInstance(this); }

    CString m_Text;

protected:
    CHostNote() = default;

    static CString& TextOf(CKWSerialObject* object) {
        return static_cast<CHostNote*>(object)->m_Text;
    }
    static CHostNoteType m_CHostNoteType;
};
CHostNote::CHostNoteType CHostNote::m_CHostNoteType;

// An observation type of the host's own.
class CHostAlarm : public CKWObservation {
public:
    class CHostAlarmType : public CKWObjectTypeImpl {
    public:
        CHostAlarmType() {
            SetName("CHostAlarm");
            SetClassName("CHostAlarm");
            SetParentTypeID(CKWObservation::GetCKWObservationType()->GetID());
            SetID(kAlarmTypeID);
        }

    protected:
        IKWObject* CTOR() override { return new CHostAlarm; }
        void DTOR(IKWObject* object) override { delete object; }
    };

    IKWObjectType* GetType() override { return &m_CHostAlarmType; }
    int Release() override { return m_CHostAlarmType.ReleaseInstance(this); }
    static CHostAlarmType m_CHostAlarmType;

protected:
    CHostAlarm() = default;
};
CHostAlarm::CHostAlarmType CHostAlarm::m_CHostAlarmType;

class CHostWatcher : public CKWObserver {
public:
    class CHostWatcherType : public CKWObjectTypeImpl {
    public:
        CHostWatcherType() {
            SetName("CHostWatcher");
            SetClassName("CHostWatcher");
            SetParentTypeID(CKWObserver::GetCKWObserverType()->GetID());
            SetID(kWatcherTypeID);
        }

    protected:
        IKWObject* CTOR() override { return new CHostWatcher; }
        void DTOR(IKWObject* object) override { delete object; }
    };

    IKWObjectType* GetType() override { return &m_CHostWatcherType; }
    int Release() override { return m_CHostWatcherType.ReleaseInstance(this); }
    void OnUpdate(CKWObservation* observation) override {
        m_seen.push_back(observation->GetType());
    }

    std::vector<IKWObjectType*> m_seen;
    static CHostWatcherType m_CHostWatcherType;

protected:
    CHostWatcher() = default;
};
CHostWatcher::CHostWatcherType CHostWatcher::m_CHostWatcherType;

// Records every node twice over: once as it is visited, once as the walk lists it.
class CHostCounter : public CKWDFSVisitor {
public:
    class CHostCounterType : public CKWObjectTypeImpl {
    public:
        CHostCounterType() {
            SetName("CHostCounter");
            SetClassName("CHostCounter");
            SetParentTypeID(CKWDFSVisitor::GetCKWDFSVisitorType()->GetID());
            SetID(kCounterTypeID);
        }

    protected:
        IKWObject* CTOR() override { return new CHostCounter; }
        void DTOR(IKWObject* object) override { delete object; }
    };

    IKWObjectType* GetType() override { return &m_CHostCounterType; }
    int Release() override { return m_CHostCounterType.ReleaseInstance(this); }
    int VisitNode(CKWGraphNode* node) override {
        ++m_iVisits;
        return CKWDFSVisitor::VisitNode(node);
    }

    int m_iVisits = 0;
    std::vector<CKWGraphNode*> m_listed;
    static CHostCounterType m_CHostCounterType;

protected:
    CHostCounter() = default;
    int AddToDFSList(CKWGraphNode* node) override {
        m_listed.push_back(node);
        return CKWDFSVisitor::AddToDFSList(node);
    }
};
CHostCounter::CHostCounterType CHostCounter::m_CHostCounterType;

// The host collects its types once they exist, as its start-up does.
class HostWrittenClasses : public ::testing::Test {
protected:
    void SetUp() override { CKWTypeSystem::Initialize(kHostRepositoryID); }
};

TEST_F(HostWrittenClasses, AnObjectClassIsMadeTrackedAndReleasedThroughItsType) {
    IKWObjectType* type = CKWTypeSystem::FindType(kShapeTypeID);
    ASSERT_EQ(type, CHostShape::GetCHostShapeType());
    EXPECT_EQ(type->GetParentType(), CKWObjectImpl::GetCKWObjectImplType());
    EXPECT_TRUE(type->GetRepositoryID().IsValid());  // collected, parent linked
    const CKWGuid id = CKWGuid::CreateNewGUID();
    auto* shape = dynamic_cast<CHostShape*>(type->CreateInstance(id));
    ASSERT_NE(shape, nullptr);
    EXPECT_TRUE(*shape == id);
    EXPECT_EQ(shape->IsTypeOf(kObjectImplTypeID), 1);
    EXPECT_EQ(shape->GetInterface(CKWGuid(IID_IKWObject)), static_cast<IKWObject*>(shape));
    std::list<CKWGuid> live;
    type->GetInstanceList(live);
    EXPECT_EQ(live, std::list<CKWGuid>{id});
    shape->m_bMayGo = false;
    EXPECT_EQ(shape->Release(), 0);
    shape->m_bMayGo = true;
    const int destroyed = s_iShapeDestructors;
    EXPECT_EQ(shape->Release(), 1);
    EXPECT_EQ(s_iShapeDestructors, destroyed + 1);  // the object's own destructor ran
    EXPECT_EQ(CHostShape::GetCHostShapeType()->GetInstanceCount(), 0);
}

TEST_F(HostWrittenClasses, ASerializableClassDeclaresItsFieldAndRoundTrips) {
    KWOwned<CMemArchive> archive(KWTestCreate<CMemArchive>(CMemArchive::GetCMemArchiveType()));
    ASSERT_TRUE(archive->Open(CKWArchive::modeWrite));
    CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
    auto* note = KWTestCreate<CHostNote>(CKWTypeSystem::FindType(kNoteTypeID));
    ASSERT_NE(note, nullptr);
    IKWFieldData* text = note->GetFieldData(kTextFieldID);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->SetValueFromString("remember the milk"), 1);
    EXPECT_EQ(std::string(note->m_Text), "remember the milk");
    ASSERT_EQ(note->SerializeTo(document), 1);
    const CKWGuid id = note->GetInstanceID();
    ASSERT_EQ(note->Release(), 1);
    auto* loaded = dynamic_cast<CHostNote*>(document->GetObjectA(kNoteTypeID, id));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(std::string(loaded->m_Text), "remember the milk");
    EXPECT_EQ(loaded->Release(), 1);
}

TEST_F(HostWrittenClasses, AnObserverOfAHostObservationTypeIsServed) {
    KWOwned<CKWToolEventRouter> router(
        KWTestCreate<CKWToolEventRouter>(CKWToolEventRouter::GetCKWToolEventRouterType()));
    KWOwned<CHostWatcher> watcher(
        KWTestCreate<CHostWatcher>(CKWTypeSystem::FindType(kWatcherTypeID)));
    ASSERT_NE(watcher, nullptr);
    ASSERT_EQ(router->AddObserver(watcher.get(), kAlarmTypeID), 1);
    EXPECT_EQ(router->GetObserver(kAlarmTypeID, watcher->GetInstanceID()), watcher.get());
    router->NotifyObservers(KWTestCreate<CKWObservation>(CKWTypeSystem::FindType(kAlarmTypeID)));
    router->NotifyObservers(KWTestCreate<CKWObservation>(CKWObservation::GetCKWObservationType()));
    EXPECT_EQ(watcher->m_seen, std::vector<IKWObjectType*>{&CHostAlarm::m_CHostAlarmType});
    EXPECT_EQ(CHostAlarm::m_CHostAlarmType.GetInstanceCount(), 0);  // released after delivery
    EXPECT_EQ(router->RemoveObserver(watcher.get(), kAlarmTypeID), 1);
}

TEST_F(HostWrittenClasses, AVisitorOverridesTheWalkAndItsList) {
    std::vector<CKWGraphNode*> chain = NewChain(3);
    KWOwned<CHostCounter> counter(
        KWTestCreate<CHostCounter>(CKWTypeSystem::FindType(kCounterTypeID)));
    ASSERT_NE(counter, nullptr);
    ASSERT_EQ(counter->Start(chain.front()), 1);
    EXPECT_EQ(counter->m_listed, chain);
    EXPECT_EQ(counter->m_iVisits, 3);
    EXPECT_EQ(counter->GetDFSNodeCollection()->GetCount(), 3);
    ASSERT_EQ(chain.front()->WasVisited(counter.get()), 1);
    for (CKWGraphNode* node : chain) {
        node->Release();
    }
}

}  // namespace
