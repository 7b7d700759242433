// Which way a field data's field takes part in saving and loading, read from
// the field's flags (KW_FIELD_SAVE, KW_FIELD_LOAD). A field data without a
// field takes part in neither.
#pragma once

#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"

namespace kwFieldFlags {

inline int FlagsOf(IKWFieldData* data) {
    IKWField* field = data ? data->GetField() : nullptr;
    return field ? field->GetFlags() : 0;
}

inline bool WrittenOnSave(IKWFieldData* data) {
    return (FlagsOf(data) & KW_FIELD_SAVE) != 0;
}

inline bool ReadOnLoad(IKWFieldData* data) {
    return (FlagsOf(data) & KW_FIELD_LOAD) != 0;
}

}  // namespace kwFieldFlags
