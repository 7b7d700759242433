// Models and views, and the types of this family.
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

TEST(FrameworkTypes, AreRegisteredUnderTheirNamesAndParents) {
    const char* kObservable = "{D265DD01-767A-4ACB-BCF6-02720CB234E1}";
    const char* kObserver = "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}";
    const char* kObservation = "{060C1069-68A0-400F-B3F4-45E9A33A1204}";
    const char* kModel = "{A0220F9B-B946-4ACF-B582-B9BE858A07D6}";
    const char* kTool = "{45AE9A00-017B-4CEF-8CE5-FD6802B90C83}";
    ASSERT_NO_FATAL_FAILURE(ExpectLibraryTypes({
        {kObservable, "CKWObservable", kObjectImplTypeID, 0},
        {kObserver, "CKWObserver", kObjectImplTypeID, 0},
        {kObservation, "CKWObservation", kObjectImplTypeID, 0},
        {"{D8D3E17D-9A46-4602-B39B-C4FD95399463}", "CKWObserverAdapter", kObserver, 0},
        {"{DCC62E4B-249A-470F-87E1-DEB9E4E976DD}", "CKWView", kObserver, 0},
        {kModel, "CKWModel", kObservable, 1},
        {"{AEE77D3B-F748-4C02-AEFE-53E785C7142F}", "CKWModelVoid", kModel, 0},
        {kTool, "Tool", "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}", 0},
        {"{2693E4BF-CD4A-4D2F-9722-3CD885AF66AC}", "CKWToolEvent", kObservation, 0},
        {"{66D6E4CF-D167-4B40-89F0-8467A4961A4B}", "CKWFocusEvent", kObservation, 0},
        {"{89C55D8F-1380-41E3-8A0C-245E1E4778D5}", "CKWToolEventRouter", kObservable, 0},
    }));
    // Only the tool's own type is renamed; its class name stays.
    EXPECT_EQ(std::string(CKWTool::GetCKWToolType()->GetDescription()), "A Tool");
    EXPECT_EQ(std::string(CKWTool::GetCKWToolType()->GetClassNameA()), "CKWTool");
    EXPECT_EQ(CKWModel::GetCKWModelType()->CreateInstance(CKWGuid()), nullptr);
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
    EXPECT_EQ(m_pModel->AddView(m_pView), 1);
    EXPECT_EQ(m_pModel->AddView(m_pView), 0);
    EXPECT_EQ(m_pModel->AddView(nullptr), 0);
    auto* derived = KWTestCreate<CObservationC>(CObservationC::GetCObservationCType());
    auto* plain = KWTestCreate<CKWObservation>(CKWObservation::GetCKWObservationType());
    m_pModel->NotifyObservers(derived);
    m_pModel->NotifyObservers(plain);
    EXPECT_EQ(m_pView->m_received, (std::vector<CKWObservation*>{derived, plain}));

    // GetView finds views only; RemoveView takes them out.
    m_pModel->AddObserver(m_pObserver, kBase);
    EXPECT_EQ(m_pModel->GetView(m_pView->GetInstanceID()), m_pView);
    EXPECT_EQ(m_pModel->GetView(m_pObserver->GetInstanceID()), nullptr);
    EXPECT_EQ(m_pModel->GetView(CKWGuid::CreateNewGUID()), nullptr);

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
