#include "RegistryTestKeys.h"

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// ------------------------------------------------------------ open and create

TEST_F(RegistryTest, CreateMakesEveryMissingKeyOnThePathAndSaysWhetherItMadeOne) {
    CKeyHandle key;
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(Base(), "One\\Two\\Three", key, 0, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    ASSERT_EQ(CreateKey(Base(), "One\\Two\\Three", key, 0, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    ASSERT_EQ(CreateKey(Base(), "One\\Two", key, 0, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    EXPECT_EQ(SubKeyNames(key.Get()), Names{"Three"});
    EXPECT_EQ(OpenKey(Base(), "One\\Two\\Three", key), ERROR_SUCCESS);
}

TEST_F(RegistryTest, OpeningAMissingKeyFailsAndGivesNoHandle) {
    HKEY key = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x1234));
    EXPECT_EQ(RegOpenKeyExA(Base(), "Missing\\Deeper", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    CKeyHandle made;
    ASSERT_EQ(CreateKey(Base(), "Present", made), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyExA(Base(), "Present\\Missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Names{"Present"}, SubKeyNames(Base()));  // opening created nothing
}

TEST_F(RegistryTest, KeyNamesIgnoreCaseAndKeepTheCaseTheyWereCreatedWith) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "MixedCase\\Inner", key), ERROR_SUCCESS);
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(Base(), "MIXEDCASE\\inner", key, 0, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    EXPECT_EQ(OpenKey(Base(), "mixedcase\\INNER", key), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(Base()), Names{"MixedCase"});
    ASSERT_EQ(OpenKey(Base(), "mIxEdCaSe", key), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(key.Get()), Names{"Inner"});
}

TEST_F(RegistryTest, AnEmptyOrNullSubKeyOpensTheSameKeyAgain) {
    CKeyHandle again;
    ASSERT_EQ(OpenKey(Base(), "", again), ERROR_SUCCESS);
    ASSERT_NE(again.Get(), Base());
    ASSERT_EQ(SetDword(again.Get(), "Seen", 7), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(Base(), "Seen").size(), 4u);
    ASSERT_EQ(OpenKey(Base(), nullptr, again), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(again.Get(), "Seen").size(), 4u);
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(Base(), "", again, 0, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(again.Get(), "Seen").size(), 4u);
#if !defined(_WIN32)  // Wine reports the key as created
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
#endif
}

TEST_F(RegistryTest, PathsSplitAtBackslashesAndMayNotStartWithOne) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "A\\\\B\\", key), ERROR_SUCCESS);
    EXPECT_EQ(OpenKey(Base(), "A\\B", key), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(Base()), Names{"A"});
    EXPECT_EQ(CreateKey(Base(), "\\C", key), ERROR_BAD_PATHNAME);
    EXPECT_EQ(OpenKey(Base(), "\\A", key), ERROR_BAD_PATHNAME);
    EXPECT_EQ(key.Get(), nullptr);
}

TEST_F(RegistryTest, KeyNamesHoldUpTo255Characters) {
    const std::string longest(255, 'k');
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), longest.c_str(), key), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(Base()), Names{longest});
    const std::string tooLong = "Fine\\" + std::string(256, 'k');
    const LSTATUS created = CreateKey(Base(), tooLong.c_str(), key);
    const LSTATUS opened = OpenKey(Base(), tooLong.c_str(), key);
#if defined(_WIN32)  // Wine refuses the name with another code
    EXPECT_NE(created, ERROR_SUCCESS);
    EXPECT_NE(opened, ERROR_SUCCESS);
#else
    EXPECT_EQ(created, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(opened, ERROR_INVALID_PARAMETER);
#endif
    EXPECT_EQ(SubKeyNames(Base()), Names{longest});  // nothing on the refused path was made
}

