// CArray and MFC's array classes.
//
// CArray<TYPE, ARG_TYPE> is a growable array that owns its elements, with
// MFC's interface over a std::vector. An index outside the array reads a
// defaulted element and writes nowhere; GetData is null when empty.
// CByteArray, CWordArray, CDWordArray, CUIntArray and CStringArray add MFC's
// stored form: the element count (WriteCount), then the elements,
// little-endian (UINT as 4 bytes, strings with their length prefix).
// Loading replaces the contents; a failed load leaves them unchanged.
//
//   CWordArray words;
//   words.Add(1); words.Add(0x0302);
//   CArchive ar(CArchive::store);
//   words.Serialize(ar);  // 02 00 01 00 02 03
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "kwcore/platform/CArchive.h"
#include "kwcore/platform/CObject.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/CollectionFallback.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
public:
    CArray() = default;
    CArray(const CArray& other) : CObject(other), m_elements(other.m_elements) {}
    CArray(CArray&& other) noexcept : m_elements(std::move(other.m_elements)) {}
    CArray& operator=(const CArray& other);
    CArray& operator=(CArray&& other) noexcept;

    INT_PTR GetSize() const noexcept { return static_cast<INT_PTR>(m_elements.size()); }
    INT_PTR GetCount() const noexcept { return GetSize(); }
    BOOL IsEmpty() const noexcept { return m_elements.empty(); }
    INT_PTR GetUpperBound() const noexcept { return GetSize() - 1; }
    // New elements are defaulted; a negative size empties the array. The
    // growth step is accepted for compatibility and left to the vector.
    void SetSize(INT_PTR newSize, INT_PTR growBy = -1);
    void FreeExtra() { m_elements.shrink_to_fit(); }
    void RemoveAll() noexcept { m_elements.clear(); }

    const TYPE& GetAt(INT_PTR index) const { return ElementAt(index); }
    TYPE& GetAt(INT_PTR index) { return ElementAt(index); }
    void SetAt(INT_PTR index, ARG_TYPE newElement);
    const TYPE& ElementAt(INT_PTR index) const;
    TYPE& ElementAt(INT_PTR index);
    const TYPE& operator[](INT_PTR index) const { return ElementAt(index); }
    TYPE& operator[](INT_PTR index) { return ElementAt(index); }
    const TYPE* GetData() const noexcept { return IsEmpty() ? nullptr : m_elements.data(); }
    TYPE* GetData() noexcept { return IsEmpty() ? nullptr : m_elements.data(); }

    // Sets an element, growing the array when index is past the end.
    void SetAtGrow(INT_PTR index, ARG_TYPE newElement);
    // Returns the index of the new element.
    INT_PTR Add(ARG_TYPE newElement);
    // Appends a copy of source (which may be this array); returns the index
    // of its first element here.
    INT_PTR Append(const CArray& source);
    void Copy(const CArray& source);

    // Inserting past the end grows the array to reach index first.
    void InsertAt(INT_PTR index, ARG_TYPE newElement, INT_PTR count = 1);
    void InsertAt(INT_PTR startIndex, const CArray* newArray);
    // Removes up to count elements from index on; out-of-range parts are ignored.
    void RemoveAt(INT_PTR index, INT_PTR count = 1);

protected:
    bool IsValidIndex(INT_PTR index) const noexcept { return index >= 0 && index < GetSize(); }

    std::vector<TYPE> m_elements;
};

template <class TYPE, class ARG_TYPE>
CArray<TYPE, ARG_TYPE>& CArray<TYPE, ARG_TYPE>::operator=(const CArray& other) {
    m_elements = other.m_elements;
    return *this;
}

