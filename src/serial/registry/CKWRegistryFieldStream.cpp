#include "kwcore/serial/registry/CKWRegistryFieldStream.h"

#include "kwcore/object/IKWObject.h"
#include "kwcore/object/IKWObjectType.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"
#include "kwcore/serial/registry/CKWRegistrySerializer.h"

KW_IMPLEMENT_TYPE(CKWRegistryFieldStream, "{512ACB6B-8ED2-4E84-BBB4-3326C569BD48}",
                  "{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}")

namespace {
IKWField* FieldOf(IKWFieldData* fieldData) {
    return fieldData ? fieldData->GetField() : nullptr;
}

// "T:" + type ID and "I:" + instance ID of a link's target.
void AddLink(CStringList& links, IKWObject* object) {
    IKWObjectType* type = object->GetType();
    CString typeText;
    CString instanceText;
    typeText.Format("T:%s", static_cast<const char*>(type ? type->GetID().GetCString() : ""));
    instanceText.Format("I:%s", static_cast<const char*>(object->GetInstanceID().GetCString()));
    links.AddTail(typeText);
    links.AddTail(instanceText);
}

// The GUID after a link string's two-character prefix.
CKWGuid LinkGuid(const CString& text) {
    CKWGuid guid;
    guid.SetCString(text.Mid(2));
    return guid;
}
}  // namespace

int CKWRegistryFieldStream::WriteObjectHeader(IKWObject* object) {
    CKWRegistrySerializer* serializer = GetSerializer();
    if (!object || !serializer ||
        !serializer->OpenRegistry(serializer->GetRootKey(),
                                  serializer->ObjectKeyPath(m_typeID, object->GetInstanceID()))) {
        return 0;
    }
    return CKWFieldStream::WriteObjectHeader(object);
}

// kept: a value that cannot be written still gives 1; the serializer's last
// error tells.
int CKWRegistryFieldStream::Write(IKWFieldData* fieldData) {
    CKWRegistrySerializer* serializer = GetSerializer();
    IKWField* field = FieldOf(fieldData);
    if (!serializer || !field) {
        return 0;
    }
    if (field->SupportsStringStorage() && VerifyObjectKey(serializer)) {
        serializer->Write(field->GetName(), static_cast<const char*>(fieldData->GetStringValue()));
    }
    return 1;
}

// A value that is missing or not text leaves the field as it is.
int CKWRegistryFieldStream::Read(IKWFieldData* fieldData) {
    CKWRegistrySerializer* serializer = GetSerializer();
    IKWField* field = FieldOf(fieldData);
    if (!serializer || !field) {
        return 0;
    }
    CString value;
    if (field->SupportsStringStorage() && VerifyObjectKey(serializer) &&
        serializer->Read(field->GetName(), value)) {
        fieldData->SetValueFromString(value);
        fieldData->NotifyOfChange();
    }
    return 1;
}

IKWObject* CKWRegistryFieldStream::ReadLink(IKWFieldData* fieldData) {
    const std::vector<IKWObject*> objects = ReadLinkList(fieldData);
    return objects.empty() ? nullptr : objects.front();
}

int CKWRegistryFieldStream::ReadLinks(IKWFieldData* fieldData,
                                      IKWCollection<IKWObject>* collection) {
    if (!collection || !GetSerializer() || !FieldOf(fieldData)) {
        return 0;
    }
    for (IKWObject* object : ReadLinkList(fieldData)) {
        collection->Add(object);
    }
    return 1;
}

int CKWRegistryFieldStream::WriteLink(IKWFieldData* fieldData, IKWObject* object) {
    CStringList links(10);
    if (object) {
        AddLink(links, object);
    }
    return WriteLinkList(fieldData, links);
}

int CKWRegistryFieldStream::WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) {
    if (!iterator) {
        return 0;
    }
    CStringList links(10);
    for (IKWObject* object = iterator->GetNext(1); object; object = iterator->GetNext(0)) {
        AddLink(links, object);
    }
    return WriteLinkList(fieldData, links);
}

CKWRegistrySerializer* CKWRegistryFieldStream::GetSerializer() {
    return dynamic_cast<CKWRegistrySerializer*>(GetDocument());
}

int CKWRegistryFieldStream::VerifyObjectKey(CKWRegistrySerializer* serializer) {
    return serializer->VerifyKey(serializer->ObjectKeyPath(m_typeID, GetStoredInstanceID()));
}

int CKWRegistryFieldStream::WriteLinkList(IKWFieldData* fieldData, CStringList& links) {
    CKWRegistrySerializer* serializer = GetSerializer();
    IKWField* field = FieldOf(fieldData);
    if (!serializer || !field) {
        return 0;
    }
    if (VerifyObjectKey(serializer)) {
        serializer->Write(field->GetName(), links);
    }
    return 1;
}

// The list is read whole before any target is resolved: loading a target
// moves the serializer's current key.
std::vector<IKWObject*> CKWRegistryFieldStream::ReadLinkList(IKWFieldData* fieldData) {
    CKWRegistrySerializer* serializer = GetSerializer();
    IKWField* field = FieldOf(fieldData);
    CStringList links;
    std::vector<IKWObject*> objects;
    if (!serializer || !field || !VerifyObjectKey(serializer) ||
        !serializer->Read(field->GetName(), links)) {
        return objects;
    }
    for (POSITION position = links.GetHeadPosition(); position;) {
        const CKWGuid typeID = LinkGuid(links.GetNext(position));
        if (!position) {
            break;
        }
        const CKWGuid instanceID = LinkGuid(links.GetNext(position));
        objects.push_back(serializer->GetObjectA(typeID, instanceID));
    }
    return objects;
}