TEST_F(RegistryTest, CallsThatCannotReturnAHandleAreRefused) {
#if !defined(_WIN32)  // Wine writes through the null pointer
    EXPECT_EQ(RegOpenKeyExA(Base(), "X", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCreateKeyExA(Base(), "X", 0, nullptr, 0, KEY_READ, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
#endif
    CKeyHandle key;
    EXPECT_EQ(
        RegCreateKeyExA(Base(), "X", 1, nullptr, 0, KEY_READ, nullptr, key.Receive(), nullptr),
        ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(SubKeyNames(Base()).empty());
}

// ------------------------------------------------------------------- handles

TEST_F(RegistryTest, AClosedHandleIsInvalidAndClosingARootDoesNothing) {
    HKEY key = nullptr;
    ASSERT_EQ(
        RegCreateKeyExA(Base(), "Closed", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    ASSERT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetDword(key, "Late", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    CKeyHandle stillThere;
    EXPECT_EQ(OpenKey(HKEY_CURRENT_USER, Registry().GetKeyPath().c_str(), stillThere),
              ERROR_SUCCESS);
}

TEST_F(RegistryTest, AKeyDeletedThroughAnotherHandleIsGoneForItsOtherHandles) {
    CKeyHandle first;
    CKeyHandle second;
    ASSERT_EQ(CreateKey(Base(), "Doomed", first), ERROR_SUCCESS);
    ASSERT_EQ(OpenKey(Base(), "Doomed", second), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(first.Get(), "Value", 1), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(Base(), "Doomed"), ERROR_SUCCESS);

    EXPECT_EQ(SetDword(second.Get(), "Value", 2), ERROR_KEY_DELETED);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(second.Get(), "Value", nullptr, nullptr, nullptr, &size),
              ERROR_KEY_DELETED);
    DWORD count = 0;
    EXPECT_EQ(RegQueryInfoKeyA(second.Get(), nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
    CKeyHandle below;
    EXPECT_EQ(CreateKey(second.Get(), "Below", below), ERROR_KEY_DELETED);
    // A new key of the same name is another key.
    CKeyHandle renewed;
    ASSERT_EQ(CreateKey(Base(), "Doomed", renewed), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(first.Get(), "Value", 3), ERROR_KEY_DELETED);
    EXPECT_TRUE(ValueNames(renewed.Get()).empty());
    EXPECT_EQ(first.Close(), ERROR_SUCCESS);
}

TEST_F(RegistryTest, AHandleAllowsOnlyWhatItWasOpenedFor) {
    CKeyHandle writable;
    ASSERT_EQ(CreateKey(Base(), "Guarded", writable), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(writable.Get(), "Kept", 1), ERROR_SUCCESS);
    CKeyHandle reader;
    ASSERT_EQ(OpenKey(Base(), "Guarded", reader, KEY_READ), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(reader.Get(), "New", 2), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(reader.Get(), "Kept"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(GetBytes(reader.Get(), "Kept").size(), 4u);
    // Sub-keys are made below any handle: the parent's rights are not asked.
    CKeyHandle child;
    EXPECT_EQ(CreateKey(reader.Get(), "Child", child), ERROR_SUCCESS);

    CKeyHandle writer;
    ASSERT_EQ(OpenKey(Base(), "Guarded", writer, KEY_SET_VALUE), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(writer.Get(), "New", 2), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(writer.Get(), "New", nullptr, nullptr, nullptr, &size),
              ERROR_ACCESS_DENIED);
    EXPECT_TRUE(SubKeyNames(writer.Get()).empty());  // no right to enumerate

    CKeyHandle generic;
    ASSERT_EQ(OpenKey(Base(), "Guarded", generic, GENERIC_READ | GENERIC_WRITE), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(generic.Get(), "Generic", 3), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyNames(generic.Get()), Names{"Child"});
}

// ------------------------------------------------------------------ deletion

TEST_F(RegistryTest, DeleteKeyRemovesALeafWithItsValuesAndRefusesKeysWithSubKeys) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Parent\\Leaf", key), ERROR_SUCCESS);
    ASSERT_EQ(SetString(key.Get(), "Name", "leaf"), ERROR_SUCCESS);
    key.Close();
    EXPECT_EQ(RegDeleteKeyA(Base(), "Parent"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyA(Base(), "PARENT\\leaf"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(Base(), "Parent\\Leaf"), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(CreateKey(Base(), "Parent\\Leaf", key), ERROR_SUCCESS);
    EXPECT_TRUE(ValueNames(key.Get()).empty());
    key.Close();
    EXPECT_EQ(RegDeleteKeyA(Base(), "Parent\\Leaf"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(Base(), "Parent"), ERROR_SUCCESS);
    EXPECT_TRUE(SubKeyNames(Base()).empty());
    EXPECT_EQ(RegDeleteKeyA(Base(), nullptr), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryTest, AnEmptySubKeyDeletesTheKeyItselfButNeverARoot) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Self", key), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(key.Get(), ""), ERROR_SUCCESS);
    EXPECT_TRUE(SubKeyNames(Base()).empty());
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, ""), ERROR_ACCESS_DENIED);
}

// ------------------------------------------------------------- volatile keys

TEST_F(RegistryTest, VolatileKeysTakeOnlyVolatileSubKeys) {
    CKeyHandle session;
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(Base(), "Session", session, REG_OPTION_VOLATILE, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    CKeyHandle child;
    EXPECT_EQ(CreateKey(session.Get(), "Lasting", child), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_EQ(CreateKey(Base(), "Session\\Lasting\\Deeper", child), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_TRUE(SubKeyNames(session.Get()).empty());
    ASSERT_EQ(CreateKey(session.Get(), "Fleeting", child, REG_OPTION_VOLATILE), ERROR_SUCCESS);
    // An existing key opens whatever the options.
    ASSERT_EQ(CreateKey(Base(), "Session", child, REG_OPTION_NON_VOLATILE, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    // A volatile key may sit below a lasting one.
    ASSERT_EQ(CreateKey(Base(), "Lasting", child), ERROR_SUCCESS);
    EXPECT_EQ(CreateKey(child.Get(), "Fleeting", session, REG_OPTION_VOLATILE), ERROR_SUCCESS);
}

}  // namespace
