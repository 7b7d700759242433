// The classes of the tool's sample model, saved by "kwcore xml demo": an
// assembly and its parts, with every kind of field (text, integer, GUID, a
// link and a collection of links) and a cycle (each part links back to its
// assembly).
//
// The model's objects belong to whoever made or loaded them; nothing here
// owns another object. kwDemoModel::ReleaseObjects releases every one alive.
//
//   CDemoAssembly* bicycle = kwDemoModel::Make();
//   std::string saved = kwDemoModel::Describe(bicycle);
//   kwDemoModel::ReleaseObjects();
#pragma once

#include <string>

#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/serial/CKWSerialObject.h"

class CDemoAssembly;

class CDemoPart : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CDemoPart)

public:
    CString m_Name;
    int m_iQuantity = 0;
    CKWGuid m_Material;
    CDemoAssembly* m_pAssembly = nullptr;
    CKWObjPtrList<CDemoPart> m_Connected;

protected:
    CDemoPart() = default;
};

class CDemoAssembly : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CDemoAssembly)

public:
    CString m_Name;
    int m_iRevision = 0;
    CDemoPart* m_pMainPart = nullptr;
    CKWObjPtrList<CDemoPart> m_Parts;

protected:
    CDemoAssembly() = default;
};

namespace kwDemoModel {

inline constexpr const char* kAssemblyTypeID = "{8BE50C56-54C0-439F-AF55-32B8C9F68EE3}";
// {314A5A67-DD1B-4FD1-852F-740978BA6808}: the sample assembly's instance ID.
inline constexpr const char* kAssemblyID = "{314A5A67-DD1B-4FD1-852F-740978BA6808}";

// A bicycle of three parts, under fixed instance IDs so every run saves the
// same file. Null when an object cannot be made.
CDemoAssembly* Make();
// Every field of the assembly and of its parts, one object a line, links as
// instance IDs: two models are equal when their descriptions are.
std::string Describe(const CDemoAssembly* assembly);
// The number of demo objects alive.
int CountObjects();
void ReleaseObjects();

}  // namespace kwDemoModel
