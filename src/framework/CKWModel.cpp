#include "kwcore/framework/CKWModel.h"

#include "serial/KWSerializableSide.h"

// Abstract: CKWModelVoid and the applications' models make the instances.
KW_IMPLEMENT_ABSTRACT_TYPE(CKWModel, "{A0220F9B-B946-4ACF-B582-B9BE858A07D6}",
                           "{D265DD01-767A-4ACB-BCF6-02720CB234E1}")
void CKWModel::CKWModelType::InitializeType() {
    CreateFields(this, nullptr);
}
KW_BEGIN_FIELDS(CKWModel)
KW_END_FIELDS()

int CKWModel::AddView(CKWView* view) {
    return AddObserver(view, CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
}

CKWView* CKWModel::GetView(CKWGuid instanceID) {
    CKWObserver* observer = GetObserver(CKWGuid(KW_BASE_OBSERVATION_TYPE_ID), instanceID);
    if (!observer || !observer->IsTypeOf(CKWView::GetCKWViewType()->GetID())) {
        return nullptr;
    }
    return dynamic_cast<CKWView*>(observer);
}

int CKWModel::RemoveView(CKWGuid instanceID) {
    const CKWGuid base(KW_BASE_OBSERVATION_TYPE_ID);
    return RemoveObserver(GetObserver(base, instanceID), base);
}

void* CKWModel::GetInterface(CKWGuid interfaceID) {
    return kwSerializableSide::AnswerInterface(CKWObservable::GetInterface(interfaceID),
                                               interfaceID, this);
}

int CKWModel::OnInitialize() {
    return kwSerializableSide::AfterInitialize(CKWObservable::OnInitialize(), *this);
}

int CKWModel::OnBeforeRelease() {
    return kwSerializableSide::BeforeRelease(CKWObservable::OnBeforeRelease(), *this);
}
