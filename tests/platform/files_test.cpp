#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "platform/base/paths.h"
#include "platform/device.h"
#include "platform/files.h"
#include "tests/platform/hostsupport.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/testdevice.h"

namespace {

HANDLE Open(const WCHAR* path, DWORD disposition, DWORD access = GENERIC_READ, DWORD share = 0) {
    return CreateFileW(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, 0);
}

DWORD OpenError(const WCHAR* path, DWORD disposition, DWORD access = GENERIC_READ, DWORD share = 0) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(Open(path, disposition, access, share), INVALID_HANDLE_VALUE);
    return GetLastError();
}

class Files : public testing::Test {
protected:
    void SetUp() override {
        root = DeviceRootFolder();
        ASSERT_EQ(mkdir((root + "/My Documents").c_str(), 0777), 0);
        old = root + "/My Documents/Old.bkp";
        WriteHostFile(old, "old content");
    }

    TestDevice device;
    std::string root;
    std::string old;
};

TEST_F(Files, NamesAreFoundByPathRuleAndWithoutCase) {
    WriteHostFile(root + "/UPPER", "");
    WriteHostFile(root + "/upper", "");
    const struct {
        std::u16string path;
        std::string host;
    } known[] = {
        {u"\\My Documents\\Old.bkp", old},
        {u"\\my documents/OLD.BKP", old},
        {u"\\\u00fcber\\..\\My Documents\\.\\\\old.bkp", old},
        {u"\\Upper", root + "/UPPER"}, // of two the same one always
        {u"\\upper", root + "/upper"},
        {u"\\MY DOCUMENTS\\New.bkp", root + "/My Documents/New.bkp"},
        {u"\\none\\My Documents", root + "/none/My Documents"},
        {u"\\", root + "/"},
        {u"\\Storage Card\\ETC\\passwd", "/etc/passwd"},
        {u"\\storage card", "/"},
        {u"/etc/../etc/passwd", "/etc/../etc/passwd"},
        {u"all.bkp", "all.bkp"},
        {u"..\\all.bkp", "../all.bkp"},
    };
    for (const auto& [path, host] : known) {
        std::string found;
        EXPECT_TRUE(HostPath(path.c_str(), found));
        EXPECT_EQ(found, host);
    }
    std::string found;
    for (const WCHAR* refused : {u"", u"\\..\\x", u"\\a\\..\\..\\root\\x", u"\\Storage Card\\..\\..\\x",
                                 u"\\\\server\\x", u"\\bad\xD800name"}) {
        EXPECT_FALSE(HostPath(refused, found));
        EXPECT_EQ(OpenError(refused, CREATE_ALWAYS, GENERIC_WRITE), ERROR_PATH_NOT_FOUND);
    }
    EXPECT_EQ(DevicePath(old), u"\\My Documents\\Old.bkp");
    EXPECT_EQ(DevicePath(root), u"\\");
    EXPECT_TRUE(DevicePath(root + "s/x").starts_with(u"\\Storage Card\\")); // its name only begins alike
    EXPECT_EQ(DevicePath("/etc/passwd"), u"\\Storage Card\\etc\\passwd");
}

