// libFuzzer target over the XML archive's loader: each input is opened as an
// archive file, every stored object of every document is resolved through
// GetObjectA (links followed), its fields are read, and everything is
// released. A crash, a sanitizer report or a leak is a finding.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>
#include <xercesc/util/PlatformUtils.hpp>

#include "ReleaseLoaded.h"
#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/CKWTypeManifest.h"
#include "kwcore/serial/KWSerialTypeMacros.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"

// A host class with every kind of field; its type ID is in the seeds.
class CFuzzNode : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CFuzzNode)

public:
    CString m_Name;
    int m_iCount = 0;
    CKWGuid m_Tag;
    CFuzzNode* m_pLink = nullptr;
    CKWObjPtrList<CFuzzNode> m_Links;
    CKWObjGuidPtrMap<CFuzzNode> m_LinkMap;

protected:
    CFuzzNode() = default;
};

#define KW_FUZZ_NODE_TYPE_ID "{5C0F2E7A-93B1-4D68-A2E5-8B7C1F4D0A39}"
KW_IMPLEMENT_SERIAL_TYPE(CFuzzNode, KW_FUZZ_NODE_TYPE_ID, "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CFuzzNode)
KW_FIELD(m_Name, "{61A2B3C4-D5E6-4F70-8192-A3B4C5D6E7F8}", "{0B3D5F71-9A2C-4E8B-B6D4-1F3A5C7E9B20}",
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iCount, "{72B3C4D5-E6F7-4081-92A3-B4C5D6E7F809}",
         "{1C4E6082-AB3D-4F9C-87E5-2A4B6D8FAC31}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Tag, "{83C4D5E6-F708-4192-A3B4-C5D6E7F8091A}", "{2D5F7193-BC4E-40AD-98F6-3B5C7E9ABD42}",
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pLink, "{94D5E6F7-0819-42A3-B4C5-D6E7F8091A2B}", KW_FUZZ_NODE_TYPE_ID,
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Links, "{A5E6F708-192A-43B4-C5D6-E7F8091A2B3C}", KW_FUZZ_NODE_TYPE_ID,
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_LinkMap, "{B6F70819-2A3B-44C5-D6E7-F8091A2B3C4D}", KW_FUZZ_NODE_TYPE_ID,
         KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

namespace {
// The archive reads a file by name: an in-memory file, reached through
// /proc, leaves nothing on disk.
int s_inputFile = -1;
std::string s_inputPath;
// Keeps the loaded values observable, so reading them is not optimised away.
volatile std::size_t s_sink = 0;

bool WriteInput(const std::uint8_t* data, std::size_t size) {
    if (ftruncate(s_inputFile, 0) != 0) {
        return false;
    }
    std::size_t written = 0;
    while (written < size) {
        const ssize_t n = pwrite(s_inputFile, data + written, size - written, written);
        if (n <= 0) {
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    return true;
}

template <class T, class Visit>
void ForEach(CKWGuidMapIterator<T> iterator, Visit visit) {
    for (T* element = iterator.GetNext(1); element; element = iterator.GetNext(0)) {
        visit(element);
    }
}

template <class Visit>
void ForEachStream(const CKWDocument* document, Visit visit) {
    ForEach(document->GetTypeManifestIterator(), [&](CKWTypeManifest* manifest) {
        ForEach(manifest->GetInstanceFieldStreamIterator(),
                [&](CKWFieldStream* stream) { visit(manifest, stream); });
    });
}

// Every (type ID, instance ID) stored in the document, taken before any
// GetObjectA adds manifests or streams to the maps being walked.
std::vector<std::pair<CKWGuid, CKWGuid>> StoredObjects(const CKWDocument* document) {
    std::vector<std::pair<CKWGuid, CKWGuid>> stored;
    ForEachStream(document, [&](CKWTypeManifest* manifest, CKWFieldStream* stream) {
        stored.emplace_back(manifest->GetStoredTypeID(), stream->GetInstanceID());
    });
    return stored;
}

// Every object the document loaded: each one is the result of its stream.
void CollectLoaded(const CKWDocument* document, std::set<IKWObject*>& loaded) {
    ForEachStream(document, [&](CKWTypeManifest*, CKWFieldStream* stream) {
        if (IKWObject* object = stream->GetResult()) {
            loaded.insert(object);
        }
    });
}

std::size_t NameLength(const CFuzzNode* node) {
    return node ? static_cast<std::size_t>(node->m_Name.GetLength()) : 0;
}

void ReadFields(IKWObject* object) {
    const auto* node = dynamic_cast<CFuzzNode*>(object);
    if (!node) {
        return;
    }
    std::size_t sum = NameLength(node) + static_cast<std::size_t>(node->m_iCount) +
                      node->m_Tag.IsValid() + NameLength(node->m_pLink);
    for (const CFuzzNode* link : node->m_Links) {
        sum += NameLength(link);
    }
    for (const auto& entry : node->m_LinkMap.GetMap()) {
        sum += NameLength(entry.second);
    }
    s_sink = s_sink + sum;
}

void LoadArchive(CKWXMLFileArchive* archive) {
    archive->SetFile(s_inputPath.c_str());
    archive->Open(CKWArchive::modeRead);
    std::set<IKWObject*> loaded;
    ForEach(archive->GetDocumentIterator(), [&](CKWDocument* document) {
        for (const auto& [typeID, instanceID] : StoredObjects(document)) {
            document->GetObjectA(typeID, instanceID);
        }
        CollectLoaded(document, loaded);
    });
    for (IKWObject* object : loaded) {
        ReadFields(object);
    }
    ReleaseEachLoadedObject(loaded);
    archive->Close();
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    CKWTypeSystem::Initialize(CKWGuid("{D4E5F607-1829-4A3B-9C4D-5E6F708192A3}"));
    // Kept initialised, so each Open does not rebuild Xerces' platform.
    XERCES_CPP_NAMESPACE::XMLPlatformUtils::Initialize();
    s_inputFile = memfd_create("kwxml-fuzz-input", 0);
    if (s_inputFile < 0) {
        std::abort();
    }
    s_inputPath = "/proc/self/fd/" + std::to_string(s_inputFile);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!WriteInput(data, size)) {
        std::abort();
    }
    IKWObject* object = CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid());
    auto* archive = dynamic_cast<CKWXMLFileArchive*>(object);
    if (!archive) {
        std::abort();
    }
    LoadArchive(archive);
    archive->Release();
    // Whatever the input, no node outlives its load.
    if (CFuzzNode::GetCFuzzNodeType()->GetInstanceCount() != 0) {
        std::abort();
    }
    return 0;
}
