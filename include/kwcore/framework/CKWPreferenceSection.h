// CKWPreferenceSection: a named group of preferences.
//
// Carries a name and a description, both fields ("Name", "Description") and
// both "A Preference Section" when new. Applications derive their own
// sections from it and add fields for their settings; a CKWPreferences set
// holds the sections and saves them with it.
//
//   section->m_Name = "Display";
//   preferences->AddSection(section);
#pragma once

#include "kwcore/serial/CKWSerialObject.h"

class KWCORE_API CKWPreferenceSection : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CKWPreferenceSection)

public:
    CString m_Name;
    CString m_Description;

protected:
    CKWPreferenceSection() = default;

    int OnInitialize() override;
};
