#include "CExamplePart.h"

namespace {
// The GUIDs of the value types: the host names each kind of value once.
const char kTextTypeID[] = "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}";
const char kIntTypeID[] = "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}";
const char kGuidTypeID[] = "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}";
const char kPartTypeID[] = "{4D0F275B-DC06-424B-BE3F-BD41602D0635}";
}  // namespace

// The type GUID of CExamplePart, then its parent's: CKWSerialObject.
KW_IMPLEMENT_SERIAL_TYPE(CExamplePart, kPartTypeID, "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CExamplePart)
KW_FIELD(m_Name, "{99DE55A9-4807-43D6-A9B4-07062B2D87D6}", kTextTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iQuantity, "{E18A64DC-FC51-4760-9B45-3CCFB747F4CD}", kIntTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_PartNumber, "{743BBE75-8E8F-4BED-82D2-2EF21FC92973}", kGuidTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pParent, "{726C3938-15C1-4D64-B490-C3344236DE59}", kPartTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Children, "{DB7122DF-1511-443B-9CA5-97619AEC8829}", kPartTypeID, KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

std::string CExamplePart::DescribeTree(int depth) const {
    CString line;
    line.Format("%*s%s x%d, part number %s, id %s, in %s\n", depth * 2, "",
                static_cast<const char*>(m_Name), m_iQuantity,
                static_cast<const char*>(m_PartNumber.GetCString()),
                static_cast<const char*>(GetInstanceID().GetCString()),
                m_pParent ? static_cast<const char*>(m_pParent->m_Name) : "nothing");
    std::string text = line.GetStdString();
    for (const CExamplePart* child : m_Children) {
        text += child->DescribeTree(depth + 1);
    }
    return text;
}

void ReleasePartTree(CExamplePart* part) {
    if (!part) {
        return;
    }
    for (CExamplePart* child : part->m_Children) {
        ReleasePartTree(child);
    }
    part->Release();
}
