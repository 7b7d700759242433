#include "XmlArchiveFiles.h"

KWOwned<CKWXMLFileArchive> NewXmlArchive(const std::filesystem::path& file) {
    KWOwned<CKWXMLFileArchive> archive(
        KWTestCreate<CKWXMLFileArchive>(CKWXMLFileArchive::GetCKWXMLFileArchiveType()));
    archive->SetFile(file.string().c_str());
    return archive;
}

int SaveXmlFile(const std::filesystem::path& file, const std::function<int(CKWDocument*)>& save,
                const CKWGuid& documentID) {
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
    if (!archive->Open(CKWArchive::modeWrite)) {
        return 0;
    }
    CKWDocument* document = archive->CreateNewDocument(documentID, nullptr);
    const int saved = document && save(document);
    return archive->Close() && saved ? 1 : 0;
}

int SaveXmlFile(const std::filesystem::path& file, IKWSerializableAdaptor* root,
                const CKWGuid& documentID) {
    return SaveXmlFile(
        file, [root](CKWDocument* document) { return root->SerializeTo(document); }, documentID);
}

CKWXMLFileDocument* FirstXmlDocument(CKWXMLFileArchive* archive) {
    return dynamic_cast<CKWXMLFileDocument*>(archive->GetDocumentIterator().GetNext(1));
}

IKWObject* LoadFromFirstDocument(CKWXMLFileArchive* archive, const CKWGuid& typeID,
                                 const CKWGuid& instanceID) {
    CKWXMLFileDocument* document = FirstXmlDocument(archive);
    return document ? document->GetObjectA(typeID, instanceID) : nullptr;
}

std::string ElementName(const CKWGuid& guid) {
    return guid.GetCStringXMLElement().GetStdString();
}

std::string Attribute64(const CKWGuid& guid) {
    return guid.GetCStringXML64().GetStdString();
}
