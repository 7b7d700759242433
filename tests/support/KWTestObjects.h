// Making, owning and collecting framework objects in the tests, benchmarks
// and the fuzzer.
#pragma once

#include <memory>
#include <vector>

#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/object/IKWObject.h"

// The library's root types.
inline constexpr const char* kObjectImplTypeID = "{3719246B-C3B0-4AE9-9723-6E998C42484A}";
inline constexpr const char* kSerialObjectTypeID = "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}";

// The repository that the kit's own types are collected into.
inline constexpr const char* kKWTestRepositoryID = "{B1D3E5F7-0A2C-4E6B-8D1F-3A5C7E9B1D2F}";

// An instance of T made through its type, with the given ID or a new one.
template <class T>
T* KWTestCreate(IKWObjectType* type, const CKWGuid& id = CKWGuid()) {
    return dynamic_cast<T*>(type->CreateInstance(id));
}

// Everything a collection's iterator gives from the first element on.
template <class Iterator>
auto ElementsOf(Iterator iterator) {
    std::vector<decltype(iterator.GetNext(1))> elements;
    for (auto element = iterator.GetNext(1); element; element = iterator.GetNext(0)) {
        elements.push_back(element);
    }
    return elements;
}

struct SReleaseObject {
    void operator()(IKWObject* object) const { object->Release(); }
};
// A framework object released when the owner goes.
template <class T>
using KWOwned = std::unique_ptr<T, SReleaseObject>;

// Collects the types made so far into a repository, as a host does once its
// types exist: a static one after a source file's type definitions.
struct SCollectTypes {
    explicit SCollectTypes(const CKWGuid& repositoryID) { CKWTypeSystem::Initialize(repositoryID); }
};
