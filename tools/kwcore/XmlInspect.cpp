#include "XmlInspect.h"

#include <cstdio>

#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"

namespace kwXmlInspection {
namespace {

// Values are shown between quotes on one line: quotes, backslashes and
// control characters are escaped; other UTF-8 text is shown as it is.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\n':
                quoted += "\\n";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\t':
                quoted += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(c));
                    quoted += escaped;
                } else {
                    quoted += c;
                }
        }
    }
    return quoted + "\"";
}

std::string LinkText(const SStoredLink& link) {
    if (!link.IsSet()) {
        return "(unset)";
    }
    if (!link.IsValid()) {
        return "-> bad link T=" + Quoted(link.typeText) + " I=" + Quoted(link.instanceText);
    }
    return "-> " + ObjectLabel(link.typeID, link.instanceID);
}

void PrintField(const CKWGuid& typeID, const SStoredField& field) {
    const std::string name = FieldLabel(typeID, field.fieldID);
    switch (field.kind) {
        case SStoredField::Kind::Value:
            std::printf("        %s = %s\n", name.c_str(), Quoted(field.value).c_str());
            return;
        case SStoredField::Kind::Link:
            std::printf("        %s %s\n", name.c_str(), LinkText(field.links.front()).c_str());
            return;
        case SStoredField::Kind::Links:
            std::printf("        %s: %s\n", name.c_str(),
                        CountOf(field.links.size(), "link", "links").c_str());
            for (const SStoredLink& link : field.links) {
                std::printf("          L %s\n", LinkText(link).c_str());
            }
            return;
        case SStoredField::Kind::Empty:
            std::printf("        %s: empty\n", name.c_str());
            return;
    }
}

void PrintType(const SStoredType& type) {
    const std::string name = TypeName(type.typeID);
    const std::string label = name.empty() ? GuidText(type.typeID) + " (not registered here)"
                                           : name + " " + GuidText(type.typeID);
    std::printf("    type %s: %s\n", label.c_str(),
                CountOf(type.objects.size(), "object", "objects").c_str());
    for (const SStoredObject& object : type.objects) {
        std::printf("      object %s\n", GuidText(object.instanceID).c_str());
        for (const SStoredField& field : object.fields) {
            PrintField(type.typeID, field);
        }
    }
}

}  // namespace

std::string GuidText(const CKWGuid& guid) {
    return guid.GetCStringUpperCase().GetStdString();
}

std::string CountOf(std::size_t count, const char* singular, const char* plural) {
    return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

std::string TypeName(const CKWGuid& typeID) {
    IKWObjectType* type = CKWTypeSystem::FindType(typeID);
    return type ? type->GetName().GetStdString() : std::string();
}

std::string TypeLabel(const CKWGuid& typeID) {
    const std::string name = TypeName(typeID);
    return name.empty() ? "unregistered type " + GuidText(typeID) : name;
}

std::string FieldLabel(const CKWGuid& typeID, const CKWGuid& fieldID) {
    auto* type = dynamic_cast<CKWSerialObjectTypeImpl*>(CKWTypeSystem::FindType(typeID));
    IKWField* field = type ? type->GetField(fieldID) : nullptr;
    return field ? field->GetName().GetStdString() : GuidText(fieldID);
}

std::string ObjectLabel(const CKWGuid& typeID, const CKWGuid& instanceID) {
    return TypeLabel(typeID) + " " + GuidText(instanceID);
}

void PrintStoredTree(const std::string& path, const CStoredXmlArchive& archive) {
    const auto& documents = archive.GetDocuments();
    std::printf("archive %s: %s\n", path.c_str(),
                CountOf(documents.size(), "document", "documents").c_str());
    for (const SStoredDocument& document : documents) {
        std::printf("  document %s: %s\n", GuidText(document.document->GetInstanceID()).c_str(),
                    CountOf(document.types.size(), "type", "types").c_str());
        for (const SStoredType& type : document.types) {
            PrintType(type);
        }
    }
}

}  // namespace kwXmlInspection
