#include "KWXMLNamePool.h"

#include <algorithm>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMStringPool.hpp>
#include <xercesc/util/XMLString.hpp>

XERCES_CPP_NAMESPACE_USE

namespace kwXMLNamePool {
namespace {
// Reaches the pool's table, which DOMDocumentImpl keeps protected.
struct NamePoolAccess : DOMDocumentImpl {
    static constexpr DOMStringPoolEntry** DOMDocumentImpl::*kTable = &NamePoolAccess::fNameTable;
    static constexpr XMLSize_t DOMDocumentImpl::*kSize = &NamePoolAccess::fNameTableSize;
};

// The entries keep their addresses (names handed out stay valid); only the
// chains are relinked. The new table comes from the document's heap and goes
// with the document; the old one stays there unused.
void Rehash(DOMDocumentImpl* document, XMLSize_t size) {
    auto** table = static_cast<DOMStringPoolEntry**>(document->allocate(size * sizeof(void*)));
    std::fill(table, table + size, nullptr);
    DOMStringPoolEntry** old = document->*NamePoolAccess::kTable;
    for (XMLSize_t i = 0; i < document->*NamePoolAccess::kSize; ++i) {
        for (DOMStringPoolEntry* entry = old[i]; entry;) {
            DOMStringPoolEntry* next = entry->fNext;
            DOMStringPoolEntry*& chain = table[XMLString::hash(entry->fString, size)];
            entry->fNext = chain;
            chain = entry;
            entry = next;
        }
    }
    document->*NamePoolAccess::kTable = table;
    document->*NamePoolAccess::kSize = size;
}
}  // namespace

void Fit(DOMDocument* document, XMLSize_t names) {
    if (names == 0 || (names & (names - 1)) != 0) {
        return;
    }
    auto* pool = dynamic_cast<DOMDocumentImpl*>(document);
    if (pool && pool->*NamePoolAccess::kSize < names) {
        Rehash(pool, 2 * names + 1);
    }
}

}  // namespace kwXMLNamePool
