#include "DemoModel.h"

#include <list>

#include "kwcore/object/CKWObjectTypeImpl.h"

namespace {
// The value types of the fields, as the library's tests and benchmarks name them.
const char kTextTypeID[] = "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}";
const char kIntTypeID[] = "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}";
const char kGuidTypeID[] = "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}";
const char kDemoPartTypeID[] = "{CC17BD83-1119-407C-BD25-F0A4E512CE6E}";
const char kSerialObjectTypeID[] = "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}";

// Materials of a made-up catalogue.
const char kSteel[] = "{5627A971-5FF8-47AB-AA1C-D1248202D122}";
const char kRubber[] = "{AD8FBA3E-94B6-4E60-8770-A95E240E64AF}";

template <class T>
T* MakeObject(IKWObjectType* type, const char* instanceID) {
    return dynamic_cast<T*>(type->CreateInstance(CKWGuid(instanceID)));
}

std::string Id(const CKWObjectImpl* object) {
    return object ? object->GetInstanceID().GetCStringUpperCase().GetStdString() : "none";
}

std::string Ids(const CKWObjPtrList<CDemoPart>& parts) {
    std::string text = "[";
    for (const CDemoPart* part : parts) {
        text += (text.size() > 1 ? " " : "") + Id(part);
    }
    return text + "]";
}

std::string DescribePart(const CDemoPart* part) {
    return "CDemoPart " + Id(part) + " m_Name=\"" + part->m_Name.GetStdString() +
           "\" m_iQuantity=" + std::to_string(part->m_iQuantity) +
           " m_Material=" + part->m_Material.GetCStringUpperCase().GetStdString() +
           " m_pAssembly=" + Id(part->m_pAssembly) + " m_Connected=" + Ids(part->m_Connected) +
           "\n";
}

}  // namespace

KW_IMPLEMENT_SERIAL_TYPE(CDemoPart, kDemoPartTypeID, kSerialObjectTypeID)
KW_BEGIN_FIELDS(CDemoPart)
KW_FIELD(m_Name, "{935A4C1D-A514-4E0E-8531-2E1C82A6EEC5}", kTextTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iQuantity, "{F962E70A-BC0C-4926-9248-315309E57F5C}", kIntTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Material, "{A677D66F-2D79-4C8B-9FB7-DB70FE4D9A45}", kGuidTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pAssembly, "{79081AB4-FEE3-4706-9629-A39580E5920A}", kwDemoModel::kAssemblyTypeID,
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Connected, "{AA0F8E69-A86B-4984-9019-694BE52A6720}", kDemoPartTypeID, KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

KW_IMPLEMENT_SERIAL_TYPE(CDemoAssembly, kwDemoModel::kAssemblyTypeID, kSerialObjectTypeID)
KW_BEGIN_FIELDS(CDemoAssembly)
KW_FIELD(m_Name, "{D6D9BA3D-E8A8-4A2B-83BA-7134F37BB880}", kTextTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iRevision, "{7B1824CC-ED4E-41D4-997F-47D8B7CC9E9A}", kIntTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pMainPart, "{6B05B87B-46CB-4C2A-9896-AF3C927E6CE5}", kDemoPartTypeID, KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Parts, "{0CB6DD2A-2E0F-4488-BE52-C4675606B930}", kDemoPartTypeID, KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

namespace kwDemoModel {

CDemoAssembly* Make() {
    auto* bicycle =
        MakeObject<CDemoAssembly>(CDemoAssembly::GetCDemoAssemblyType(), kwDemoModel::kAssemblyID);
    IKWObjectType* partType = CDemoPart::GetCDemoPartType();
    auto* frame = MakeObject<CDemoPart>(partType, "{2BF21107-9A94-445C-9B33-B3B082AAA752}");
    auto* wheel = MakeObject<CDemoPart>(partType, "{7EBABE6D-3AE0-4915-82E8-4E413F83412C}");
    auto* chain = MakeObject<CDemoPart>(partType, "{68C0528D-EED8-4225-AF99-82C2A44B186E}");
    if (!bicycle || !frame || !wheel || !chain) {
        ReleaseObjects();
        return nullptr;
    }
    bicycle->m_Name = "Roadster \"28\"";
    bicycle->m_iRevision = 3;
    bicycle->m_pMainPart = frame;
    struct {
        CDemoPart* part;
        const char* name;
        int quantity;
        const char* material;
    } const parts[] = {
        {frame, "frame", 1, kSteel}, {wheel, "wheel", 2, kRubber}, {chain, "chain", 1, kSteel}};
    for (const auto& each : parts) {
        each.part->m_Name = each.name;
        each.part->m_iQuantity = each.quantity;
        each.part->m_Material = CKWGuid(each.material);
        each.part->m_pAssembly = bicycle;
        bicycle->m_Parts.Add(each.part);
    }
    wheel->m_Connected.Add(frame);
    chain->m_Connected.Add(wheel);
    chain->m_Connected.Add(frame);
    return bicycle;
}

std::string Describe(const CDemoAssembly* assembly) {
    if (!assembly) {
        return "no assembly\n";
    }
    std::string text =
        "CDemoAssembly " + Id(assembly) + " m_Name=\"" + assembly->m_Name.GetStdString() +
        "\" m_iRevision=" + std::to_string(assembly->m_iRevision) +
        " m_pMainPart=" + Id(assembly->m_pMainPart) + " m_Parts=" + Ids(assembly->m_Parts) + "\n";
    for (const CDemoPart* part : assembly->m_Parts) {
        text += DescribePart(part);
    }
    return text;
}

int CountObjects() {
    return CDemoAssembly::GetCDemoAssemblyType()->GetInstanceCount() +
           CDemoPart::GetCDemoPartType()->GetInstanceCount();
}

void ReleaseObjects() {
    CDemoAssembly::GetCDemoAssemblyType()->ReleaseInstances();
    CDemoPart::GetCDemoPartType()->ReleaseInstances();
}

}  // namespace kwDemoModel
