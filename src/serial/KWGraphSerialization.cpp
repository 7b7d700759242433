#include "KWGraphSerialization.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "KWFieldFlags.h"
#include "KWStoredHierarchy.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/IKWFieldData.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"

namespace kwGraphSerialization {

// An object being saved: its next field, and the linked objects the field
// just written still has to save.
struct SaveFrame {
    SaveFrame(IKWSerializableAdaptor* a, IKWFieldStream* s) : adaptor(a), stream(s) {}

    IKWSerializableAdaptor* adaptor;
    IKWFieldStream* stream;
    std::size_t field = 0;
    std::vector<IKWSerializableAdaptor*> linked;
    std::size_t nextLinked = 0;
};

struct SaveWork {
    std::vector<SaveFrame> frames;
    // While a field is written: links are queued on the top frame.
    bool bQueueLinks = false;
};

// A link to an object not read yet, met by a field's first reading.
struct PendingLink {
    IKWObjectType* type;
    CKWTypeManifest* manifest;
    IKWFieldStream* stream;
    CKWGuid instanceID;
};

// An object being read: its next field, and the links to objects not read
// yet that the current field met (read before the field is read again).
struct LoadFrame {
    LoadFrame(IKWObject* o, IKWSerializableAdaptor* a, IKWFieldStream* s, bool created)
        : object(o), adaptor(a), stream(s), bCreated(created) {}

