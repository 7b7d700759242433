// CKWXMLFileArchive: the archive back-end that keeps its documents in one XML
// file.
//
// Under the root element every level of the stored hierarchy is an element
// named after its GUID (document, type, object, field); values and links are
// attributes. Open(modeRead) parses the whole file and builds every document,
// manifest and stream; Open(modeWrite) starts an empty tree that Close writes.
// The archive owns the DOM and the parser between Open and Close, and its
// documents as every archive does. A save goes to a temporary file beside the
// target that replaces it only once complete, so a failed save leaves the
// previous file as it was.
//
//   auto* archive = static_cast<CKWXMLFileArchive*>(
//       CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid()));
//   archive->SetFile("model.xml");
//   archive->Open(CKWArchive::modeWrite);
//   adaptor->SerializeTo(archive->CreateNewDocument(CKWGuid(), nullptr));
//   archive->Close();   // writes model.xml
//   archive->Release();
#pragma once

#include <string>
#include <xercesc/dom/DOMErrorHandler.hpp>

#include "kwcore/serial/CKWArchive.h"
#include "kwcore/serial/xml/KWXercesForward.h"

class CKWXMLFileDocument;

// The archive is the DOM writer's error handler itself (handleError).
class KWCORE_API CKWXMLFileArchive : public CKWArchive,
                                     public XERCES_CPP_NAMESPACE::DOMErrorHandler {
    KW_DECLARE_TYPE(CKWXMLFileArchive, CKWObjectTypeImpl)

public:
    // Without a file name these ask for one; with no user interface the
    // dialog reports cancel, so they fail.
    CKWBOOL OpenWithUI(AccessMode mode) override;
    CKWBOOL CloseWithUI() override;
    // modeRead loads the file, modeWrite starts an empty tree; other modes fail.
    // Documents the archive already holds stay: they take the stored document
    // of their ID when reading, a new element when writing.
    CKWBOOL Open(AccessMode mode) override;
    // In write mode writes the file; in every mode drops the DOM. True when
    // nothing was open.
    CKWBOOL Close() override;
    // Null while no DOM is open.
    CKWDocument* CreateNewDocument(CKWGuid documentID, IKWObjectType* contentType) override;

    int SetFile(CString fileName);
    const CString& GetFile() const { return m_fileName; }
    // The open DOM, or null.
    XERCES_CPP_NAMESPACE::DOMDocument* GetDOMDocument() const { return m_pDOMDocument; }

    // Errors of the DOM writer: true lets it go on.
    bool handleError(const XERCES_CPP_NAMESPACE::DOMError& error) override;
    virtual void resetErrors() {}

protected:
    CKWXMLFileArchive() = default;

    virtual int LoadDOMFromFile();
    // 0 only without a DOM: a write that fails leaves the file unchanged.
    virtual int WriteDOMToFile();
    virtual int CreateDOM();

    IKWObjectType* GetDocumentType() const override;
    int OnInitialize() override;
    int OnBeforeRelease() override;

private:
    bool InitializePlatform();
    void TerminatePlatform();
    void ReleaseDOM();
    void LoadDocuments();
    CKWXMLFileDocument* HeldDocumentWithoutElement(const CKWGuid& documentID);
    bool WriteDOMToText(std::string& text);

    CString m_fileName;
    XERCES_CPP_NAMESPACE::DOMDocument* m_pDOMDocument = nullptr;
    XERCES_CPP_NAMESPACE::XercesDOMParser* m_pParser = nullptr;
    // Initializations of the Xerces platform by Open not yet ended by Close.
    int m_iPlatformInits = 0;
};
