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

#include "CSamplePart.h"
#include "ReleaseLoaded.h"
#include "XmlArchiveFiles.h"
#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWTypeManifest.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"

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
void ForEachStream(CKWDocument* document, Visit visit) {
    ForEach(document->GetTypeManifestIterator(), [&](CKWTypeManifest* manifest) {
        ForEach(manifest->GetInstanceFieldStreamIterator(),
                [&](CKWFieldStream* stream) { visit(manifest, stream); });
    });
}

// Every (type ID, instance ID) stored in the document, taken before any
// GetObjectA adds manifests or streams to the maps being walked.
std::vector<std::pair<CKWGuid, CKWGuid>> StoredObjects(CKWDocument* document) {
    std::vector<std::pair<CKWGuid, CKWGuid>> stored;
    ForEachStream(document, [&](CKWTypeManifest* manifest, CKWFieldStream* stream) {
        stored.emplace_back(manifest->GetStoredTypeID(), stream->GetInstanceID());
    });
    return stored;
}

// Every object the document loaded: each one is the result of its stream.
void CollectLoaded(CKWDocument* document, std::set<IKWObject*>& loaded) {
    ForEachStream(document, [&](CKWTypeManifest*, CKWFieldStream* stream) {
        if (IKWObject* object = stream->GetResult()) {
            loaded.insert(object);
        }
    });
}

// The seeds hold sample assemblies, the test kit's host classes with every
// kind of field.
std::size_t NameLength(const CSamplePart* part) {
    return part ? static_cast<std::size_t>(part->m_Name.GetLength()) : 0;
}

void ReadFields(IKWObject* object) {
    const auto* part = dynamic_cast<CSamplePart*>(object);
    if (!part) {
        return;
    }
    std::size_t sum = NameLength(part) + static_cast<std::size_t>(part->m_iCount) +
                      part->m_Tag.IsValid() + NameLength(part->m_pLink);
    for (const CSamplePart* link : part->m_Links) {
        sum += NameLength(link);
    }
    if (const auto* assembly = dynamic_cast<const CSampleAssembly*>(part)) {
        for (const auto& entry : assembly->m_LinkMap.GetMap()) {
            sum += NameLength(entry.second);
        }
        sum += static_cast<std::size_t>(assembly->m_LoadOnly.GetLength());
    }
    s_sink = s_sink + sum;
}

void LoadArchive(CKWXMLFileArchive* archive) {
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
    LoadArchive(NewXmlArchive(s_inputPath).get());
    // Whatever the input, no part outlives its load.
    if (CSamplePart::GetCSamplePartType()->GetInstanceCount() != 0 ||
        CSampleAssembly::GetCSampleAssemblyType()->GetInstanceCount() != 0) {
        std::abort();
    }
    return 0;
}
