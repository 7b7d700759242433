// CKWFieldT<T> and CKWFieldDataT<T>: fields holding a plain value.
//
// T is CString (text), CKWGuid (stored in brace form) or int (decimal). The
// field reaches its member through an accessor (CKWFieldMember); its field
// data reads and writes the member in place, and gives the value as text.
// Fields are usually declared with KW_FIELD (KWSerialTypeMacros.h).
//
//   auto* field = new CKWFieldT<CString>(&CKWFieldMember<&CMyPart::m_Name>::Get);
//   IKWFieldData* data = field->CreateFieldData(part);
//   data->SetValueFromString("wheel");   // part->m_Name == "wheel"
#pragma once

#include <new>

#include "kwcore/serial/CKWFieldAdaptor.h"
#include "kwcore/serial/CKWFieldDataAdaptor.h"

// The text form of each value kind.
template <class T>
struct KWValueText;

template <>
struct KWCORE_API KWValueText<CString> {
    static CString ToText(const CString& value) { return value; }
    static bool FromText(const CString& text, CString& value) {
        value = text;
        return true;
    }
};

template <>
struct KWCORE_API KWValueText<CKWGuid> {
    static CString ToText(const CKWGuid& value);
    // The brace form; anything else (but the empty GUID's text) is refused.
    static bool FromText(const CString& text, CKWGuid& value);
};

template <>
struct KWCORE_API KWValueText<int> {
    static CString ToText(int value);
    // A whole decimal int, optionally signed and space-trimmed; nothing else.
    static bool FromText(const CString& text, int& value);
};

template <class T>
class CKWFieldDataT : public CKWFieldDataAdaptor {
public:
    CKWFieldDataT(IKWField* field, CKWSerialObject* origin, T* value)
        : CKWFieldDataAdaptor(field, origin), m_pValue(value) {}

    const T& GetValue() const { return *m_pValue; }
    void SetValue(const T& value) { *m_pValue = value; }

    CString GetStringValue() override { return KWValueText<T>::ToText(*m_pValue); }
    int SetValueFromString(CString text) override {
        return KWValueText<T>::FromText(text, *m_pValue) ? 1 : 0;
    }

private:
    T* m_pValue;
};

template <class T>
class CKWFieldT : public CKWFieldAdaptor {
public:
    using Accessor = T& (*)(CKWSerialObject*);

    explicit CKWFieldT(Accessor accessor) : m_access(accessor) {}

    int SupportsStringStorage() override { return 1; }
    IKWFieldData* CreateFieldData(CKWSerialObject* object) override {
        if (!object || !m_access) {
            return nullptr;
        }
        return new (std::nothrow) CKWFieldDataT<T>(this, object, &m_access(object));
    }

private:
    Accessor m_access;
};
