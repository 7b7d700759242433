#include "kwcore/serial/IKWSerializableAdaptor.h"

#include "KWFieldFlags.h"
#include "KWGraphSerialization.h"
#include "KWStoredHierarchy.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"

int KWSaveLinkedObject(IKWFieldStream* stream, IKWObject* object) {
    if (!object) {
        return 1;
    }
    return stream ? kwGraphSerialization::SaveLinkedObject(stream, object) : 0;
}

int IKWSerializableAdaptor::AddFieldData(IKWFieldData* fieldData) {
    if (!fieldData) {
        return 0;
    }
    IKWField* field = fieldData->GetField();
    if (field && GetFieldData(field->GetFieldID())) {
        return 0;
    }
    m_fieldData.push_back(fieldData);
    return 1;
}

IKWFieldData* IKWSerializableAdaptor::GetFieldData(CKWGuid fieldID) {
    for (IKWFieldData* data : m_fieldData) {
        if (data->HasFieldDataImplTypeOf(fieldID)) {
            return data;
        }
    }
    return nullptr;
}

void IKWSerializableAdaptor::ReleaseFieldData() {
    for (IKWFieldData* data : m_fieldData) {
        data->Release(true);
    }
    m_fieldData.clear();
}

// Saves the object and, through its links, the graph behind it; the links
// are followed from a work list, not by recursion (KWGraphSerialization.h).
int IKWSerializableAdaptor::SerializeTo(CKWDocument* document) {
    return kwGraphSerialization::SaveGraph(document, this);
}

int IKWSerializableAdaptor::SerializeFrom(CKWDocument* document, CKWTypeManifest* manifest,
                                          IKWFieldStream* stream) {
    IKWObject* object = GetThisObject();
    IKWObjectType* type = object ? object->GetType() : nullptr;
    if (!document || !type) {
        return 0;
    }
    if (!manifest) {
        manifest = kwStoredHierarchy::FindTypeManifest(document, type->GetID());
    }
    if (!stream && manifest) {
        stream = kwStoredHierarchy::FindFieldStream(manifest, object->GetInstanceID());
    }
    if (!manifest || !stream) {
        return 0;
    }
    return kwGraphSerialization::LoadGraph(document, this, manifest, stream);
}

void IKWSerializableAdaptor::SetParentField(IKWFieldData* parent) {
    for (IKWFieldData* data : m_fieldData) {
        data->SetParentField(parent);
    }
}

int IKWSerializableAdaptor::InitFieldData() {
    IKWObject* object = GetThisObject();
    auto* type = object ? dynamic_cast<CKWSerialObjectTypeImpl*>(object->GetType()) : nullptr;
    if (!type) {
        return 0;
    }
    ReleaseFieldData();
    type->CreateFields(type, object);
    return 1;
}

int IKWSerializableAdaptor::SerializeFieldDataFrom(IKWFieldStream* stream) {
    for (IKWFieldData* data : m_fieldData) {
        if (kwFieldFlags::ReadOnLoad(data) && !data->SerializeFrom(stream)) {
            return 0;
        }
    }
    return 1;
}

int IKWSerializableAdaptor::SerializeFieldDataTo(IKWFieldStream* stream) {
    for (IKWFieldData* data : m_fieldData) {
        if (kwFieldFlags::WrittenOnSave(data) && !data->SerializeTo(stream)) {
            return 0;
        }
    }
    return 1;
}

int IKWSerializableAdaptor::CloneFieldData(IKWSerializableAdaptor* other) {
    if (!other) {
        return 0;
    }
    int all = 1;
    for (IKWFieldData* data : m_fieldData) {
        IKWField* field = data->GetField();
        IKWFieldData* source = field ? other->GetFieldData(field->GetFieldID()) : nullptr;
        if (source) {
            all &= data->SetTo(source) ? 1 : 0;
        }
    }
    return all;
}
