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

// An object made for its stream, its header read, its fields not yet.
struct BegunObject {
    IKWObject* object;
    IKWSerializableAdaptor* adaptor;
    IKWFieldStream* stream;
};

// An object being read: its next field, and the objects made for the links
// the field just read met (read, in that order, before the next field).
struct LoadFrame {
    LoadFrame(IKWObject* o, IKWSerializableAdaptor* a, IKWFieldStream* s, bool created)
        : object(o), adaptor(a), stream(s), bCreated(created) {}
    LoadFrame(const BegunObject& begun, bool queued)
        : LoadFrame(begun.object, begun.adaptor, begun.stream, true) {
        bQueued = queued;
    }

    IKWObject* object;
    IKWSerializableAdaptor* adaptor;
    IKWFieldStream* stream;
    // Made by GetStoredObject (released when it cannot be read), or the caller's.
    bool bCreated;
    // Made for a link of the field the frame below just read.
    bool bQueued = false;
    std::size_t field = 0;
    // The field just read failed: the frame ends once its linked objects were read.
    bool bFieldFailed = false;
    std::vector<BegunObject> linked;
    std::size_t nextLinked = 0;
};

struct LoadWork {
    enum class Links {
        Load,     // load an unread object at once, with everything it links to
        Queue,    // while a field is read: make an unread object and queue its fields
        Resolve,  // a field read again: unread objects stay unresolved
    };
    std::vector<LoadFrame> frames;
    Links links = Links::Load;
    // Objects made by GetStoredObject whose fields are being read, and
    // whether an object read meanwhile links to them.
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

// Makes the object stored in the stream and reads everything before its
// fields; a null object when that fails (the object is then released). The
// object is recorded as the stream's result first, so links back to it
// (cycles) resolve to it and it is read once.
BegunObject BeginCreated(CKWDocument* document, IKWObjectType* type, CKWTypeManifest* manifest,
                         IKWFieldStream* stream, const CKWGuid& instanceID) {
    IKWObject* object = type->CreateInstance(instanceID);
    IKWSerializableAdaptor* adaptor = AdaptorOf(object);
    if (!adaptor) {
        if (object) {
            object->Release();
        }
        return BegunObject{};
    }
    stream->SetResult(object);
    adaptor->OnBeforeLoad(document, manifest, stream);
    if (!stream->ReadObjectHeader(object)) {
        stream->SetResult(nullptr);
        object->Release();
        return BegunObject{};
    }
    return BegunObject{object, adaptor, stream};
}

// Starts reading the fields of an object GetStoredObject made.
void PushCreated(LoadWork& work, const BegunObject& begun, bool queued) {
    work.reading[begun.object] = false;
    work.frames.emplace_back(begun, queued);
}

// Reads one field, its links resolved as links says.
bool ReadField(IKWFieldData* data, IKWFieldStream* stream, LoadWork& work, LoadWork::Links links) {
    work.links = links;
    const int read = data->SerializeFrom(stream);
    work.links = LoadWork::Links::Load;
    return read != 0;
}

// An object made for a link that cannot be read is dropped from the field
// that linked it, by reading that field again without it, before it goes.
void UnlinkFromLinkingField(LoadWork& work) {
    LoadFrame& linking = work.frames.back();
    IKWFieldData* data = linking.adaptor->GetFieldDataList()[linking.field - 1];
    if (!ReadField(data, linking.stream, work, LoadWork::Links::Resolve)) {
        work.frames.back().bFieldFailed = true;
    }
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
        return;
    }
    if (!frame.bCreated || linked) {
        return;
    }
    frame.stream->SetResult(nullptr);
    if (frame.bQueued) {
        UnlinkFromLinkingField(work);
    }
    frame.object->Release();
}

// Runs the frames above base to the end: each frame reads its next field,
// then the objects that field linked to (each with everything it links to),
// then its next field, then ends. Gives whether the frame at base was read.
bool RunLoad(CKWDocument* document, LoadWork& work, std::size_t base) {
    while (work.frames.size() > base) {
        LoadFrame& top = work.frames.back();
        if (top.nextLinked < top.linked.size()) {
            const BegunObject next = top.linked[top.nextLinked++];
            PushCreated(work, next, true);
            continue;
        }
        top.linked.clear();
        top.nextLinked = 0;
        const std::vector<IKWFieldData*>& fields = top.adaptor->GetFieldDataList();
        if (top.bFieldFailed || top.field >= fields.size()) {
            EndFrame(document, work, !top.bFieldFailed);
            continue;
        }
        IKWFieldData* data = fields[top.field++];
        if (kwFieldFlags::ReadOnLoad(data) &&
            !ReadField(data, top.stream, work, LoadWork::Links::Queue)) {
            // A hook may have loaded meanwhile: the frame is found again.
            work.frames.back().bFieldFailed = true;
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

// Makes an object met by a field's link and queues its fields on the frame
// reading that field. Hooks it runs load as outside a field.
IKWObject* QueueLinked(CKWDocument* document, IKWObjectType* type, CKWTypeManifest* manifest,
                       IKWFieldStream* stream, const CKWGuid& instanceID, LoadWork& work) {
    const std::size_t reader = work.frames.size() - 1;
    work.links = LoadWork::Links::Load;
    const BegunObject begun = BeginCreated(document, type, manifest, stream, instanceID);
    work.links = LoadWork::Links::Queue;
    if (!begun.object) {
        return nullptr;
    }
    work.frames[reader].linked.push_back(begun);
    return begun.object;
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

// While a field is read, an object not read yet is made and its header read
// (so a link to an object that is not stored stays unset), and its fields
// are read once the field is done: the link resolves to it at once.
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
    if (work && work->links == LoadWork::Links::Queue && !work->frames.empty()) {
        return QueueLinked(document, type, manifest, stream, instanceID, *work);
    }
    if (work && work->links == LoadWork::Links::Resolve) {
        return nullptr;
    }
    const bool read = LoadWith(document, [&](LoadWork& work) {
        const BegunObject begun = BeginCreated(document, type, manifest, stream, instanceID);
        if (!begun.object) {
            return false;
        }
        PushCreated(work, begun, false);
        return true;
    });
    return read ? stream->GetResult() : nullptr;
}

}  // namespace kwGraphSerialization
