#include "kwcore/serial/xml/CKWXMLFileArchive.h"

#include <fstream>
#include <memory>
#include <sstream>
#include <utility>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "KWArchiveParser.h"
#include "KWFileReplacement.h"
#include "KWForEachAs.h"
#include "KWLinkAttributeOrder.h"
#include "KWXMLGuidNames.h"
#include "KWXercesGuard.h"
#include "kwcore/platform/CKWTrace.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"

XERCES_CPP_NAMESPACE_USE

KW_IMPLEMENT_TYPE(CKWXMLFileArchive, "{EC130930-944F-4394-B58A-D252EB277FFD}",
                  "{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}")

namespace {
const XMLCh kLoadSave[] = {u'L', u'S', 0};
const XMLCh kRootName[] = {u'K', u'W', u'X', u'M', u'L', 0};

// Xerces objects given back with release().
struct ReleaseXerces {
    template <class T>
    void operator()(T* object) const {
        object->release();
    }
};
template <class T>
using XercesPtr = std::unique_ptr<T, ReleaseXerces>;

// Entity references are expanded in place. The parser never reaches other
// files or the network, and limits bound entity expansion.
XercesDOMParser* NewParser(SecurityManager* limits) {
    auto* parser = new kwXerces::ArchiveParser();
    parser->setValidationScheme(XercesDOMParser::Val_Auto);
    parser->setDoNamespaces(false);
    parser->setDoSchema(false);
    parser->setValidationSchemaFullChecking(false);
    parser->setCreateEntityReferenceNodes(false);
    parser->setDisableDefaultEntityResolution(true);
    parser->setSecurityManager(limits);
    return parser;
}

bool ReadWholeFile(const CString& path, std::string& content) {
    std::ifstream file(path.GetStdString(), std::ios::binary);
    if (!file) {
        return false;
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();  // an empty file inserts nothing: no error here
    content = std::move(bytes).str();
    return !file.bad();
}
}  // namespace

CKWBOOL CKWXMLFileArchive::OpenWithUI(AccessMode mode) {
    if (!m_fileName.IsEmpty()) {
        return Open(mode);
    }
    // The "Open Archive" dialog: without a user interface it reports cancel.
    return CKWBOOL(false);
}

CKWBOOL CKWXMLFileArchive::CloseWithUI() {
    // kept: asks for a file name even when the archive was opened for reading.
    if (!m_fileName.IsEmpty()) {
        return Close();
    }
    // The "Save Archive" dialog: without a user interface it reports cancel.
    return CKWBOOL(false);
}

// The documents the host holds stay, and its pointers to them stay good.
// What they held of an earlier file went with that file's DOM; each takes its
// part of the file opened now: its stored content when reading, a new
// element when writing.
CKWBOOL CKWXMLFileArchive::Open(AccessMode mode) {
    // kept: the base's result is ignored; the XML archive decides alone.
    CKWArchive::Open(mode);
    ReleaseDOM();
    kwIteration::ForEachAs<CKWXMLFileDocument>(
        GetDocumentIterator(),
        [](CKWXMLFileDocument* document) { document->DeleteAllTypeManifests(); });
    if (!InitializePlatform()) {
        return CKWBOOL(false);
    }
    if (mode == modeRead) {
        return CKWBOOL(LoadDOMFromFile() != 0);
    }
    if (mode == modeWrite && CreateDOM()) {
        kwIteration::ForEachAs<CKWXMLFileDocument>(
            GetDocumentIterator(),
            [&](CKWXMLFileDocument* document) { document->SetArchive(this); });
        return CKWBOOL(true);
    }
    return CKWBOOL(false);
}

CKWBOOL CKWXMLFileArchive::Close() {
    bool result = true;
    if (m_pDOMDocument && GetAccessMode() == modeWrite) {
        result = WriteDOMToFile() != 0;
    }
    ReleaseDOM();
    TerminatePlatform();
    CKWArchive::Close();
    return CKWBOOL(result);
}

CKWDocument* CKWXMLFileArchive::CreateNewDocument(CKWGuid documentID, IKWObjectType* contentType) {
    if (!m_pDOMDocument) {
        return nullptr;
    }
    CKWDocument* document = CKWArchive::CreateNewDocument(documentID, contentType);
    if (auto* xmlDocument = dynamic_cast<CKWXMLFileDocument*>(document)) {
        xmlDocument->SetArchive(this);
    }
    return document;
}

int CKWXMLFileArchive::SetFile(CString fileName) {
    m_fileName = fileName;
    return 1;
}

bool CKWXMLFileArchive::handleError(const DOMError&) {
    return true;
}

int CKWXMLFileArchive::CreateDOM() {
    return kwXerces::Guarded(0, [&] {
        DOMImplementation* implementation =
            DOMImplementationRegistry::getDOMImplementation(kLoadSave);
        if (!implementation) {
            return 0;
        }
        m_pDOMDocument = implementation->createDocument(nullptr, kRootName, nullptr);
        return m_pDOMDocument ? 1 : 0;
    });
}

// The file is read into memory first, so any path works as it is (no local
// code page, nothing resolved as a URL). A parse that reports errors fails like
// one that throws; either way the tree walk runs over what was parsed.
int CKWXMLFileArchive::LoadDOMFromFile() {
    std::string content;
    if (!ReadWholeFile(m_fileName, content)) {
        return 0;
    }
    SecurityManager limits;
    const bool parsed = kwXerces::Guarded(false, [&] {
        m_pParser = NewParser(&limits);
        MemBufInputSource source(reinterpret_cast<const XMLByte*>(content.data()), content.size(),
                                 "archive");
        m_pParser->parse(source);
        return m_pParser->getErrorCount() == 0;
    });
    if (m_pParser) {
        m_pParser->setSecurityManager(nullptr);
    }
    kwXerces::Guarded(false, [&] {
        m_pDOMDocument = m_pParser ? m_pParser->adoptDocument() : nullptr;
        LoadDocuments();
        return true;
    });
    return parsed ? 1 : 0;
}

// The root element's name is not checked: any root is taken as "KWXML". A
// document the host holds under a stored ID takes that stored document.
void CKWXMLFileArchive::LoadDocuments() {
    DOMElement* root = m_pDOMDocument ? m_pDOMDocument->getDocumentElement() : nullptr;
    kwXMLGuidNames::ForEachNamedChild(root, [&](const CKWGuid& documentID, DOMElement* element) {
        CKWXMLFileDocument* document = HeldDocumentWithoutElement(documentID);
        if (document) {
            document->SetArchive(this);
        } else {
            document = dynamic_cast<CKWXMLFileDocument*>(CreateNewDocument(documentID, nullptr));
        }
        if (document) {
            document->LoadTypeManifests(element);
        }
    });
}

// Held from before this Open: a document of this file already has its element.
CKWXMLFileDocument* CKWXMLFileArchive::HeldDocumentWithoutElement(const CKWGuid& documentID) {
    auto* held = static_cast<CKWDocument*>(GetDocumentCollection()->Find(documentID));
    auto* document = dynamic_cast<CKWXMLFileDocument*>(held);
    return document && !document->GetDocumentElement() ? document : nullptr;
}

int CKWXMLFileArchive::WriteDOMToFile() {
    if (!m_pDOMDocument) {
        return 0;
    }
    // kept: success whenever there was a document. A write that fails
    // leaves the previous file as it was, and says so only in the trace.
    std::string text;
    const bool written = WriteDOMToText(text);
    if (written) {
        kwLinkAttributeOrder::PutTypeBeforeInstance(text);
    }
    if (!written || !kwFileReplacement::Replace(m_fileName.GetStdString(), text)) {
        CKWTrace::Write("XML archive %s not written\n", static_cast<const char*>(m_fileName));
    }
    return 1;
}

bool CKWXMLFileArchive::WriteDOMToText(std::string& text) {
    return kwXerces::Guarded(false, [&] {
        DOMImplementation* implementation =
            DOMImplementationRegistry::getDOMImplementation(kLoadSave);
        if (!implementation) {
            return false;
        }
        XercesPtr<DOMLSSerializer> writer(implementation->createLSSerializer());
        XercesPtr<DOMLSOutput> output(implementation->createLSOutput());
        DOMConfiguration* config = writer->getDomConfig();
        config->setParameter(XMLUni::fgDOMErrorHandler, static_cast<DOMErrorHandler*>(this));
        if (config->canSetParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true)) {
            config->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        }
        MemBufFormatTarget buffer;
        output->setEncoding(nullptr);
        output->setByteStream(&buffer);
        if (!writer->write(m_pDOMDocument, output.get())) {
            return false;
        }
        text.assign(reinterpret_cast<const char*>(buffer.getRawBuffer()), buffer.getLen());
        return true;
    });
}

