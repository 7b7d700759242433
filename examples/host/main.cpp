// The example host: registers its own framework classes, makes instances
// through the type system, saves a small tree of serializable parts to an XML
// file and loads it back, and releases everything at the end.
#include <cstdio>
#include <filesystem>
#include <string>

#include "CExamplePart.h"
#include "CExampleShape.h"

namespace {

void UseShapes(IKWObjectType* type) {
    std::printf("type %s %s, parent %s\n", static_cast<const char*>(type->GetName()),
                static_cast<const char*>(type->GetID().GetCString()),
                static_cast<const char*>(type->GetParentType()->GetName()));

    auto* circle = static_cast<CExampleShape*>(type->CreateInstance(CKWGuid()));
    auto* square = static_cast<CExampleShape*>(type->CreateInstance(CKWGuid()));
    circle->SetLabel("circle");
    square->SetLabel("square");

    CKWObjGuidPtrMap<CExampleShape> shapes;
    shapes.Add(circle);
    shapes.Add(square);
    std::printf("%d shapes live, circle is a CKWObjectImpl: %d\n",
                CExampleShape::GetCExampleShapeType()->GetInstanceCount(),
                circle->IsTypeOf(CKWGuid("{3719246B-C3B0-4AE9-9723-6E998C42484A}")));
    shapes.RemoveAll(true);  // releases both, lowest instance ID first
}

#if KWCORE_HAS_XML

CExamplePart* NewPart(const char* name, int quantity, CExamplePart* parent) {
    auto* part =
        dynamic_cast<CExamplePart*>(CExamplePart::GetCExamplePartType()->CreateInstance(CKWGuid()));
    part->m_Name = name;
    part->m_iQuantity = quantity;
    part->m_PartNumber = CKWGuid::CreateNewGUID();
    part->m_pParent = parent;
    if (parent) {
        parent->m_Children.Add(part);
    }
    return part;
}

CKWXMLFileArchive* NewArchive(const std::filesystem::path& file) {
    auto* archive = dynamic_cast<CKWXMLFileArchive*>(
        CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid()));
    archive->SetFile(file.string().c_str());
    return archive;
}

// Saves root and every part it links to into a new document of the file.
bool SaveParts(const std::filesystem::path& file, CExamplePart* root) {
    CKWXMLFileArchive* archive = NewArchive(file);
    bool saved = false;
    if (archive->Open(CKWArchive::modeWrite)) {
        CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
        saved = document && root->SerializeTo(document);
        saved = archive->Close() && saved;  // Close writes the file
    }
    archive->Release();
    return saved;
}

// The part stored under rootID, loaded with every part it links to; the
// loaded parts belong to the caller.
CExamplePart* LoadParts(const std::filesystem::path& file, const CKWGuid& rootID) {
    CKWXMLFileArchive* archive = NewArchive(file);
    IKWObject* root = nullptr;
    if (archive->Open(CKWArchive::modeRead)) {
        CKWDocument* document = archive->GetDocumentIterator().GetNext(1);
        root = document ? document->GetObjectA(CExamplePart::GetCExamplePartType()->GetID(), rootID)
                        : nullptr;
        archive->Close();
    }
    archive->Release();
    return dynamic_cast<CExamplePart*>(root);
}

// The parts are released between the save and the load, so what is read
// back comes from the file alone.
bool SaveAndLoadParts(const std::filesystem::path& folder) {
    CExamplePart* gearbox = NewPart("gearbox", 1, nullptr);
    NewPart("input shaft", 1, gearbox);
    NewPart("spur gear \"\u00f8 40\" <steel>", 2, gearbox);
    const CKWGuid rootID = gearbox->GetInstanceID();
    const std::string saved = gearbox->DescribeTree();

    const std::filesystem::path file = folder / "gearbox.xml";
    const bool written = SaveParts(file, gearbox);
    ReleasePartTree(gearbox);
    CExamplePart* loaded = written ? LoadParts(file, rootID) : nullptr;
    const std::string read = loaded ? loaded->DescribeTree() : "nothing\n";
    ReleasePartTree(loaded);

    std::printf("read back from %s:\n%s", file.string().c_str(), read.c_str());
    if (read != saved) {
        std::fprintf(stderr, "the parts read back differ from those saved:\n%s", saved.c_str());
        return false;
    }
    std::printf("parts read back as saved\n");
    return true;
}

#endif

}  // namespace

int main() {
    // One call files the host's types; the library's own are already there.
    CKWTypeSystem::Initialize(CKWGuid(kHostRepositoryID));
    IKWObjectType* type =
        CKWTypeSystem::FindType(CKWGuid("{1E5B9C72-08D3-4F6A-B1E4-5A9C3D7F2B60}"));
    if (!type) {
        std::fprintf(stderr, "CExampleShape is not registered\n");
        return 1;
    }
    UseShapes(type);

    bool partsOk = true;
#if KWCORE_HAS_XML
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        ("kwcore-example-" + CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString());
    std::filesystem::create_directories(folder);
    partsOk = SaveAndLoadParts(folder);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
#endif

    CKWTypeSystem::Release();
    if (!partsOk) {
        return 1;
    }
    std::printf("example host: ok\n");
    return 0;
}
