#include "kwcore/framework/CKWPreferenceSection.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWPreferenceSection, "{7AB10E7B-907C-4EA3-88F8-8415EA83CBA4}",
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CKWPreferenceSection)
KW_FIELD_NAMED(m_Name, "Name", "The name of this Preference Section",
               "{FCB6CEF7-3A8C-4CD8-A1F8-77DDCFF0C92E}", "{9FD8ACE1-6007-4A97-BB0A-01A0E7999305}",
               KW_FIELD_LOAD_SAVE)
KW_FIELD_NAMED(m_Description, "Description", "The description of this Preference Section",
               "{4BE98F65-D593-4411-8A56-F0E62A554F5C}", "{9FD8ACE1-6007-4A97-BB0A-01A0E7999305}",
               KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

namespace {
const char kNewSectionText[] = "A Preference Section";
}

int CKWPreferenceSection::OnInitialize() {
    if (!CKWSerialObject::OnInitialize()) {
        return 0;
    }
    m_Name = kNewSectionText;
    m_Description = kNewSectionText;
    return 1;
}
