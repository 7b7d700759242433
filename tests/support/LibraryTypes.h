// Checks of how the type system holds the library's own types and their fields.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"
#include "kwcore/serial/IKWField.h"

struct SLibraryType {
    const char* typeID;
    const char* name;
    const char* parentID;
    int abstract;
};

// Each type is found under its ID in the library's repository, with that
// name, abstractness and parent, linked to the parent's type object. An
// abstract type makes no instances.
inline void ExpectLibraryTypes(std::initializer_list<SLibraryType> types) {
    for (const SLibraryType& row : types) {
        IKWObjectType* type = CKWTypeSystem::FindType(CKWGuid(row.typeID));
        ASSERT_NE(type, nullptr) << row.name;
        EXPECT_EQ(std::string(type->GetName()), row.name);
        EXPECT_EQ(type->GetParentTypeID(), CKWGuid(row.parentID)) << row.name;
        EXPECT_EQ(type->GetParentType(), CKWTypeSystem::FindType(CKWGuid(row.parentID)))
            << row.name;
        EXPECT_EQ(type->IsAbstract(), row.abstract) << row.name;
        if (row.abstract) {
            EXPECT_EQ(type->CreateInstance(CKWGuid()), nullptr) << row.name;
        }
        EXPECT_EQ(type->GetRepositoryID(), CKWGuid(CKWTypeSystem::LIBRARY_REPOSITORY_ID))
            << row.name;
    }
}

struct SLibraryField {
    const char* typeID;
    const char* fieldID;
    const char* name;
    const char* description;
    const char* dataTypeID;
};

// Each field is in its type's table under its ID, with that name,
// description and value type.
inline void ExpectLibraryFields(std::initializer_list<SLibraryField> fields) {
    for (const SLibraryField& row : fields) {
        auto* type =
            dynamic_cast<CKWSerialObjectTypeImpl*>(CKWTypeSystem::FindType(CKWGuid(row.typeID)));
        ASSERT_NE(type, nullptr) << row.name;
        IKWField* field = type->GetField(CKWGuid(row.fieldID));
        ASSERT_NE(field, nullptr) << row.name;
        EXPECT_EQ(std::string(field->GetName()), row.name);
        EXPECT_EQ(std::string(field->GetDescription()), row.description) << row.name;
        EXPECT_EQ(field->GetDataTypeID(), CKWGuid(row.dataTypeID)) << row.name;
    }
}