template <class TYPE, class ARG_TYPE>
CArray<TYPE, ARG_TYPE>& CArray<TYPE, ARG_TYPE>::operator=(CArray&& other) noexcept {
    m_elements = std::move(other.m_elements);
    return *this;
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetSize(INT_PTR newSize, INT_PTR /*growBy*/) {
    m_elements.resize(newSize > 0 ? static_cast<std::size_t>(newSize) : 0);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetAt(INT_PTR index, ARG_TYPE newElement) {
    if (IsValidIndex(index)) {
        m_elements[static_cast<std::size_t>(index)] = newElement;
    }
}

template <class TYPE, class ARG_TYPE>
const TYPE& CArray<TYPE, ARG_TYPE>::ElementAt(INT_PTR index) const {
    return IsValidIndex(index) ? m_elements[static_cast<std::size_t>(index)]
                               : kwCollection::InvalidElement<TYPE>();
}

template <class TYPE, class ARG_TYPE>
TYPE& CArray<TYPE, ARG_TYPE>::ElementAt(INT_PTR index) {
    return IsValidIndex(index) ? m_elements[static_cast<std::size_t>(index)]
                               : kwCollection::InvalidElement<TYPE>();
}

// The new element is copied before growing: it may refer into this array.
template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetAtGrow(INT_PTR index, ARG_TYPE newElement) {
    if (index < 0) {
        return;
    }
    TYPE element(newElement);
    if (index >= GetSize()) {
        SetSize(index + 1);
    }
    m_elements[static_cast<std::size_t>(index)] = std::move(element);
}

template <class TYPE, class ARG_TYPE>
INT_PTR CArray<TYPE, ARG_TYPE>::Add(ARG_TYPE newElement) {
    m_elements.push_back(newElement);
    return GetUpperBound();
}

template <class TYPE, class ARG_TYPE>
INT_PTR CArray<TYPE, ARG_TYPE>::Append(const CArray& source) {
    const INT_PTR firstIndex = GetSize();
    if (&source == this) {
        m_elements.reserve(m_elements.size() * 2);
        std::copy_n(m_elements.begin(), firstIndex, std::back_inserter(m_elements));
    } else {
        m_elements.insert(m_elements.end(), source.m_elements.begin(), source.m_elements.end());
    }
    return firstIndex;
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Copy(const CArray& source) {
    if (&source != this) {
        m_elements = source.m_elements;
    }
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::InsertAt(INT_PTR index, ARG_TYPE newElement, INT_PTR count) {
    if (index < 0 || count <= 0) {
        return;
    }
    TYPE element(newElement);
    if (index > GetSize()) {
        SetSize(index);
    }
    m_elements.insert(m_elements.begin() + index, static_cast<std::size_t>(count), element);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::InsertAt(INT_PTR startIndex, const CArray* newArray) {
    if (startIndex < 0 || !newArray || newArray->IsEmpty()) {
        return;
    }
    const std::vector<TYPE> inserted(newArray->m_elements);
    if (startIndex > GetSize()) {
        SetSize(startIndex);
    }
    m_elements.insert(m_elements.begin() + startIndex, inserted.begin(), inserted.end());
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::RemoveAt(INT_PTR index, INT_PTR count) {
    if (index < 0 || index >= GetSize() || count <= 0) {
        return;
    }
    const INT_PTR removed = count < GetSize() - index ? count : GetSize() - index;
    m_elements.erase(m_elements.begin() + index, m_elements.begin() + index + removed);
}

// MFC's array classes with their stored forms.
#define KW_DECLARE_STORED_ARRAY(class_name, element_type, arg_type)       \
    class KWCORE_API class_name : public CArray<element_type, arg_type> { \
        DECLARE_DYNAMIC(class_name)                                       \
                                                                          \
    public:                                                               \
        void Serialize(CArchive& ar) override;                            \
    };

KW_DECLARE_STORED_ARRAY(CByteArray, BYTE, BYTE)
KW_DECLARE_STORED_ARRAY(CWordArray, WORD, WORD)
KW_DECLARE_STORED_ARRAY(CDWordArray, DWORD, DWORD)
KW_DECLARE_STORED_ARRAY(CUIntArray, UINT, UINT)
KW_DECLARE_STORED_ARRAY(CStringArray, CString, const CString&)

#undef KW_DECLARE_STORED_ARRAY
