#include "kwcore/framework/CKWPreferences.h"

#include "kwcore/object/IKWObjectType.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWPreferences, "{AC17C815-DA6A-4DFE-A383-99CFA70517B3}",
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CKWPreferences)
KW_FIELD(m_PreferenceSectionMap, "{63E0D0E3-3024-4831-9C71-FDACA82F6FA4}",
         "{95C92BDC-00F3-4E4E-8BE8-7AAFAA2DC3EB}", KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

CKWPreferenceSection* CKWPreferences::FindSection(const CString& name) const {
    for (const auto& entry : m_PreferenceSectionMap.GetMap()) {
        if (entry.second && entry.second->m_Name == name) {
            return entry.second;
        }
    }
    return nullptr;
}

int CKWPreferences::AddSection(CKWPreferenceSection* section) {
    return m_PreferenceSectionMap.Add(section);
}

CKWPreferenceSection* CKWPreferences::AddNewSection(const CString& name, IKWObjectType* type) {
    if (!type) {
        type = CKWPreferenceSection::GetCKWPreferenceSectionType();
    }
    IKWObject* object = type->CreateInstance(CKWGuid());
    auto* section = dynamic_cast<CKWPreferenceSection*>(object);
    if (!section) {
        if (object) {
            object->Release();
        }
        return nullptr;
    }
    section->m_Name = name;
    if (!AddSection(section)) {
        section->Release();
        return nullptr;
    }
    return section;
}

int CKWPreferences::RemoveSection(CKWPreferenceSection* section) {
    if (!section || m_PreferenceSectionMap.FindObject(section->GetInstanceID()) != section) {
        return 0;
    }
    return m_PreferenceSectionMap.Remove(section);
}

int CKWPreferences::OnBeforeRelease() {
    m_PreferenceSectionMap.ReleaseAll();
    return CKWSerialObject::OnBeforeRelease();
}
