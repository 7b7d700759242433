#include "kwcore/serial/IKWSerializableAdaptor.h"

#include "KWSerialRoads.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"

namespace {

int FieldFlags(IKWFieldData* data) {
    IKWField* field = data->GetField();
    return field ? field->GetFlags() : 0;
}

CKWTypeManifest* ManifestForSave(CKWDocument* document, IKWObjectType* type) {
    CKWTypeManifest* manifest = KWFindManifest(document, type->GetID());
    return manifest ? manifest : document->CreateTypeManifest(type->GetID(), nullptr);
}

IKWFieldStream* StreamForSave(CKWTypeManifest* manifest, const CKWGuid& instanceID) {
    if (IKWFieldStream* stream = KWFindStream(manifest, instanceID)) {
        return stream;
    }
    CKWFieldStream* created = manifest->CreateFieldStream(instanceID, nullptr);
    return created ? static_cast<IKWFieldStream*>(created->GetInterface(IID_IKWFieldStream))
                   : nullptr;
}

}  // namespace

int KWSaveLinkedObject(IKWFieldStream* stream, IKWObject* object) {
    if (!object) {
        return 1;
    }
    auto* adaptor =
        static_cast<IKWSerializableAdaptor*>(object->GetInterface(IID_IKWSerializableAdaptor));
    return adaptor ? adaptor->SerializeTo(stream->GetDocument()) : 1;
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

IKWFieldData* IKWSerializableAdaptor::GetFieldData(const CKWGuid& fieldID) {
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

// The object is marked as written before its fields are, so a link cycle back
// to it ends at the session check instead of writing it again.
int IKWSerializableAdaptor::SerializeTo(CKWDocument* document) {
    IKWObject* object = GetThisObject();
    IKWObjectType* type = object ? object->GetType() : nullptr;
    if (!document || !type) {
        return 0;
    }
    CKWTypeManifest* manifest = ManifestForSave(document, type);
    if (!manifest) {
        return 0;
    }
    if (!manifest->TypeHeaderIsWritten()) {
        manifest->WriteTypeHeader(type);
    }
    IKWFieldStream* stream = StreamForSave(manifest, object->GetInstanceID());
    if (!stream) {
        return 0;
    }
    const CKWGuid session = document->GetSerialSessionID();
    if (stream->ObjectHasBeenSerialized(session)) {
        return 1;
    }
    OnBeforeSave(document, manifest, stream);
    if (!stream->WriteObjectHeader(object)) {
        return 0;
    }
    stream->SetObjectSerialized(session);
    if (!SerializeFieldDataTo(stream)) {
        return 0;
    }
    OnAfterSave(document);
    return 1;
}

int IKWSerializableAdaptor::SerializeFrom(CKWDocument* document, CKWTypeManifest* manifest,
                                          IKWFieldStream* stream) {
    IKWObject* object = GetThisObject();
    IKWObjectType* type = object ? object->GetType() : nullptr;
    if (!document || !type) {
        return 0;
    }
    if (!manifest) {
        manifest = KWFindManifest(document, type->GetID());
    }
    if (!stream && manifest) {
        stream = KWFindStream(manifest, object->GetInstanceID());
    }
    if (!manifest || !stream) {
        return 0;
    }
    return ReadFrom(document, manifest, stream);
}

int IKWSerializableAdaptor::ReadFrom(CKWDocument* document, CKWTypeManifest* manifest,
                                     IKWFieldStream* stream) {
    const CKWGuid session = document->GetSerialSessionID();
    if (stream->ObjectHasBeenSerialized(session)) {
        return 1;
    }
    // Links back to this object resolve to it, not to a second copy.
    if (!stream->GetResult()) {
        stream->SetResult(GetThisObject());
    }
    OnBeforeLoad(document, manifest, stream);
    if (!stream->ReadObjectHeader(GetThisObject()) || !SerializeFieldDataFrom(stream)) {
        return 0;
    }
    OnAfterLoad(document);
    stream->SetObjectSerialized(session);
    return 1;
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
        if ((FieldFlags(data) & KW_FIELD_LOAD) && !data->SerializeFrom(stream)) {
            return 0;
        }
    }
    return 1;
}

int IKWSerializableAdaptor::SerializeFieldDataTo(IKWFieldStream* stream) {
    for (IKWFieldData* data : m_fieldData) {
        if ((FieldFlags(data) & KW_FIELD_SAVE) && !data->SerializeTo(stream)) {
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
