#include "kwcore/platform/CObject.h"

#include <cstdio>

CObject* CRuntimeClass::CreateObject() const {
    return m_pfnCreateObject ? m_pfnCreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* baseClass) const {
    if (!baseClass) {
        return FALSE;
    }
    for (const CRuntimeClass* current = this; current; current = current->m_pBaseClass) {
        if (current == baseClass) {
            return TRUE;
        }
    }
    return FALSE;
}

const CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)),
                                             KW_NO_SCHEMA, nullptr, nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetThisClass() {
    return RUNTIME_CLASS(CObject);
}

CRuntimeClass* CObject::GetRuntimeClass() const {
    return RUNTIME_CLASS(CObject);
}

BOOL CObject::IsKindOf(const CRuntimeClass* runtimeClass) const {
    return GetRuntimeClass()->IsDerivedFrom(runtimeClass);
}

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext&) const {}

namespace {

template <typename Value>
void AppendFormatted(std::string& text, const char* format, Value value) {
    char buffer[64];
    const int length = std::snprintf(buffer, sizeof buffer, format, value);
    if (length > 0) {
        text.append(buffer, static_cast<std::size_t>(length));
    }
}

}  // namespace

CDumpContext& CDumpContext::operator<<(const char* text) {
    m_text += text ? text : "(null)";
    return *this;
}

CDumpContext& CDumpContext::operator<<(int value) {
    return *this << static_cast<long long>(value);
}

CDumpContext& CDumpContext::operator<<(unsigned int value) {
    return *this << static_cast<unsigned long long>(value);
}

CDumpContext& CDumpContext::operator<<(long value) {
    return *this << static_cast<long long>(value);
}

CDumpContext& CDumpContext::operator<<(unsigned long value) {
    return *this << static_cast<unsigned long long>(value);
}

CDumpContext& CDumpContext::operator<<(long long value) {
    AppendFormatted(m_text, "%lld", value);
    return *this;
}

CDumpContext& CDumpContext::operator<<(unsigned long long value) {
    AppendFormatted(m_text, "%llu", value);
    return *this;
}

CDumpContext& CDumpContext::operator<<(double value) {
    AppendFormatted(m_text, "%g", value);
    return *this;
}

CDumpContext& CDumpContext::operator<<(const void* address) {
    AppendFormatted(m_text, "$%p", address);
    return *this;
}

CDumpContext& CDumpContext::operator<<(const CObject& object) {
    object.Dump(*this);
    return *this;
}
