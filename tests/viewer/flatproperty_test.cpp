// The block that one property travels in, against bytes written down by hand.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "viewer/flatproperty.h"

namespace {

using Bytes = std::vector<BYTE>;

// The block's bytes with its pointer, which differs from run to run, replaced by 0xEE when it points behind
// the header.
Bytes BytesOf(FlatProperty* flat, std::size_t pointerAt) {
    Bytes bytes(LocalSize(flat));
    std::memcpy(bytes.data(), flat, bytes.size());
    DWORD address = 0;
    std::memcpy(&address, bytes.data() + pointerAt, sizeof(address));
    if (address == ArenaAddress(flat) + sizeof(FlatProperty))
        std::memset(bytes.data() + pointerAt, 0xEE, sizeof(address));
    LocalFree(flat);
    return bytes;
}

template <typename T>
T* LocalCopy(const std::vector<T>& items) {
    auto* copy = static_cast<T*>(LocalAlloc(LMEM_ZEROINIT, items.size() * sizeof(T)));
    std::copy(items.begin(), items.end(), copy);
    return copy;
}

// What a reader makes of a block that another process left.
bool Accepts(const Bytes& bytes, CEPROPVAL* property) {
    auto* block = reinterpret_cast<FlatProperty*>(LocalCopy(bytes));
    const bool accepted = Unflatten(block, static_cast<DWORD>(bytes.size()), property);
    LocalFree(block);
    return accepted;
}

} // namespace

TEST(FlatProperty, LaysOutTextsBlobsAndNumbers) {
    CEPROPVAL text = {};
    text.propid = 0x1234001F;
    WCHAR* hi = LocalCopy<WCHAR>({u'H', u'i', 0});
    text.val.lpwstr = hi;
    EXPECT_EQ(BytesOf(Flatten(text), 8),
              (Bytes{0x1F, 0, 0x34, 0x12, 0, 0, 0, 0, 0xEE, 0xEE, 0xEE, 0xEE, 0, 0, 0, 0, //
                     'H',  0, 'i',  0,    0, 0}));
    hi[0] = 0; // empty, but there
    EXPECT_EQ(BytesOf(Flatten(text), 8).size(), 18u);
    LocalFree(hi);
    text.val.lpwstr = nullptr;
    EXPECT_EQ(BytesOf(Flatten(text), 8), (Bytes{0x1F, 0, 0x34, 0x12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));

    CEPROPVAL blob = {};
    blob.propid = 0x00050041;
    BYTE* bytes = LocalCopy<BYTE>({0xAA, 0xBB});
    blob.val.blob = {2, bytes};
    EXPECT_EQ(BytesOf(Flatten(blob), 12),
              (Bytes{0x41, 0, 5, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0xEE, 0xEE, 0xEE, 0xEE, 0xAA, 0xBB}));
    LocalFree(bytes);

    CEPROPVAL number = {};
    number.propid = 0x00070003;
    number.val.lVal = -2;
    EXPECT_EQ(BytesOf(Flatten(number), 8),
              (Bytes{3, 0, 7, 0, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}));
    number.propid = 0x00070063; // nobody knows this type
    EXPECT_EQ(Flatten(number), nullptr);
}

TEST(FlatProperty, DistrustsBlocksFromElsewhere) {
    CEPROPVAL property;
    const Bytes text = {0x1F, 0, 1, 0, 0, 0, 0, 0, 0xEF, 0xBE, 0xAD, 0xDE, 0, 0, 0, 0, 'H', 0, 0, 0};
    auto* block = reinterpret_cast<FlatProperty*>(LocalCopy(text));
    ASSERT_TRUE(Unflatten(block, static_cast<DWORD>(text.size()), &property));
    EXPECT_EQ(std::u16string(property.val.lpwstr), u"H"); // the foreign pointer is not followed
    LocalFree(block);

    for (std::size_t size = 0; size < 16; ++size)
        EXPECT_FALSE(
            Accepts(Bytes(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size)), &property))
            << size;
    EXPECT_FALSE(Accepts(Bytes(text.begin(), text.end() - 1), &property)); // half a terminator
    Bytes unterminated = text;
    unterminated[18] = 1;
    EXPECT_FALSE(Accepts(unterminated, &property));

    Bytes blob = {0x41, 0, 5, 0, 0, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0xAA, 0xBB};
    EXPECT_TRUE(Accepts(blob, &property));
    for (const BYTE count : {3, 255}) {
        blob[8] = count;
        EXPECT_FALSE(Accepts(blob, &property));
    }
    blob[11] = 0xFF; // four billion bytes
    EXPECT_FALSE(Accepts(blob, &property));
    blob[12] = 0; // but no pointer: an empty blob
    EXPECT_TRUE(Accepts(blob, &property));
    EXPECT_EQ(property.val.blob.dwCount, 0u);
    EXPECT_FALSE(Accepts({0x63, 0, 5, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, &property));
}
