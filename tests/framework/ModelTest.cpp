// Models and views; the framework's types and their fields.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FrameworkTestTypes.h"
#include "LibraryTypes.h"
#include "kwcore/framework/CKWModelVoid.h"
#include "kwcore/framework/CKWTool.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"

#include "kwcore/Config.h"

#if KWCORE_HAS_XML
#include "CTempFolder.h"
#include "XmlArchiveFiles.h"
#endif

namespace {

const CKWGuid kBase(KW_BASE_OBSERVATION_TYPE_ID);
const char* const kGraphNodeTypeID = "{4E82A8F0-B483-47FE-BE4A-2C72C1A39F63}";
const char* const kGraphEdgeTypeID = "{48F087FA-103C-4BB3-8197-06B52EEA4757}";
const char* const kPreferencesTypeID = "{AC17C815-DA6A-4DFE-A383-99CFA70517B3}";
const char* const kSectionTypeID = "{7AB10E7B-907C-4EA3-88F8-8415EA83CBA4}";

TEST(FrameworkTypes, AreRegisteredUnderTheirNamesAndParents) {
    const char* kObservable = "{D265DD01-767A-4ACB-BCF6-02720CB234E1}";
    const char* kObserver = "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}";
    const char* kObservation = "{060C1069-68A0-400F-B3F4-45E9A33A1204}";
    const char* kModel = "{A0220F9B-B946-4ACF-B582-B9BE858A07D6}";
    const char* kTool = "{45AE9A00-017B-4CEF-8CE5-FD6802B90C83}";
    const char* kVisitor = "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}";
    const char* kDFSVisitor = "{797F206F-C5AD-4521-AD2F-64064A981555}";
    ASSERT_NO_FATAL_FAILURE(ExpectLibraryTypes({
        {kObservable, "CKWObservable", kObjectImplTypeID, 1},
        {kObserver, "CKWObserver", kObjectImplTypeID, 1},
        {kObservation, "CKWObservation", kObjectImplTypeID, 0},
        {"{D8D3E17D-9A46-4602-B39B-C4FD95399463}", "CKWObserverAdapter", kObserver, 0},
        {"{DCC62E4B-249A-470F-87E1-DEB9E4E976DD}", "CKWView", kObserver, 1},
        {kModel, "CKWModel", kObservable, 1},
        {"{AEE77D3B-F748-4C02-AEFE-53E785C7142F}", "CKWModelVoid", kModel, 0},
        {kTool, "Tool", kSerialObjectTypeID, 0},
        {"{2693E4BF-CD4A-4D2F-9722-3CD885AF66AC}", "CKWToolEvent", kObservation, 0},
        {"{66D6E4CF-D167-4B40-89F0-8467A4961A4B}", "CKWFocusEvent", kObservation, 0},
        {"{89C55D8F-1380-41E3-8A0C-245E1E4778D5}", "CKWToolEventRouter", kObservable, 0},
        {kGraphNodeTypeID, "CKWGraphNode", kSerialObjectTypeID, 0},
        {kGraphEdgeTypeID, "CKWGraphEdge", kSerialObjectTypeID, 0},
        {kVisitor, "CKWGraphNodeVisitorImpl", kObjectImplTypeID, 1},
        {kDFSVisitor, "CKWDFSVisitor", kVisitor, 0},
        {"{64DAD3B7-DA58-45BC-BADD-FD31CB388093}", "CKWReleaseVisitor", kDFSVisitor, 0},
        {"{BD386A1D-1C52-4A9C-A66F-B563BBCC61B1}", "CKWFilteredDFSVisitor", kDFSVisitor, 0},
        {kPreferencesTypeID, "CKWPreferences", kSerialObjectTypeID, 0},
        {kSectionTypeID, "CKWPreferenceSection", kSerialObjectTypeID, 0},
    }));
    // Only the tool's own type is renamed; its class name stays.
    EXPECT_EQ(std::string(CKWTool::GetCKWToolType()->GetDescription()), "A Tool");
    EXPECT_EQ(std::string(CKWTool::GetCKWToolType()->GetClassNameA()), "CKWTool");
}

TEST(FrameworkTypes, StoreTheirLinksAndNamesInTheseFields) {
    const char* kLinks = "{95C92BDC-00F3-4E4E-8BE8-7AAFAA2DC3EB}";
    const char* kNodeLink = "{A629E578-AB5F-4698-818A-C26C47FF59E6}";
    const char* kText = "{9FD8ACE1-6007-4A97-BB0A-01A0E7999305}";
    ASSERT_NO_FATAL_FAILURE(ExpectLibraryFields({
        {kGraphNodeTypeID, "{BC46ABAF-175D-4139-9B08-1B063477ADDE}", "m_EdgeList", "m_EdgeList",
         kLinks},
        {kGraphEdgeTypeID, "{1212F592-7438-407d-8ACB-7A5E5B7AC239}", "m_pPrimaryNode",
         "m_pPrimaryNode", kNodeLink},
        {kGraphEdgeTypeID, "{6DAE28D0-BFB9-4421-B142-F5671EF3A55A}", "m_pSecondaryNode",
         "m_pSecondaryNode", kNodeLink},
        {kPreferencesTypeID, "{63E0D0E3-3024-4831-9C71-FDACA82F6FA4}", "m_PreferenceSectionMap",
         "m_PreferenceSectionMap", kLinks},
        {kSectionTypeID, "{FCB6CEF7-3A8C-4CD8-A1F8-77DDCFF0C92E}", "Name",
         "The name of this Preference Section", kText},
        {kSectionTypeID, "{4BE98F65-D593-4411-8A56-F0E62A554F5C}", "Description",
         "The description of this Preference Section", kText},
    }));
}

class ModelTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_pModel = KWTestCreate<CKWModelVoid>(CKWModelVoid::GetCKWModelVoidType());
        m_pView = KWTestCreate<CRecordingView>(CRecordingView::GetCRecordingViewType());
        m_pObserver =
            KWTestCreate<CRecordingObserver>(CRecordingObserver::GetCRecordingObserverType());
        ASSERT_TRUE(m_pModel && m_pView && m_pObserver);
    }
    void TearDown() override {
        EXPECT_EQ(m_pModel->Release(), 1);
        m_pView->Release();
        m_pObserver->Release();
    }

    CKWModelVoid* m_pModel = nullptr;
    CRecordingView* m_pView = nullptr;
    CRecordingObserver* m_pObserver = nullptr;
};