    IKWObject* object;
    IKWSerializableAdaptor* adaptor;
    IKWFieldStream* stream;
    // Made by GetStoredObject (released when it cannot be read), or the caller's.
    bool bCreated;
    std::size_t field = 0;
    std::vector<PendingLink> pending;
    std::size_t nextPending = 0;
};

struct LoadWork {
    enum class Links {
        Load,     // load an unread object at once
        Queue,    // a field's first reading: queue unread objects on the top frame
        Resolve,  // a field read again: unread objects stay unresolved
    };
    std::vector<LoadFrame> frames;
    Links links = Links::Load;
    // Objects GetStoredObject is reading, and whether an object read
    // meanwhile links to them.
    std::unordered_map<IKWObject*, bool> reading;
    // The outcome of the last frame that ended.
    bool bLastRead = false;
};

// The save and the load under way on a document, kept in the document.
struct DocumentWork {
    static SaveWork*& Save(CKWDocument* document) { return document->m_pSaveWork; }
    static LoadWork*& Load(CKWDocument* document) { return document->m_pLoadWork; }
};

namespace {

IKWSerializableAdaptor* AdaptorOf(IKWObject* object) {
    return object ? static_cast<IKWSerializableAdaptor*>(
                        object->GetInterface(IID_IKWSerializableAdaptor))
                  : nullptr;
}

// ---------------------------------------------------------------- saving

enum class Begun { Failed, Done, Pushed };

CKWTypeManifest* ManifestForSave(CKWDocument* document, IKWObjectType* type) {
    CKWTypeManifest* manifest = kwStoredHierarchy::FindTypeManifest(document, type->GetID());
    return manifest ? manifest : document->CreateTypeManifest(type->GetID(), nullptr);
}

IKWFieldStream* StreamForSave(CKWTypeManifest* manifest, const CKWGuid& instanceID) {
    if (IKWFieldStream* stream = kwStoredHierarchy::FindFieldStream(manifest, instanceID)) {
        return stream;
    }
    CKWFieldStream* created = manifest->CreateFieldStream(instanceID, nullptr);
    return created ? static_cast<IKWFieldStream*>(created->GetInterface(IID_IKWFieldStream))
                   : nullptr;
}

// Everything before the fields. The object is marked as written before its
// fields are, so a link cycle back to it ends at the session check.
Begun BeginSave(CKWDocument* document, IKWSerializableAdaptor* adaptor, SaveWork& work) {
    IKWObject* object = adaptor->GetThisObject();
    IKWObjectType* type = object ? object->GetType() : nullptr;
    if (!type) {
        return Begun::Failed;
    }
    CKWTypeManifest* manifest = ManifestForSave(document, type);
    if (!manifest) {
        return Begun::Failed;
    }
    if (!manifest->TypeHeaderIsWritten()) {
        manifest->WriteTypeHeader(type);
    }
    IKWFieldStream* stream = StreamForSave(manifest, object->GetInstanceID());
    if (!stream) {
        return Begun::Failed;
    }
    const CKWGuid session = document->GetSerialSessionID();
    if (stream->ObjectHasBeenSerialized(session)) {
        return Begun::Done;
    }
    adaptor->OnBeforeSave(document, manifest, stream);
    if (!stream->WriteObjectHeader(object)) {
        return Begun::Failed;
    }
    stream->SetObjectSerialized(session);
    work.frames.emplace_back(adaptor, stream);
    return Begun::Pushed;
}

// A failure fails every object whose save was under way, as a failing
// recursive call fails its callers.
int FailSave(SaveWork& work, std::size_t base) {
    work.frames.erase(work.frames.begin() + static_cast<std::ptrdiff_t>(base), work.frames.end());
    return 0;
}

// Writes the field with its links queued on the top frame.
int WriteField(IKWFieldData* data, IKWFieldStream* stream, SaveWork& work) {
    work.bQueueLinks = true;
    const int written = data->SerializeTo(stream);
    work.bQueueLinks = false;
    return written;
}

// Runs the frames above base to the end: each frame saves the objects its
// last field linked to, then writes its next field, then ends.
int RunSave(CKWDocument* document, SaveWork& work, std::size_t base) {
    while (work.frames.size() > base) {
        SaveFrame& top = work.frames.back();
        if (top.nextLinked < top.linked.size()) {
            IKWSerializableAdaptor* linked = top.linked[top.nextLinked++];
            if (BeginSave(document, linked, work) == Begun::Failed) {
                return FailSave(work, base);
            }
            continue;
        }
        top.linked.clear();
        top.nextLinked = 0;
        const std::vector<IKWFieldData*>& fields = top.adaptor->GetFieldDataList();
        if (top.field < fields.size()) {
            IKWFieldData* data = fields[top.field++];
            if (kwFieldFlags::WrittenOnSave(data) && !WriteField(data, top.stream, work)) {
                return FailSave(work, base);
            }
            continue;
        }
        IKWSerializableAdaptor* done = top.adaptor;
        work.frames.pop_back();
        done->OnAfterSave(document);
    }
    return 1;
}

// ---------------------------------------------------------------- loading

// The first steps of reading an object made for a stream; false when it
// cannot begin (the object is then released).
bool BeginCreated(CKWDocument* document, const PendingLink& link, LoadWork& work) {
    IKWObject* object = link.type->CreateInstance(link.instanceID);
    if (!object) {
        return false;
    }
    IKWSerializableAdaptor* adaptor = AdaptorOf(object);
    if (!adaptor) {
        object->Release();
        return false;
    }
    // Recorded before its fields are read, so links back to it (cycles)
    // resolve to it and it is read once.
    link.stream->SetResult(object);
    work.reading[object] = false;
    adaptor->OnBeforeLoad(document, link.manifest, link.stream);
    if (!link.stream->ReadObjectHeader(object)) {
        work.reading.erase(object);
        link.stream->SetResult(nullptr);
        object->Release();
        return false;
    }
    work.frames.emplace_back(object, adaptor, link.stream, true);
    return true;
}

// An object that cannot be read is released, unless an object read
// meanwhile already links to it: then it stays, half read, as the result,
// so no link dangles.
void EndFrame(CKWDocument* document, LoadWork& work, bool read) {
    LoadFrame frame = std::move(work.frames.back());
    work.frames.pop_back();
    work.bLastRead = read;
    bool linked = false;
    if (frame.bCreated) {
        auto found = work.reading.find(frame.object);
        linked = found != work.reading.end() && found->second;
        work.reading.erase(frame.object);
    }
    if (read) {
        frame.adaptor->OnAfterLoad(document);
    } else if (frame.bCreated && !linked) {
        frame.stream->SetResult(nullptr);
        frame.object->Release();
    }
}

// Starts reading a queued link's object unless it was read meanwhile.
void BeginQueued(CKWDocument* document, const PendingLink& link, LoadWork& work) {
    if (!link.stream->GetResult()) {
        BeginCreated(document, link, work);
    }
}

int ReadField(IKWFieldData* data, IKWFieldStream* stream, LoadWork& work, LoadWork::Links links) {
    work.links = links;
    const int read = data->SerializeFrom(stream);
    work.links = LoadWork::Links::Load;
    return read;
}

// Runs the frames above base to the end: each frame reads the objects its
// current field linked to, then reads that field again, then its next
// field, then ends. Gives whether the frame at base was read.
bool RunLoad(CKWDocument* document, LoadWork& work, std::size_t base) {
    while (work.frames.size() > base) {
        LoadFrame& top = work.frames.back();
        if (top.nextPending < top.pending.size()) {
            const PendingLink link = top.pending[top.nextPending++];
            BeginQueued(document, link, work);
            continue;
        }
        const std::vector<IKWFieldData*>& fields = top.adaptor->GetFieldDataList();
        if (!top.pending.empty()) {
            // Every object the field linked to was read: read the field again.
            top.pending.clear();
            top.nextPending = 0;
            if (!ReadField(fields[top.field++], top.stream, work, LoadWork::Links::Resolve)) {
                EndFrame(document, work, false);
            }
            continue;
        }
        if (top.field >= fields.size()) {
            EndFrame(document, work, true);
            continue;
        }
        IKWFieldData* data = fields[top.field];
        if (!kwFieldFlags::ReadOnLoad(data)) {
            ++top.field;
            continue;
        }
        const int read = ReadField(data, top.stream, work, LoadWork::Links::Queue);
        LoadFrame& same = work.frames.back();
        if (!same.pending.empty()) {
            continue;  // the field is read again once its links were read
        }
        ++same.field;
        if (!read) {
            EndFrame(document, work, false);
        }
    }
    return work.bLastRead;
}

// Runs a load on the document's work list, or on a new one.
template <class Begin>
bool LoadWith(CKWDocument* document, Begin begin) {
    LoadWork*& current = DocumentWork::Load(document);
    LoadWork local;
    LoadWork* work = current ? current : &local;
    current = work;
    const LoadWork::Links links = work->links;
    work->links = LoadWork::Links::Load;
    const std::size_t base = work->frames.size();
    const bool read = begin(*work) && RunLoad(document, *work, base);
    work->links = links;
    if (work == &local) {
        current = nullptr;
    }
    return read;
}

CKWTypeManifest* FindOrCreateManifest(CKWDocument* document, const CKWGuid& typeID) {
    CKWTypeManifest* manifest = kwStoredHierarchy::FindTypeManifest(document, typeID);
    return manifest ? manifest
                    : document->CreateTypeManifest(typeID, CKWTypeSystem::FindType(typeID));
}

IKWFieldStream* FindOrCreateStream(CKWTypeManifest* manifest, const CKWGuid& typeID,
                                   const CKWGuid& instanceID) {
    if (IKWFieldStream* stream = kwStoredHierarchy::FindFieldStream(manifest, instanceID)) {
        return stream;
    }
    manifest->CreateFieldStream(instanceID, CKWTypeSystem::FindType(typeID));
    return kwStoredHierarchy::FindFieldStream(manifest, instanceID);
}

// An object already loaded, or being read: a link to one being read keeps
// it even if its own reading fails.
IKWObject* Loaded(IKWObject* loaded, LoadWork* work) {
    if (work) {
        auto found = work->reading.find(loaded);
        if (found != work->reading.end()) {
            found->second = true;
        }
    }
    return loaded;
}

}  // namespace

int SaveGraph(CKWDocument* document, IKWSerializableAdaptor* adaptor) {
    if (!document || !adaptor) {
        return 0;
    }
    SaveWork*& current = DocumentWork::Save(document);
    SaveWork local;
    SaveWork* work = current ? current : &local;
    current = work;
    // A hook may save from inside a save: that save runs above the current frames.
    const bool bQueueing = work->bQueueLinks;
    work->bQueueLinks = false;
    const std::size_t base = work->frames.size();
    int result = 0;
    switch (BeginSave(document, adaptor, *work)) {
        case Begun::Failed:
            break;
        case Begun::Done:
            result = 1;
            break;
        case Begun::Pushed:
            result = RunSave(document, *work, base);
            break;
    }
    work->bQueueLinks = bQueueing;
    if (work == &local) {
        current = nullptr;
    }
    return result;
}

int SaveLinkedObject(IKWFieldStream* stream, IKWObject* object) {
    IKWSerializableAdaptor* adaptor = AdaptorOf(object);
    if (!adaptor) {
        return 1;  // null, or not serializable: the link alone is stored
    }
    CKWDocument* document = stream->GetDocument();
    SaveWork* work = document ? DocumentWork::Save(document) : nullptr;
    if (work && work->bQueueLinks && !work->frames.empty()) {
        work->frames.back().linked.push_back(adaptor);
        return 1;
    }
    return adaptor->SerializeTo(document);
}

int LoadGraph(CKWDocument* document, IKWSerializableAdaptor* adaptor, CKWTypeManifest* manifest,
              IKWFieldStream* stream) {
    IKWObject* object = adaptor->GetThisObject();
    const CKWGuid session = document->GetSerialSessionID();
    if (stream->ObjectHasBeenSerialized(session)) {
        return 1;
    }
    // Links back to this object resolve to it, not to a second copy.
    if (!stream->GetResult()) {
        stream->SetResult(object);
    }
    const bool read = LoadWith(document, [&](LoadWork& work) {
        adaptor->OnBeforeLoad(document, manifest, stream);
        if (!stream->ReadObjectHeader(object)) {
            return false;
        }
        work.frames.emplace_back(object, adaptor, stream, false);
        return true;
    });
    if (!read) {
        return 0;
    }
    stream->SetObjectSerialized(session);
    return 1;
}

// While a field is read for the first time, an object not read yet is only
// queued (null now, resolved when the field is read again); while it is
// read again, one still not read stays unresolved.
IKWObject* GetStoredObject(CKWDocument* document, const CKWGuid& typeID,
                           const CKWGuid& instanceID) {
    if (!typeID.IsValid() || !instanceID.IsValid()) {
        return nullptr;
    }
    CKWTypeManifest* manifest = FindOrCreateManifest(document, typeID);
    IKWFieldStream* stream = manifest ? FindOrCreateStream(manifest, typeID, instanceID) : nullptr;
    if (!stream) {
        return nullptr;
    }
    LoadWork* work = DocumentWork::Load(document);
    if (IKWObject* loaded = stream->GetResult()) {
        return Loaded(loaded, work);
    }
    IKWObjectType* type = CKWTypeSystem::FindType(typeID);
    if (!type) {
        return nullptr;
    }
    const PendingLink link{type, manifest, stream, instanceID};
    if (work && work->links == LoadWork::Links::Queue && !work->frames.empty()) {
        work->frames.back().pending.push_back(link);
        return nullptr;
    }
    if (work && work->links == LoadWork::Links::Resolve) {
        return nullptr;
    }
    const bool read =
        LoadWith(document, [&](LoadWork& work) { return BeginCreated(document, link, work); });
    return read ? stream->GetResult() : nullptr;
}

}  // namespace kwGraphSerialization
