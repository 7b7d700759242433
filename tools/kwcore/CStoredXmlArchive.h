// CStoredXmlArchive: an XML archive file as it is stored, for inspection: its
// documents, the type manifests of each, the objects of each type and the
// fields of each object, in file order.
//
// The file is read by CKWXMLFileArchive, so the documents, manifests and
// objects are exactly those the library loads (elements not named after a
// GUID, or named after one already taken, are left out as the loader leaves
// them out); the fields are read from each object's element. The archive
// stays open while the CStoredXmlArchive lives, so its documents can still
// load the stored objects (SStoredDocument::document). kwXmlArchives saves
// and loads whole archive files for the commands' demos.
//
//   CStoredXmlArchive stored;
//   std::string error;
//   if (!stored.Open("model.xml", error)) { report(error); }
//   for (const SStoredDocument& document : stored.GetDocuments()) { ... }
#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kwcore/object/CKWGuid.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"

class CKWDocument;
class IKWSerializableAdaptor;

// A link as stored: the "T" and "I" attributes, read as GUIDs.
struct SStoredLink {
    CKWGuid typeID;
    CKWGuid instanceID;
    // The attribute texts, kept to show links that do not read as GUIDs.
    std::string typeText;
    std::string instanceText;

    // An unset link has neither attribute.
    bool IsSet() const { return !typeText.empty() || !instanceText.empty(); }
    bool IsValid() const { return typeID.IsValid() && instanceID.IsValid(); }
};

// One field element. Its kind is what the element holds: a "V" value, a
// link's "T" and "I", "L" children, or nothing (an unset link or an empty
// collection).
struct SStoredField {
    enum class Kind { Value, Link, Links, Empty };

    CKWGuid fieldID;
    Kind kind = Kind::Empty;
    std::string value;               // Kind::Value: the text, in UTF-8
    std::vector<SStoredLink> links;  // Kind::Link: the link; Kind::Links: each "L"
};

struct SStoredObject {
    CKWGuid instanceID;
    std::vector<SStoredField> fields;
};

struct SStoredType {
    CKWGuid typeID;
    std::vector<SStoredObject> objects;
};

struct SStoredDocument {
    CKWDocument* document = nullptr;  // owned by the archive
    std::vector<SStoredType> types;
    // Every stored (type ID, instance ID).
    std::set<std::pair<CKWGuid, CKWGuid>> held;

    bool Holds(const CKWGuid& typeID, const CKWGuid& instanceID) const {
        return held.count({typeID, instanceID}) > 0;
    }
};

// XML archive files as the tool's commands save and load them.
namespace kwXmlArchives {

struct ReleaseObject {
    void operator()(IKWObject* object) const { object->Release(); }
};
using Ptr = std::unique_ptr<CKWXMLFileArchive, ReleaseObject>;

// A new XML file archive on path, released with the pointer; null when it
// cannot be made.
Ptr New(const std::string& path);
// Saves root and everything it links to into the document documentID of a
// new archive file at path. The archive's Close succeeds even when the file
// could not be written (the failure goes to the trace only), so a save is
// known to work once it loads.
bool Save(const std::string& path, const CKWGuid& documentID, IKWSerializableAdaptor* root);
// The object (typeID, instanceID) of the document documentID in the archive
// file at path, loaded with everything it links to; null when it is not
// there or cannot be read. The loaded objects belong to the caller.
IKWObject* Load(const std::string& path, const CKWGuid& documentID, const CKWGuid& typeID,
                const CKWGuid& instanceID);

}  // namespace kwXmlArchives

class CStoredXmlArchive {
public:
    CStoredXmlArchive() = default;
    CStoredXmlArchive(const CStoredXmlArchive&) = delete;
    CStoredXmlArchive& operator=(const CStoredXmlArchive&) = delete;
    ~CStoredXmlArchive();

    // Reads the file; false, with error saying why, when it is missing,
    // unreadable, or not well-formed XML.
    bool Open(const std::string& path, std::string& error);
    const std::vector<SStoredDocument>& GetDocuments() const { return m_documents; }

private:
    void ReadDocuments();

    kwXmlArchives::Ptr m_pArchive;
    std::vector<SStoredDocument> m_documents;
};