TEST_F(ModelTest, ViewsReceiveEveryObservationAndAreFoundAndRemovedByID) {
    EXPECT_EQ((std::vector<int>{m_pModel->AddView(m_pView), m_pModel->AddView(m_pView),
                                m_pModel->AddView(nullptr)}),
              (std::vector<int>{1, 0, 0}));
    auto* derived = KWTestCreate<CObservationC>(CObservationC::GetCObservationCType());
    auto* plain = KWTestCreate<CKWObservation>(CKWObservation::GetCKWObservationType());
    m_pModel->NotifyObservers(derived);
    m_pModel->NotifyObservers(plain);
    EXPECT_EQ(m_pView->m_received, (std::vector<CKWObservation*>{derived, plain}));

    // GetView finds views only; RemoveView takes them out.
    m_pModel->AddObserver(m_pObserver, kBase);
    EXPECT_EQ((std::vector<CKWView*>{m_pModel->GetView(m_pView->GetInstanceID()),
                                     m_pModel->GetView(m_pObserver->GetInstanceID()),
                                     m_pModel->GetView(CKWGuid::CreateNewGUID())}),
              (std::vector<CKWView*>{m_pView, nullptr, nullptr}));

    EXPECT_EQ(m_pModel->RemoveView(CKWGuid::CreateNewGUID()), 1);
    EXPECT_EQ(m_pModel->RemoveView(m_pView->GetInstanceID()), 1);
    EXPECT_EQ(m_pModel->GetView(m_pView->GetInstanceID()), nullptr);
    EXPECT_EQ(m_pModel->GetObserverCount(kBase), 1);
}

TEST_F(ModelTest, IsSerializableThroughItsAdaptor) {
    auto* adaptor = static_cast<IKWSerializableAdaptor*>(
        m_pModel->GetInterface(CKWGuid(IID_IKWSerializableAdaptor)));
    ASSERT_NE(adaptor, nullptr);
    EXPECT_EQ(adaptor->GetThisObject(), static_cast<IKWObject*>(m_pModel));
    EXPECT_EQ(adaptor->InitFieldData(), 1);
    EXPECT_TRUE(adaptor->GetFieldDataList().empty());
    EXPECT_EQ(m_pModel->GetInterface(CKWGuid(IID_IKWObject)), static_cast<IKWObject*>(m_pModel));
    EXPECT_EQ(m_pModel->GetInterface(CKWGuid::CreateNewGUID()), nullptr);
}

#if KWCORE_HAS_XML
TEST_F(ModelTest, SavesToAnArchiveAndLoadsBackUnderItsID) {
    const CTempFolder folder("kwcore-model-");
    const std::filesystem::path file = folder.GetPath() / "model.xml";
    ASSERT_EQ(SaveXmlFile(file, m_pModel), 1);
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
    ASSERT_TRUE(archive->Open(CKWArchive::modeRead));
    ASSERT_NE(FirstXmlDocument(archive.get()), nullptr);
    IKWObject* loaded = LoadFromFirstDocument(
        archive.get(), CKWModelVoid::GetCKWModelVoidType()->GetID(), m_pModel->GetInstanceID());
    archive->Close();
    ASSERT_NE(loaded, nullptr);
    EXPECT_NE(loaded, static_cast<IKWObject*>(m_pModel));
    EXPECT_NE(dynamic_cast<CKWModelVoid*>(loaded), nullptr);
    EXPECT_EQ(loaded->Release(), 1);
}
#endif

}  // namespace