TEST_F(Files, OpeningHonoursTheDispositionAndSaysWhyNot) {
    EXPECT_EQ(OpenError(u"\\My Documents\\none", OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenError(u"\\none\\none", OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(u"\\none\\none", CREATE_ALWAYS, GENERIC_WRITE), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(u"\\My Documents\\Old.bkp\\x", CREATE_NEW, GENERIC_WRITE), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(std::u16string(100000, u'x').c_str(), OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(u"\\My Documents", OPEN_EXISTING), ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenError(u"\\My Documents", CREATE_ALWAYS, GENERIC_WRITE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenError(u"\\my documents\\old.bkp", CREATE_NEW, GENERIC_WRITE), ERROR_FILE_EXISTS);
    EXPECT_EQ(OpenError(u"\\x", 0), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(OpenError(u"\\x", OPEN_EXISTING, 0), ERROR_INVALID_PARAMETER);
    ASSERT_EQ(mkfifo((root + "/pipe").c_str(), 0666), 0);
    EXPECT_EQ(OpenError(u"\\pipe", OPEN_EXISTING), ERROR_ACCESS_DENIED); // and does not wait for a writer
    EXPECT_EQ(HostFile(old), "old content");

    DWORD count = 0;
    HANDLE file = Open(u"\\MY DOCUMENTS\\OLD.BKP", CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_TRUE(WriteFile(file, "new", 3, &count, nullptr));
    EXPECT_EQ(count, 3u);
    char byte = 0;
    EXPECT_EQ(FailureOf(ReadFile(file, &byte, 1, &count, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(FailureOf(WriteFile(file, "late", 4, &count, nullptr)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(HostFile(old), "new"); // under its old name
}

TEST_F(Files, PlacesReachBeyondFourGigabytes) {
    const HANDLE file = Open(u"\\sparse", CREATE_ALWAYS, GENERIC_READ | GENERIC_WRITE);
    LONG high = 1;
    DWORD count = 0, sizeHigh = 0;
    EXPECT_EQ(SetFilePointer(file, -2, &high, FILE_BEGIN), 0xFFFFFFFE);
    EXPECT_TRUE(WriteFile(file, "abcd", 4, &count, nullptr));
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 2u);
    EXPECT_EQ(sizeHigh, 2u);
    SetLastError(ERROR_ACCESS_DENIED);
    high = -1;
    EXPECT_EQ(SetFilePointer(file, -3, &high, FILE_END), 0xFFFFFFFF); // a place, not a failure
    EXPECT_EQ(high, 1);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    char text[8] = {};
    EXPECT_TRUE(ReadFile(file, text, 8, &count, nullptr));
    EXPECT_EQ(std::string(text, count), "bcd");
    EXPECT_TRUE(ReadFile(file, text, 8, &count, nullptr)); // the end is no failure
    EXPECT_EQ(count, 0u);

    // The place does not fit.
    EXPECT_EQ(FailureOf(SetFilePointer(file, 0, nullptr, FILE_CURRENT)), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(SetFilePointer(file, 5, nullptr, FILE_BEGIN), 5u);
    EXPECT_EQ(SetFilePointer(file, -6, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(SetFilePointer(file, -1, nullptr, FILE_CURRENT), 4u); // where it was, less one
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(Files, AFullDiskStopsAWrite) {
    const HANDLE file = Open(u"\\Storage Card\\dev\\full", CREATE_ALWAYS, GENERIC_WRITE);
    DWORD count = 1;
    EXPECT_EQ(FailureOf(WriteFile(file, "x", 1, &count, nullptr)), ERROR_DISK_FULL);
    EXPECT_EQ(count, 0u);
    CloseHandle(file);
}

TEST_F(Files, AnOpenFileIsSharedOnlyAmongReaders) {
    const WCHAR* path = u"\\My Documents\\Old.bkp";
    const HANDLE first = Open(path, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ);
    const HANDLE second = Open(path, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenError(path, OPEN_EXISTING), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(OpenError(path, CREATE_ALWAYS, GENERIC_WRITE, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(FailureOf(DeleteFileW(path)), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(HostFile(old), "old content");
    CloseHandle(first);
    CloseHandle(second);
    const HANDLE alone = Open(path, OPEN_EXISTING);
    EXPECT_EQ(OpenError(path, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    CloseHandle(alone);

    EXPECT_EQ(FailureOf(DeleteFileW(u"\\My Documents")), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(DeleteFileW(u"\\my documents\\OLD.bkp"));
    EXPECT_EQ(FailureOf(DeleteFileW(path)), ERROR_FILE_NOT_FOUND);
}

TEST_F(Files, AnotherProcessHoldsAFileUntilItDies) {
    const WCHAR* path = u"\\My Documents\\Old.bkp";
    OtherProcess other({[=] { return Open(path, OPEN_EXISTING, GENERIC_WRITE) != INVALID_HANDLE_VALUE; }});
    ASSERT_TRUE(other.Run(0));
    EXPECT_EQ(OpenError(path, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(OpenError(path, CREATE_ALWAYS, GENERIC_WRITE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(HostFile(old), "old content");
    other.Kill();
    const HANDLE file = Open(path, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);
}

} // namespace