IKWObjectType* CKWXMLFileArchive::GetDocumentType() const {
    return CKWXMLFileDocument::GetCKWXMLFileDocumentType();
}

int CKWXMLFileArchive::OnInitialize() {
    const int initialized = CKWArchive::OnInitialize();
    m_pDOMDocument = nullptr;
    m_pParser = nullptr;
    return initialized;
}

int CKWXMLFileArchive::OnBeforeRelease() {
    ReleaseDOM();
    TerminatePlatform();
    return CKWArchive::OnBeforeRelease();
}

bool CKWXMLFileArchive::InitializePlatform() {
    return kwXerces::Guarded(false, [&] {
        XMLPlatformUtils::Initialize();
        ++m_iPlatformInits;
        return true;
    });
}

void CKWXMLFileArchive::TerminatePlatform() {
    for (; m_iPlatformInits > 0; --m_iPlatformInits) {
        XMLPlatformUtils::Terminate();
    }
}

// The documents forget their elements first; the DOM (adopted from the
// parser after a load, so the archive owns it in both modes) goes before the
// parser, and both before the platform is terminated.
void CKWXMLFileArchive::ReleaseDOM() {
    kwIteration::ForEachAs<CKWXMLFileDocument>(
        GetDocumentIterator(), [](CKWXMLFileDocument* document) { document->DetachDOM(); });
    kwXerces::Guarded(false, [&] {
        if (m_pDOMDocument) {
            m_pDOMDocument->release();
        }
        return true;
    });
    m_pDOMDocument = nullptr;
    delete m_pParser;
    m_pParser = nullptr;
}
