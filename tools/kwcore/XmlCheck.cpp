// kwcore xml inspect --check: loads every stored object through the type
// system and reports what does not resolve.
#include <algorithm>
#include <cstdio>
#include <set>
#include <vector>

#include "ReleaseLoaded.h"
#include "XmlInspect.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"
#include "kwcore/serial/CKWTypeManifest.h"

namespace kwXmlInspection {
namespace {

struct SCheckCounts {
    std::size_t types = 0;
    std::size_t objects = 0;
    std::size_t unresolved = 0;
};

void Report(SCheckCounts& counts, const std::string& text) {
    std::printf("unresolved: %s\n", text.c_str());
    ++counts.unresolved;
}

// Why a stored object of a registered type did not load. A value field the
// type loads must be stored exactly once; links that do not resolve load as
// unset, so they never stop an object from loading.
std::string WhyNotLoaded(IKWObjectType* type, const SStoredObject& object) {
    auto* serial = dynamic_cast<CKWSerialObjectTypeImpl*>(type);
    if (!serial) {
        return type->GetName().GetStdString() + " is not a serializable type";
    }
    for (IKWField* field : serial->GetFields()) {
        if (!(field->GetFlags() & KW_FIELD_LOAD) || !field->SupportsStringStorage()) {
            continue;
        }
        const auto stored = std::count_if(
            object.fields.begin(), object.fields.end(),
            [&](const SStoredField& each) { return each.fieldID == field->GetFieldID(); });
        const std::string name = field->GetName().GetStdString();
        if (stored == 0) {
            return "its field " + name + " is missing";
        }
        if (stored > 1) {
            return "its field " + name + " is stored " + std::to_string(stored) + " times";
        }
    }
    return "it could not be read";
}

void LoadObjects(const SStoredDocument& document, const SStoredType& type, SCheckCounts& counts) {
    IKWObjectType* registered = CKWTypeSystem::FindType(type.typeID);
    if (!registered) {
        Report(counts, "type " + GuidText(type.typeID) + " is not registered here: its " +
                           CountOf(type.objects.size(), "object", "objects") + " cannot load");
        return;
    }
    for (const SStoredObject& object : type.objects) {
        if (!document.document->GetObjectA(type.typeID, object.instanceID)) {
            Report(counts, ObjectLabel(type.typeID, object.instanceID) +
                               " does not load: " + WhyNotLoaded(registered, object));
        }
    }
}

void CheckLinks(const SStoredDocument& document, const SStoredType& type, SCheckCounts& counts) {
    for (const SStoredObject& object : type.objects) {
        for (const SStoredField& field : object.fields) {
            for (const SStoredLink& link : field.links) {
                if (!link.IsSet()) {
                    continue;
                }
                const std::string where = "field " + FieldLabel(type.typeID, field.fieldID) +
                                          " of " + ObjectLabel(type.typeID, object.instanceID);
                if (!link.IsValid()) {
                    Report(counts, where + " holds a link that is not a pair of GUIDs (T=\"" +
                                       link.typeText + "\" I=\"" + link.instanceText + "\")");
                } else if (!document.Holds(link.typeID, link.instanceID)) {
                    Report(counts, where + " links to " +
                                       ObjectLabel(link.typeID, link.instanceID) +
                                       ", which the document does not hold");
                }
            }
        }
    }
}

// The loaded objects belong to the check: each stream of the document holds
// the one read from it.
void ReleaseLoadedObjects(CKWDocument* document) {
    std::set<IKWObject*> loaded;
    auto manifests = document->GetTypeManifestIterator();
    for (CKWTypeManifest* manifest = manifests.GetNext(1); manifest;
         manifest = manifests.GetNext(0)) {
        auto streams = manifest->GetInstanceFieldStreamIterator();
        for (CKWFieldStream* stream = streams.GetNext(1); stream; stream = streams.GetNext(0)) {
            if (IKWObject* object = stream->GetResult()) {
                loaded.insert(object);
                stream->SetResult(nullptr);
            }
        }
    }
    ReleaseEachLoadedObject(loaded);
}

}  // namespace

bool CheckStoredObjects(const std::string& path, const CStoredXmlArchive& archive) {
    SCheckCounts counts;
    for (const SStoredDocument& document : archive.GetDocuments()) {
        for (const SStoredType& type : document.types) {
            ++counts.types;
            counts.objects += type.objects.size();
            LoadObjects(document, type, counts);
            CheckLinks(document, type, counts);
        }
        ReleaseLoadedObjects(document.document);
    }
    const std::string verdict =
        counts.unresolved == 0
            ? "everything resolves"
            : CountOf(counts.unresolved, "thing does not resolve", "things do not resolve");
    std::printf("checked %s: %s, %s, %s: %s\n", path.c_str(),
                CountOf(archive.GetDocuments().size(), "document", "documents").c_str(),
                CountOf(counts.types, "type", "types").c_str(),
                CountOf(counts.objects, "object", "objects").c_str(), verdict.c_str());
    return counts.unresolved == 0;
}

}  // namespace kwXmlInspection
