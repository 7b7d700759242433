#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"

#include <cstdint>
#include <xercesc/dom/DOM.hpp>

#include "KWElementSearch.h"
#include "KWXMLGuidNames.h"
#include "KWXMLNamePool.h"
#include "KWXMLText.h"
#include "KWXercesGuard.h"
#include "kwcore/object/CKWObjectTypeImpl.h"
#include "kwcore/object/IKWObject.h"
#include "kwcore/object/IKWObjectType.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

XERCES_CPP_NAMESPACE_USE

KW_IMPLEMENT_TYPE(CKWXMLFileFieldStream, "{95945C1C-EC3E-43FF-BD76-FF68DC688A56}",
                  "{3F68C1C9-F7A2-4E46-BEA7-64ED4D22827D}")

namespace {
const XMLCh kValueAttribute[] = {u'V', 0};
const XMLCh kLinkElement[] = {u'L', 0};

IKWField* FieldOf(IKWFieldData* fieldData) {
    return fieldData ? fieldData->GetField() : nullptr;
}
}  // namespace

int CKWXMLFileFieldStream::WriteObjectHeader(IKWObject* object) {
    DOMElement* parent = m_pManifest ? m_pManifest->GetManifestElement() : nullptr;
    if (m_pObjectElement || !object || !parent) {
        return 0;
    }
    return kwXerces::Guarded(0, [&] {
        m_pObjectElement =
            kwXMLGuidNames::AppendElement(m_pDOMDocument, parent, object->GetInstanceID());
        if (!m_pObjectElement) {
            return 0;
        }
        kwXMLNamePool::Fit(m_pDOMDocument,
                           m_pManifest->GetInstanceFieldStreamCollection()->GetCount());
        return 1;
    });
}

int CKWXMLFileFieldStream::Write(IKWFieldData* fieldData) {
    return kwXerces::Guarded(0, [&] {
        DOMElement* element = AppendFieldElement(fieldData);
        if (!element) {
            return 0;
        }
        if (!fieldData->GetField()->SupportsStringStorage()) {
            return 1;
        }
        kwXMLText::DOMString value;
        if (!kwXMLText::ToDOM(fieldData->GetStringValue(), value)) {
            return 0;
        }
        element->setAttribute(kValueAttribute, value.c_str());
        return 1;
    });
}

int CKWXMLFileFieldStream::ReadObjectHeader(IKWObject* object) {
    if (!m_pObjectElement || !object) {
        return 0;
    }
    // The stored ID is given whether or not it is valid.
    CKWObjectTypeImpl::ChangeInstanceID(object, kwXMLGuidNames::FromElementName(m_pObjectElement));
    return 1;
}

int CKWXMLFileFieldStream::Read(IKWFieldData* fieldData) {
    IKWField* field = FieldOf(fieldData);
    if (!field) {
        return 0;
    }
    if (!field->SupportsStringStorage()) {
        return 1;
    }
    return kwXerces::Guarded(0, [&] {
        DOMElement* element = FindFieldElement(fieldData);
        CString value;
        if (!element || !kwXMLText::FromDOM(element->getAttribute(kValueAttribute), value)) {
            return 0;
        }
        fieldData->SetValueFromString(value);
        fieldData->NotifyOfChange();
        return 1;
    });
}

IKWObject* CKWXMLFileFieldStream::ReadLink(IKWFieldData* fieldData) {
    return kwXerces::Guarded<IKWObject*>(nullptr,
                                         [&] { return ResolveLink(FindFieldElement(fieldData)); });
}

// A field element that is missing or not single adds nothing and is no failure.
int CKWXMLFileFieldStream::ReadLinks(IKWFieldData* fieldData,
                                     IKWCollection<IKWObject>* collection) {
    if (!collection) {
        return 0;
    }
    return kwXerces::Guarded(0, [&] {
        DOMElement* element = FindFieldElement(fieldData);
        for (DOMElement* link : kwElementSearch::FindDescendants(element, kLinkElement, SIZE_MAX)) {
            collection->Add(ResolveLink(link));
        }
        return 1;
    });
}

int CKWXMLFileFieldStream::WriteLink(IKWFieldData* fieldData, IKWObject* object) {
    return kwXerces::Guarded(0, [&] {
        DOMElement* element = AppendFieldElement(fieldData);
        if (!element) {
            return 0;
        }
        kwXMLGuidNames::SetLinkAttributes(element, object);
        return 1;
    });
}

// An "L" that cannot be made ends the walk with 0; those appended stay.
int CKWXMLFileFieldStream::WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) {
    return kwXerces::Guarded(0, [&] {
        DOMElement* element = AppendFieldElement(fieldData);
        if (!element || !iterator) {
            return 0;
        }
        for (IKWObject* object = iterator->GetNext(1); object; object = iterator->GetNext(0)) {
            DOMElement* link = m_pDOMDocument->createElement(kLinkElement);
            if (!link) {
                return 0;
            }
            kwXMLGuidNames::SetLinkAttributes(link, object);
            element->appendChild(link);
        }
        return 1;
    });
}

DOMElement* CKWXMLFileFieldStream::AppendFieldElement(IKWFieldData* fieldData) {
    IKWField* field = FieldOf(fieldData);
    if (!field || !m_pObjectElement) {
        return nullptr;
    }
    return kwXMLGuidNames::AppendElement(m_pDOMDocument, m_pObjectElement, field->GetFieldID());
}

DOMElement* CKWXMLFileFieldStream::FindFieldElement(IKWFieldData* fieldData) const {
    IKWField* field = FieldOf(fieldData);
    if (!field || !m_pObjectElement) {
        return nullptr;
    }
    XMLCh name[CKWGuid::XML_ELEMENT_TEXT_SIZE];
    kwXMLGuidNames::ElementName(field->GetFieldID(), name);
    return kwElementSearch::FindSingleDescendant(m_pObjectElement, name);
}

IKWObject* CKWXMLFileFieldStream::ResolveLink(const DOMElement* element) {
    CKWDocument* document = GetDocument();
    if (!element || !document) {
        return nullptr;
    }
    return document->GetObjectA(kwXMLGuidNames::LinkTypeID(element),
                                kwXMLGuidNames::LinkInstanceID(element));
}
