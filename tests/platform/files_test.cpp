#include <filesystem>
#include <gtest/gtest.h>
#include <numeric>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "platform/base/paths.h"
#include "platform/base/utf8.h"
#include "platform/device.h"
#include "platform/files.h"
#include "tests/platform/hostsupport.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/resourcelimit.h"
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

// A file begun with some content and left open.
HANDLE BeginAnew(const WCHAR* path, const std::string& content) {
    const HANDLE file = Open(path, CREATE_ALWAYS, GENERIC_READ | GENERIC_WRITE);
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &count, nullptr));
    return file;
}

constexpr const WCHAR* kOld = u"\\My Documents\\Old.bkp";

class Files : public testing::Test {
protected:
    std::string FolderNames() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(root + "/My Documents"))
            names.insert(entry.path().filename().string() + ' ');
        return std::accumulate(names.begin(), names.end(), std::string());
    }

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
    EXPECT_EQ(OpenError(u"\\My Documents\\Old.bkp\\x", CREATE_ALWAYS, GENERIC_WRITE), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(std::u16string(100000, u'x').c_str(), OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(u"\\My Documents", OPEN_EXISTING), ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenError(u"\\My Documents", CREATE_ALWAYS, GENERIC_WRITE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(OpenError(u"\\my documents\\old.bkp", 1, GENERIC_WRITE), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(OpenError(u"\\x", 0), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(OpenError(u"\\x", OPEN_EXISTING, 0), ERROR_INVALID_PARAMETER);
    ASSERT_EQ(mkfifo((root + "/pipe").c_str(), 0666), 0);
    EXPECT_EQ(OpenError(u"\\pipe", OPEN_EXISTING), ERROR_ACCESS_DENIED); // and does not wait for a writer
    EXPECT_EQ(HostFile(old), "old content");

    DWORD count = 0;
    const HANDLE file = Open(u"\\MY DOCUMENTS\\OLD.BKP", CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_TRUE(WriteFile(file, "new", 3, &count, nullptr));
    EXPECT_EQ(count, 3u);
    char byte = 0;
    EXPECT_EQ(FailureOf(ReadFile(file, &byte, 1, &count, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(FailureOf(WriteFile(file, "late", 4, &count, nullptr)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(FailureOf(FlushFileBuffers(file)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(HostFile(old), "new"); // under its old name
}

TEST_F(Files, AnOlderFileStandsUntilTheNewOneIsClosed) {
    const std::string link = root + "/link";
    ASSERT_EQ(symlink("My Documents/Old.bkp", link.c_str()) + chmod(old.c_str(), 0640), 0);
    const HANDLE whole = BeginAnew(u"\\link", "new content");
    EXPECT_EQ(HostFile(old), "old content");
    EXPECT_EQ(FolderNames(), "Old.bkp ");
    EXPECT_EQ(OpenError(u"\\link", CREATE_ALWAYS, GENERIC_WRITE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(FailureOf(DeleteFileW(kOld)), ERROR_SHARING_VIOLATION);
    EXPECT_TRUE(FlushFileBuffers(whole) && CloseHandle(whole));
    EXPECT_EQ(HostFile(old), "new content");
    EXPECT_EQ(FolderNames(), "Old.bkp ");
    struct stat status;
    EXPECT_TRUE(lstat(link.c_str(), &status) == 0 && S_ISLNK(status.st_mode));
    EXPECT_TRUE(stat(old.c_str(), &status) == 0 && (status.st_mode & ALLPERMS) == 0640);

    // What was written last never reached the disk for sure: the last complete one is kept until the next.
    for (const char* content : {"first", "second"}) {
        const HANDLE cut = BeginAnew(kOld, content);
        DWORD count = 0;
        EXPECT_TRUE(FlushFileBuffers(cut) && WriteFile(cut, "+", 1, &count, nullptr) && CloseHandle(cut));
        EXPECT_EQ(HostFile(old), content + std::string("+"));
        EXPECT_EQ(HostFile(old + '~'), "new content");
    }
    EXPECT_EQ(FolderNames(), "Old.bkp Old.bkp~ ");
    // Nor is it lost when the cut one was empty, or was taken away.
    for (const char* content : {"", "cut", "cut"}) {
        CloseHandle(BeginAnew(kOld, content));
        EXPECT_EQ(HostFile(old + '~'), "new content");
    }
    EXPECT_TRUE(DeleteFileW(kOld) && CloseHandle(BeginAnew(kOld, "cut")) &&
                CloseHandle(BeginAnew(kOld, "cut")));
    EXPECT_EQ(HostFile(old + '~'), "new content");
    for (const bool deleted : {false, true}) {
        EXPECT_TRUE(!deleted || (CloseHandle(BeginAnew(kOld, "cut")) && DeleteFileW(kOld)));
        const HANDLE complete = BeginAnew(kOld, "complete");
        EXPECT_TRUE(FlushFileBuffers(complete) && CloseHandle(complete));
        EXPECT_EQ(FolderNames(), "Old.bkp ");
    }

    // A file of somebody else's that is called so is no kept one, and neither is the one in the place of a
    // cut one that somebody has replaced. Where files cannot be marked, nobody can tell.
    if (setxattr(old.c_str(), "user.strandview.test", "1", 1, 0) == 0) {
        WriteHostFile(old + '~', "somebody's");
        CloseHandle(BeginAnew(kOld, "cut"));
        EXPECT_EQ(HostFile(old + '~'), "complete");
        WriteHostFile(old, "put here since");
        CloseHandle(BeginAnew(kOld, "cut again"));
        EXPECT_EQ(HostFile(old + '~'), "put here since");
        std::filesystem::remove(old + '~');
        WriteHostFile(old + '~', "somebody's");
        const HANDLE complete = BeginAnew(kOld, "complete");
        EXPECT_TRUE(FlushFileBuffers(complete) && CloseHandle(complete));
        EXPECT_EQ(HostFile(old + '~'), "somebody's");
    }

    const HANDLE fresh = BeginAnew(u"\\fresh", "seen");
    EXPECT_EQ(HostFile(root + "/fresh"), "seen");
    EXPECT_TRUE(CloseHandle(fresh));
    EXPECT_FALSE(std::filesystem::exists(root + "/fresh~"));
}

TEST_F(Files, AFileThatCannotTakeItsPlaceLeavesTheOlderOne) {
    ASSERT_EQ(mkdir((old + '~').c_str(), 0777), 0); // the name under which the older one would be kept
    EXPECT_EQ(FailureOf(CloseHandle(BeginAnew(kOld, "cut"))), ERROR_ACCESS_DENIED);
    EXPECT_EQ(HostFile(old), "old content");
    EXPECT_EQ(FolderNames(), "Old.bkp Old.bkp~ ");

    const HANDLE moved = BeginAnew(kOld, "whole");
    EXPECT_TRUE(FlushFileBuffers(moved));
    std::filesystem::rename(root + "/My Documents", root + "/Moved");
    EXPECT_EQ(FailureOf(CloseHandle(moved)), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(HostFile(root + "/Moved/Old.bkp"), "old content");
}

TEST_F(Files, AFolderThatTakesNoFilesHasItsFilesWrittenInTheirPlace) {
    ASSERT_EQ(chmod(device.folder.c_str(), 0755) + chmod(root.c_str(), 0755) + chmod(old.c_str(), 0666), 0);
    ASSERT_EQ(chmod((root + "/My Documents").c_str(), 0555), 0);
    OtherProcess other({[] {
        const bool anybody = geteuid() != 0 || setuid(65534) == 0;
        const HANDLE file = BeginAnew(kOld, "new");
        return anybody && FlushFileBuffers(file) && CloseHandle(file);
    }});
    EXPECT_TRUE(other.Run(0));
    EXPECT_EQ(HostFile(old), "new");
}

TEST_F(Files, NothingOfADeviceIsOpenedButWhatLiesBelowItsRoot) {
    const std::string store = DeviceStorePath();
    WriteHostFile(store, "store");
    WriteHostFile(store + "-lock", "lock");
    std::filesystem::create_hard_link(store, root + "/hard");
    std::filesystem::create_symlink(store + "-wal", root + "/soft"); // which is not there yet
    const std::string second = device.folder + "/root/device";
    std::filesystem::create_directories(second + "/root");
    WriteHostFile(second + "/objectstore.db", "other");
    for (const std::string& path :
         {store, store + "-lock", store + "-shm", device.folder + "/all.bkp", root + "/hard", root + "/soft",
          root + "/../OBJECTSTORE.DB", second + "/objectstore.db"}) {
        SCOPED_TRACE(path);
        const std::u16string name = FromUtf8(path);
        EXPECT_EQ(OpenError(name.c_str(), OPEN_EXISTING), ERROR_ACCESS_DENIED);
        EXPECT_EQ(OpenError(name.c_str(), CREATE_ALWAYS, GENERIC_WRITE), ERROR_ACCESS_DENIED);
        EXPECT_EQ(FailureOf(DeleteFileW(name.c_str())), ERROR_ACCESS_DENIED);
    }
    EXPECT_EQ(HostFile(store), "store");
    EXPECT_FALSE(std::filesystem::exists(store + "-wal"));
    EXPECT_TRUE(CloseHandle(BeginAnew(FromUtf8(second + "/root/all.bkp").c_str(), "archive")));
}

TEST_F(Files, OffsetsReachBeyondFourGigabytes) {
    const HANDLE file = Open(u"\\sparse", CREATE_ALWAYS, GENERIC_READ | GENERIC_WRITE);
    LONG high = 1;
    DWORD count = 0, sizeHigh = 0;
    EXPECT_EQ(SetFilePointer(file, -2, &high, FILE_BEGIN), 0xFFFFFFFE);
    EXPECT_TRUE(WriteFile(file, "abcd", 4, &count, nullptr));
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 2u);
    EXPECT_EQ(sizeHigh, 2u);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(SetFilePointer(file, -1, &high, FILE_BEGIN), 0xFFFFFFFF); // an offset, not a failure
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    char text[8] = {};
    EXPECT_TRUE(ReadFile(file, text, 8, &count, nullptr));
    EXPECT_EQ(std::string(text, count), "bcd");
    EXPECT_TRUE(ReadFile(file, text, 8, &count, nullptr)); // the end is no failure
    EXPECT_EQ(count, 0u);

    EXPECT_EQ(SetFilePointer(file, 5, nullptr, FILE_BEGIN), 5u);
    EXPECT_EQ(FailureOf(SetFilePointer(file, -1, nullptr, FILE_BEGIN)), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(Files, AFullDiskStopsAWriteAndKeepsTheOlderFile) {
    HANDLE file = Open(u"\\Storage Card\\dev\\full", CREATE_ALWAYS, GENERIC_WRITE);
    DWORD count = 1;
    EXPECT_EQ(FailureOf(WriteFile(file, "x", 1, &count, nullptr)), ERROR_DISK_FULL);
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(FlushFileBuffers(file) && CloseHandle(file));

    file = BeginAnew(kOld, "new");
    {
        const ResourceLimit smallFiles(RLIMIT_FSIZE, 5);
        EXPECT_EQ(FailureOf(WriteFile(file, "content", 7, &count, nullptr)), ERROR_DISK_FULL);
    }
    EXPECT_EQ(count, 2u);
    EXPECT_TRUE(CloseHandle(file) && DeleteFileW(kOld));
    EXPECT_EQ(HostFile(old + '~'), "old content");
}

TEST_F(Files, AnOpenFileIsSharedOnlyAmongReaders) {
    const HANDLE first = Open(kOld, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ);
    const HANDLE second = Open(kOld, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenError(kOld, OPEN_EXISTING), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(OpenError(kOld, CREATE_ALWAYS, GENERIC_WRITE, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(FailureOf(DeleteFileW(kOld)), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(HostFile(old), "old content");
    CloseHandle(first);
    CloseHandle(second);
    const HANDLE alone = Open(kOld, OPEN_EXISTING);
    EXPECT_EQ(OpenError(kOld, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    CloseHandle(alone);

    EXPECT_EQ(FailureOf(DeleteFileW(u"\\My Documents")), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(DeleteFileW(u"\\my documents\\OLD.bkp"));
    EXPECT_EQ(FailureOf(DeleteFileW(kOld)), ERROR_FILE_NOT_FOUND);
}

TEST_F(Files, AnotherProcessHoldsAFileUntilItDies) {
    OtherProcess other({[] { return BeginAnew(kOld, "half of the new") != INVALID_HANDLE_VALUE; }});
    ASSERT_TRUE(other.Run(0));
    EXPECT_EQ(OpenError(kOld, OPEN_EXISTING, GENERIC_READ, FILE_SHARE_READ), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(OpenError(kOld, CREATE_ALWAYS, GENERIC_WRITE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(HostFile(old), "old content");
    other.Kill();
    EXPECT_EQ(FolderNames(), "Old.bkp ");
    EXPECT_EQ(HostFile(old), "old content");
    const HANDLE file = Open(kOld, CREATE_ALWAYS, GENERIC_WRITE);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);
}

} // namespace
