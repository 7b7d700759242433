#include "kwcore/serial/CKWSerialObjectTypeImpl.h"

#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/IKWFieldData.h"

CKWSerialObjectTypeImpl::~CKWSerialObjectTypeImpl() {
    ReleaseFields();
}

int CKWSerialObjectTypeImpl::AddField(IKWField* field) {
    if (!field || !field->GetFieldID().IsValid() ||
        !m_fieldsByID.emplace(field->GetFieldID(), field).second) {
        return 0;
    }
    m_fields.push_back(field);
    return 1;
}

// A table is built once for itself, but every derived table asks again: each
// table holds its own copies of the base classes' fields.
void CKWSerialObjectTypeImpl::CreateFields(CKWSerialObjectTypeImpl* type, IKWObject* object) {
    if (!type) {
        return;
    }
    if (object) {
        type->BindFieldData(object);
        return;
    }
    if (type == this) {
        if (m_bFieldsBuilt) {
            return;
        }
        m_bFieldsBuilt = true;
    }
    AppendBaseFields(type, nullptr);
    DeclareFields(type);
}

// The parent is looked up by ID as well: a table may be built before the
// types are linked (an instance made ahead of Initialize).
void CKWSerialObjectTypeImpl::AppendBaseFields(CKWSerialObjectTypeImpl* type, IKWObject* object) {
    if (object) {
        return;  // an object's field data come from its own table, which holds the base fields
    }
    IKWObjectType* parent = GetParentType();
    if (!parent) {
        parent = CKWTypeSystem::FindType(GetParentTypeID());
    }
    auto* base = dynamic_cast<CKWSerialObjectTypeImpl*>(parent);
    if (base && base != this) {
        base->CreateFields(type, nullptr);
    }
}

void CKWSerialObjectTypeImpl::DeclareFields(CKWSerialObjectTypeImpl*) {}

IKWField* CKWSerialObjectTypeImpl::GetField(CKWGuid fieldID) {
    auto found = m_fieldsByID.find(fieldID);
    return found == m_fieldsByID.end() ? nullptr : found->second;
}

CString CKWSerialObjectTypeImpl::GetNextInstanceName() {
    CString name;
    name.Format("%s%d", static_cast<const char*>(GetName()), ++m_iInstanceCounter);
    return name;
}

CString CKWSerialObjectTypeImpl::GetHelp() {
    return m_bHelp ? GetName() : CString();
}

void CKWSerialObjectTypeImpl::Release() {
    CKWObjectTypeImpl::Release();
    ReleaseFields();
}

void CKWSerialObjectTypeImpl::BindFieldData(IKWObject* object) {
    auto* serial = dynamic_cast<CKWSerialObject*>(object);
    if (!serial) {
        return;
    }
    CreateFields(this, nullptr);
    for (IKWField* field : m_fields) {
        IKWFieldData* data = field->CreateFieldData(serial);
        if (data && !serial->AddFieldData(data)) {
            data->Release(true);
        }
    }
}

void CKWSerialObjectTypeImpl::ReleaseFields() {
    for (IKWField* field : m_fields) {
        field->Release();
    }
    m_fields.clear();
    m_fieldsByID.clear();
    m_bFieldsBuilt = false;
}
