// A host-defined framework class: a shape with a name, registered under the
// host's own type repository.
#pragma once

#include <string>

#include <kwcore/kwcore.h>

// {C2A7F0D4-6B1E-4E8A-9D35-7F20B4C1E986}: the host's repository of types.
inline constexpr GUID kHostRepositoryID = {
    0xC2A7F0D4, 0x6B1E, 0x4E8A, {0x9D, 0x35, 0x7F, 0x20, 0xB4, 0xC1, 0xE9, 0x86}};

class CExampleShape : public CKWObjectImpl {
    KW_DECLARE_TYPE(CExampleShape, CKWObjectTypeImpl)

public:
    void SetLabel(const std::string& label) { m_label = label; }
    const std::string& GetLabel() const { return m_label; }

protected:
    CExampleShape() = default;
    int OnInitialize() override;
    int OnBeforeRelease() override;

private:
    std::string m_label;
};
