// Infrared sockets over the air's folder.
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

#include "platform/irda.h"
#include "platform/irda/air.h"
#include "platform/irda/link.h"
#include "tests/platform/airsockets.h"
#include "tests/support/testdevice.h"

namespace {

constexpr const char* kService = "TEST";

SOCKADDR_IRDA AddressOf(BYTE lastByteOfDevice) {
    SOCKADDR_IRDA address = {};
    address.irdaAddressFamily = AF_IRDA;
    address.irdaDeviceID[kDeviceIdBytes - 1] = lastByteOfDevice;
    std::strcpy(address.irdaServiceName, kService);
    return address;
}

// A count of four bytes, and 28 for each device, of which the first four are its identifier.
std::string ListOf(const std::vector<char>& devices) {
    std::string list(4 + 28 * devices.size(), '\0');
    list[0] = static_cast<char>(devices.size());
    for (std::size_t place = 0; place < devices.size(); ++place)
        list[4 + 28 * place + 3] = devices[place];
    return list;
}

class Irda : public testing::Test {
protected:
    Irda() {
        UseAir(air);
        EXPECT_TRUE(OpenAir().Valid());
    }
    ~Irda() override {
        closesocket(any);
        SetLinkPatience(40000);
    }
    // What a list of `length` bytes has, in a buffer without a zero.
    std::string Found(int length) {
        std::string list(88, '\xEE');
        EXPECT_EQ(getsockopt(any, SOL_IRLMP, IRLMP_ENUMDEVICES, list.data(), &length), 0);
        return list.substr(0, static_cast<std::size_t>(length));
    }
    DWORD ErrorOfConnect(BYTE device) {
        const SOCKADDR_IRDA address = AddressOf(device);
        EXPECT_EQ(connect(any, &address, sizeof(address)), SOCKET_ERROR);
        return GetLastError();
    }

    TestDevice device;
    const std::string air = device.folder + "/air";
    SOCKET any = socket(AF_IRDA, SOCK_STREAM, 0);
};

TEST_F(Irda, FindsOthersInTheOrderOfTheirListening) {
    EXPECT_EQ(Found(60), ListOf({}));
    const Descriptor second = PutSocket(air + "/00000002.OTHER");
    const Descriptor first = PutSocket(air + "/00000003.TEST");
    const Descriptor noDevice = PutSocket(air + "/3.TEST");
    const auto earlier = std::filesystem::last_write_time(air + "/00000002.OTHER") - std::chrono::hours(1);
    std::filesystem::last_write_time(air + "/00000003.TEST", earlier);
    PutSocket(air + "/00000004.TEST").Close(); // of a killed process
    EXPECT_EQ(Found(60), ListOf({3, 2}));
    EXPECT_EQ(Found(59), ListOf({3}));
    EXPECT_FALSE(std::filesystem::exists(air + "/00000004.TEST"));
    EXPECT_TRUE(std::filesystem::exists(air + "/3.TEST"));
}

TEST_F(Irda, ListensUntilItHasALink) {
    const SOCKET listener = socket(AF_IRDA, SOCK_STREAM, 0);
    const SOCKADDR_IRDA address = AddressOf(0);
    ASSERT_EQ(bind(listener, &address, sizeof(address)), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    EXPECT_EQ(Found(60).size(), 4U) << "not oneself";
    EXPECT_EQ(bind(any, &address, sizeof(address)), 0);
    EXPECT_EQ(listen(any, 1), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAEADDRINUSE);
    EXPECT_EQ(accept(listener, nullptr, nullptr), INVALID_SOCKET);
    EXPECT_EQ(GetLastError(), WSAEINVAL);

    const SOCKET caller = socket(AF_IRDA, SOCK_STREAM, 0);
    SOCKADDR_IRDA self = AddressOf(0);
    const DeviceId own = OwnDeviceId();
    for (int place = 0; place < kDeviceIdBytes; ++place)
        self.irdaDeviceID[place] = static_cast<BYTE>(own >> (24 - 8 * place));
    ASSERT_EQ(connect(caller, &self, sizeof(self)), 0);
    const SOCKET link = accept(listener, nullptr, nullptr);
    ASSERT_NE(link, INVALID_SOCKET);
    EXPECT_TRUE(std::filesystem::is_empty(air));

    const SOCKETSET readable = {1, {link}};
    EXPECT_EQ(select(&readable), 0);
    SetLinkPatience(50);
    char byte = 0;
    EXPECT_EQ(recv(link, &byte, 1, 0), SOCKET_ERROR) << "silence";
    EXPECT_EQ(GetLastError(), WSAECONNRESET);
    SetBlockingHook([](void*) { return false; }, nullptr);
    EXPECT_EQ(recv(link, &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAEINTR);
    SetBlockingHook(nullptr, nullptr);
    EXPECT_EQ(send(caller, "x", 1, 0), 1);
    EXPECT_EQ(closesocket(caller), 0);
    EXPECT_EQ(send(link, "y", 1, 0), 1) << "what has arrived comes before the news";
    EXPECT_EQ(recv(link, &byte, 1, 0), 1);
    EXPECT_EQ(select(&readable), 1);
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(recv(link, &byte, 1, 0), SOCKET_ERROR);
        EXPECT_EQ(GetLastError(), WSAECONNRESET);
    }
    EXPECT_EQ(send(link, "y", 1, 0), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAECONNRESET);
    closesocket(link);
    closesocket(listener);
}

TEST_F(Irda, TellsWhyNobodyIsReached) {
    EXPECT_EQ(ErrorOfConnect(0), WSAEADDRNOTAVAIL);
    EXPECT_EQ(ErrorOfConnect(9), WSAEADDRNOTAVAIL);
    PutSocket(air + "/00000009.TEST").Close();
    EXPECT_EQ(ErrorOfConnect(9), WSAECONNREFUSED);
    EXPECT_EQ(socket(2, SOCK_STREAM, 0), INVALID_SOCKET);
    EXPECT_EQ(GetLastError(), WSAEAFNOSUPPORT);
    SOCKADDR_IRDA endless = AddressOf(9);
    std::memset(endless.irdaServiceName, 'x', sizeof(endless.irdaServiceName));
    EXPECT_EQ(connect(any, &endless, sizeof(endless)), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAEINVAL);
    EXPECT_EQ(connect(any, &endless, sizeof(endless) - 1), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAEFAULT);
    EXPECT_EQ(closesocket(INVALID_SOCKET), SOCKET_ERROR);
    EXPECT_EQ(GetLastError(), WSAENOTSOCK);
}

TEST_F(Irda, TakesNoFolderOfSomebodyElse) {
    std::filesystem::permissions(air, std::filesystem::perms::all);
    ErrorOfConnect(9);
    EXPECT_EQ(std::filesystem::status(air).permissions(), std::filesystem::perms::owner_all);
    const std::string elsewhere = device.folder + "/elsewhere";
    std::filesystem::create_directory_symlink(air, elsewhere);
    UseAir(elsewhere);
    EXPECT_EQ(ErrorOfConnect(9), WSAEACCES) << "a link may lead anywhere";
    UseAir(air);
    if (!GiveAway(air))
        GTEST_SKIP() << "only root can give a folder away";
    EXPECT_EQ(ErrorOfConnect(9), WSAEACCES);
}

} // namespace
