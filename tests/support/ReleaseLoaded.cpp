#include "ReleaseLoaded.h"

#include <vector>

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWPreferences.h"

void ReleaseEachLoadedObject(const std::set<IKWObject*>& loaded) {
    // A released edge leaves its nodes' lists, so edges go first; a preference
    // set releases its own sections, so those are left to it.
    std::set<IKWObject*> owned;
    std::vector<IKWObject*> edges;
    std::vector<IKWObject*> others;
    for (IKWObject* object : loaded) {
        if (auto* preferences = dynamic_cast<CKWPreferences*>(object)) {
            for (const auto& entry : preferences->m_PreferenceSectionMap.GetMap()) {
                owned.insert(entry.second);
            }
        }
        (dynamic_cast<CKWGraphEdge*>(object) ? edges : others).push_back(object);
    }
    for (const std::vector<IKWObject*>* group : {&edges, &others}) {
        for (IKWObject* object : *group) {
            if (!owned.count(object)) {
                object->Release();
            }
        }
    }
}
