// CObject: root of the MFC-style classes, with run-time class information.
//
// Every class that declares DECLARE_DYNAMIC (or DECLARE_DYNCREATE) owns one
// static CRuntimeClass record, named class<ClassName>, that names the class
// and links to its base class's record; IsKindOf walks that chain, and a
// DYNCREATE class can be made from its record. The records are plain
// constant data, exported with their class, so a host's classes can derive
// from the library's and ask RUNTIME_CLASS about either.
//
//   class CShape : public CObject { DECLARE_DYNCREATE(CShape) };
//   IMPLEMENT_DYNCREATE(CShape, CObject)        // in one source file
//   CObject* shape = RUNTIME_CLASS(CShape)->CreateObject();
//   shape->IsKindOf(RUNTIME_CLASS(CObject));     // TRUE
#pragma once

#include <string>

#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class CArchive;
class CDumpContext;
class CObject;

// Schema number of a class that is not serialisable by version.
#define KW_NO_SCHEMA 0xFFFF

struct KWCORE_API CRuntimeClass {
    const char* m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;
    CObject* (*m_pfnCreateObject)();  // null unless the class is DYNCREATE
    CRuntimeClass* m_pBaseClass;      // null for CObject

    // A new heap object of this class (the caller deletes it), or null when
    // the class cannot be created dynamically.
    CObject* CreateObject() const;
    // TRUE when this class is baseClass or derives from it.
    BOOL IsDerivedFrom(const CRuntimeClass* baseClass) const;
};

class KWCORE_API CObject {
public:
    static const CRuntimeClass classCObject;

    virtual ~CObject();

    static CRuntimeClass* GetThisClass();
    virtual CRuntimeClass* GetRuntimeClass() const;
    BOOL IsKindOf(const CRuntimeClass* runtimeClass) const;

    // Hooks for storing and diagnostics; the base versions do nothing.
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

protected:
    CObject() = default;
    // Copying is for derived value classes that choose to allow it.
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

// A minimal text sink for Dump: collects what is written, for the caller to
// read back with GetText.
//
//   CDumpContext dc;
//   dc << "size " << 3;   // dc.GetText() == "size 3"
class KWCORE_API CDumpContext {
public:
    CDumpContext& operator<<(const char* text);
    CDumpContext& operator<<(int value);
    CDumpContext& operator<<(unsigned int value);
    CDumpContext& operator<<(long value);
    CDumpContext& operator<<(unsigned long value);
    CDumpContext& operator<<(long long value);
    CDumpContext& operator<<(unsigned long long value);
    CDumpContext& operator<<(double value);
    CDumpContext& operator<<(const void* address);
    CDumpContext& operator<<(const CObject& object);

    const std::string& GetText() const noexcept { return m_text; }

private:
    std::string m_text;
};

// Casting away const keeps MFC's signature; the records are never written.
#define RUNTIME_CLASS(class_name) (const_cast<CRuntimeClass*>(&class_name::class##class_name))

#define DECLARE_DYNAMIC(class_name)               \
public:                                           \
    static const CRuntimeClass class##class_name; \
    static CRuntimeClass* GetThisClass();         \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* CreateObject();

#define KW_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, create) \
    const CRuntimeClass class_name::class##class_name = {                      \
        #class_name, static_cast<int>(sizeof(class_name)), schema, create,     \
        RUNTIME_CLASS(base_class_name)};                                       \
    CRuntimeClass* class_name::GetThisClass() {                                \
        return RUNTIME_CLASS(class_name);                                      \
    }                                                                          \
    CRuntimeClass* class_name::GetRuntimeClass() const {                       \
        return RUNTIME_CLASS(class_name);                                      \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
    KW_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, KW_NO_SCHEMA, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name) \
    CObject* class_name::CreateObject() {                \
        return new class_name;                           \
    }                                                    \
    KW_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, KW_NO_SCHEMA, class_name::CreateObject)
