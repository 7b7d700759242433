#include "CSamplePart.h"

KW_IMPLEMENT_SERIAL_TYPE(CSamplePart, kSamplePartTypeID, kSerialObjectTypeID)
KW_BEGIN_FIELDS(CSamplePart)
KW_FIELD(m_Name, kNameFieldID, kTextTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iCount, kCountFieldID, kIntTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Tag, kTagFieldID, kGuidTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pLink, kLinkFieldID, kSamplePartTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Links, kLinksFieldID, kSamplePartTypeID, KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

KW_IMPLEMENT_SERIAL_TYPE(CSampleAssembly, kSampleAssemblyTypeID, kSamplePartTypeID)
KW_BEGIN_FIELDS(CSampleAssembly)
KW_FIELD(m_LinkMap, kLinkMapFieldID, kSamplePartTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_LoadOnly, kLoadOnlyFieldID, kTextTypeID, KW_FIELD_LOAD)
KW_FIELD(m_SaveOnly, kSaveOnlyFieldID, kTextTypeID, KW_FIELD_SAVE)
KW_END_FIELDS()

bool CSamplePart::s_bRecordCalls = false;

int CSamplePart::OnBeforeSave(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) {
    return RecordHook("BeforeSave");
}

void CSamplePart::OnAfterSave(CKWDocument*) {
    RecordHook("AfterSave");
}

int CSamplePart::OnBeforeLoad(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) {
    return RecordHook("BeforeLoad");
}

void CSamplePart::OnAfterLoad(CKWDocument*) {
    RecordHook("AfterLoad");
}

int CSamplePart::OnBeforeFieldChanged(IKWFieldData*, CString&) {
    return m_bRefuseChanges ? 0 : 1;
}

void CSamplePart::OnAfterFieldChanged(IKWFieldData* data) {
    if (s_bRecordCalls) {
        m_changedFields.push_back(data);
    }
}

void CSamplePart::OnAfterCheckboxChanged(IKWFieldData*, int checked) {
    if (s_bRecordCalls) {
        m_checkboxChanges.push_back(checked);
    }
}

int CSamplePart::RecordHook(const char* name) {
    if (s_bRecordCalls) {
        m_hookCalls.push_back(name);
    }
    return 1;
}

namespace {
const SCollectTypes s_collectSampleTypes(kKWTestRepositoryID);
}  // namespace
