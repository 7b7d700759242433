// CKWPreferences: a set of preference sections, keyed by instance ID.
//
// The set owns its sections: AddSection hands a section over, releasing the
// set releases them, and RemoveSection hands one back. The section map is a
// field of links, so saving the set saves every section as an object of its
// own and loading it back restores them.
//
//   CKWPreferenceSection* display = preferences->AddNewSection("Display");
//   CKWPreferenceSection* same = preferences->FindSection("Display");
#pragma once

#include "kwcore/framework/CKWPreferenceSection.h"
#include "kwcore/object/CKWObjGuidPtrMap.h"

class KWCORE_API CKWPreferences : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CKWPreferences)

public:
    // The first section, in instance-ID order, with that name; or null.
    CKWPreferenceSection* FindSection(const CString& name) const;
    CKWPreferenceSection* GetSection(const CKWGuid& instanceID) const {
        return m_PreferenceSectionMap.FindObject(instanceID);
    }
    int GetSectionCount() const { return m_PreferenceSectionMap.GetCount(); }
    // Takes the section over; 0 for null or a section (or ID) already held.
    int AddSection(CKWPreferenceSection* section);
    // Makes a section of type (CKWPreferenceSection's when null, which must
    // derive from it), names it and adds it; null when it cannot.
    CKWPreferenceSection* AddNewSection(const CString& name, IKWObjectType* type = nullptr);
    // Hands the section back to the caller; 0 when the set does not hold it.
    int RemoveSection(CKWPreferenceSection* section);
    CKWObjGuidPtrMap<CKWPreferenceSection>::Iterator GetSectionIterator() const {
        return m_PreferenceSectionMap.GetIterator();
    }

    CKWObjGuidPtrMap<CKWPreferenceSection> m_PreferenceSectionMap;

protected:
    CKWPreferences() = default;

    int OnBeforeRelease() override;
};
