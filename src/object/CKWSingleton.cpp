#include "kwcore/object/CKWSingleton.h"

#include <algorithm>

std::list<CKWSingleton*>& CKWSingleton::RegistryList() {
    static auto* registry = new std::list<CKWSingleton*>;
    return *registry;
}

void CKWSingleton::Register(CKWSingleton* singleton) { RegistryList().push_back(singleton); }

void CKWSingleton::Unregister(CKWSingleton* singleton) {
    auto& registry = RegistryList();
    auto found = std::find(registry.begin(), registry.end(), singleton);
    if (found != registry.end()) {
        registry.erase(found);
    }
}

void CKWSingleton::ReleaseAll() {
    for (CKWSingleton* singleton : RegistryList()) {
        if (singleton) {
            singleton->Release();
        }
    }
}
