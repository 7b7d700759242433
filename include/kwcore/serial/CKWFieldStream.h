// CKWFieldStream: the stored fields of one object, keyed in its manifest by
// the object's instance GUID.
//
// Abstract: a back-end supplies the link operations and the stored form of
// values. It records the session that last wrote or read its object and the
// object loaded from it (not owned: loaded objects belong to the caller of
// CKWDocument::GetObjectA). GetInterface(IID_IKWFieldStream) gives the
// IKWFieldStream side.
//
//   class CMyStream : public CKWFieldStream {
//       KW_DECLARE_TYPE(CMyStream, CKWObjectTypeImpl)
//       ...   // Write, Read, ReadLink(s), WriteLink(s)
//   };
#pragma once

#include "kwcore/object/CKWObjectImpl.h"
#include "kwcore/serial/IKWFieldStream.h"

class KWCORE_API CKWFieldStream : public CKWObjectImpl, public IKWFieldStream {
    KW_DECLARE_ABSTRACT_TYPE(CKWFieldStream, CKWObjectTypeImpl)

public:
    // Answers IID_IKWFieldStream too.
    void* GetInterface(CKWGuid interfaceID) override;

    CKWDocument* GetDocument() override { return m_pDocument; }
    void SetDocument(CKWDocument* document) override { m_pDocument = document; }
    int WriteObjectHeader(IKWObject*) override { return 1; }
    int Write(IKWFieldData*) override { return 1; }
    int ReadObjectHeader(IKWObject*) override { return 1; }
    int Read(IKWFieldData*) override { return 1; }
    int ObjectHasBeenSerialized(CKWGuid sessionID) override;
    void SetObjectSerialized(CKWGuid sessionID) override { m_sessionID = sessionID; }
    IKWObject* GetResult() override { return m_pResult; }
    void SetResult(IKWObject* object) override { m_pResult = object; }

    virtual CKWGuid GetStoredInstanceID() { return m_storedInstanceID; }
    virtual void SetStoredInstanceID(CKWGuid instanceID) { m_storedInstanceID = instanceID; }
    virtual int Close() { return 1; }

protected:
    CKWFieldStream() = default;

private:
    CKWDocument* m_pDocument = nullptr;
    CKWGuid m_storedInstanceID;
    CKWGuid m_sessionID;
    IKWObject* m_pResult = nullptr;
};
