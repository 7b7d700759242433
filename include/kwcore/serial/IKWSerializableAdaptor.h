// IKWSerializableAdaptor: the serializable side of an object, with its
// common implementation.
//
// Holds the object's field data (owned, in field-table order) and its
// instance name, saves and loads the object with the graph it links to
// through a document, and offers the hooks a class overrides to take part
// (before/after save and load, field changes, presentation). CKWSerialObject implements it beside
// CKWObjectImpl; GetInterface(IID_IKWSerializableAdaptor) reaches it.
//
//   auto* adaptor = static_cast<IKWSerializableAdaptor*>(
//       object->GetInterface(IID_IKWSerializableAdaptor));
//   int saved = adaptor->SerializeTo(document);
#pragma once

#include <vector>

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class CKWDocument;
class CKWTypeManifest;
class IKWFieldData;
class IKWFieldStream;
class IKWObject;

// {50E210EC-528E-408D-A63B-85F4BFF21DC1}
inline constexpr GUID IID_IKWSerializableAdaptor = {
    0x50E210EC, 0x528E, 0x408D, {0xA6, 0x3B, 0x85, 0xF4, 0xBF, 0xF2, 0x1D, 0xC1}};

class KWCORE_API IKWSerializableAdaptor {
public:
    // Takes ownership. 0 for null or a second field data of the same field
    // (the caller keeps it then).
    virtual int AddFieldData(IKWFieldData* fieldData);
    // The field data of the field with that field ID, or null.
    virtual IKWFieldData* GetFieldData(CKWGuid fieldID);
    // Frees every field data.
    virtual void ReleaseFieldData();
    // Saves the object into the document once per session; 1 on success.
    virtual int SerializeTo(CKWDocument* document);
    // Loads the object from its stream (found in the document when null).
    virtual int SerializeFrom(CKWDocument* document, CKWTypeManifest* manifest,
                              IKWFieldStream* stream);
    // The field data that holds this object in an editor; passed to every own field data.
    virtual void SetParentField(IKWFieldData* parent);
    // Replaces the field data by new ones from the type's field table; 0
    // when the object's type has no field table.
    virtual int InitFieldData();
    virtual CString GetInstanceName() { return m_instanceName; }
    virtual void SetInstanceName(CString name) { m_instanceName = name; }
    virtual int OnBeforeSave(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) { return 1; }
    virtual int OnBeforeLoad(CKWDocument*, CKWTypeManifest*, IKWFieldStream*) { return 1; }
    virtual void OnAfterLoad(CKWDocument*) {}
    virtual void OnAfterSave(CKWDocument*) {}
    // Reads each field data whose field has KW_FIELD_LOAD, in order; the first
    // failure ends the walk with 0.
    virtual int SerializeFieldDataFrom(IKWFieldStream* stream);
    // Writes each field data whose field has KW_FIELD_SAVE, likewise.
    virtual int SerializeFieldDataTo(IKWFieldStream* stream);
    virtual int OnBeforeFieldChanged(IKWFieldData*, CString&) { return 1; }
    virtual void OnAfterFieldChanged(IKWFieldData*) {}
    virtual int IsFieldReadOnly(IKWFieldData*) { return 0; }
    virtual int IsFieldVisible(IKWFieldData*) { return 1; }
    virtual int IsFieldExpanded(IKWFieldData*) { return 1; }
    // Copies every field value of other that this object has too; 0 when
    // other is null or a value could not be copied.
    virtual int CloneFieldData(IKWSerializableAdaptor* other);
    virtual void PatchData() {}
    virtual void OnAfterCheckboxChanged(IKWFieldData*, int) {}
    virtual int IsFieldChecked(IKWFieldData*) { return 0; }
    virtual IKWObject* GetThisObject() = 0;

    // The field data in order.
    const std::vector<IKWFieldData*>& GetFieldDataList() const { return m_fieldData; }

protected:
    IKWSerializableAdaptor() = default;
    ~IKWSerializableAdaptor() = default;

private:
    std::vector<IKWFieldData*> m_fieldData;
    CString m_instanceName;
};
