// Making, saving and loading XML archive files in a few calls, and the names
// the file format gives GUIDs.
//
//   SaveXmlFile(file, root);
//   KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
//   archive->Open(CKWArchive::modeRead);
//   IKWObject* loaded = LoadFromFirstDocument(archive.get(), typeID, root->GetInstanceID());
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "KWTestObjects.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"

// An unopened archive of that file.
KWOwned<CKWXMLFileArchive> NewXmlArchive(const std::filesystem::path& file);

// Opens a new archive of the file for writing, lets save fill one new
// document, and closes it: 1 when save gave 1 and the file was written.
int SaveXmlFile(const std::filesystem::path& file, const std::function<int(CKWDocument*)>& save,
                const CKWGuid& documentID = CKWGuid());
// Saves the graph reachable from root.
int SaveXmlFile(const std::filesystem::path& file, IKWSerializableAdaptor* root,
                const CKWGuid& documentID = CKWGuid());

// The archive's first document, or null.
CKWXMLFileDocument* FirstXmlDocument(CKWXMLFileArchive* archive);
// The object stored under those IDs in the first document of an archive open
// for reading, loaded with what it links to; null when it does not load.
IKWObject* LoadFromFirstDocument(CKWXMLFileArchive* archive, const CKWGuid& typeID,
                                 const CKWGuid& instanceID);

// A GUID as an element name ("_" and 22 base-64 characters) and as a link
// attribute (the 22 characters).
std::string ElementName(const CKWGuid& guid);
std::string Attribute64(const CKWGuid& guid);
