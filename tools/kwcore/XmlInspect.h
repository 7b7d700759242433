// kwcore xml inspect: an XML archive file read by CStoredXmlArchive, printed
// as a tree or checked object by object, and the labels both use for what
// the file names by GUID.
#pragma once

#include <cstddef>
#include <string>

#include "CStoredXmlArchive.h"

namespace kwXmlInspection {

// Prints the documents, type manifests, objects and fields of the archive at
// path as an indented tree on standard output.
void PrintStoredTree(const std::string& path, const CStoredXmlArchive& archive);
// Loads every stored object of a registered type through its document and
// prints each thing that does not resolve (types not registered here,
// objects that cannot be read, links to objects the document does not hold),
// then a summary. True when everything resolves.
bool CheckStoredObjects(const std::string& path, const CStoredXmlArchive& archive);

// "1 object", "2 objects".
std::string CountOf(std::size_t count, const char* singular, const char* plural);
// The upper-case brace form: {EC130930-944F-4394-B58A-D252EB277FFD}.
std::string GuidText(const CKWGuid& guid);
// The registered type's name, or empty.
std::string TypeName(const CKWGuid& typeID);
// The type's name, or "unregistered type {...}".
std::string TypeLabel(const CKWGuid& typeID);
// The field's name in the registered type's field table; else its GUID.
std::string FieldLabel(const CKWGuid& typeID, const CKWGuid& fieldID);
// The type's label and the instance ID: "CDemoPart {...}".
std::string ObjectLabel(const CKWGuid& typeID, const CKWGuid& instanceID);

}  // namespace kwXmlInspection
