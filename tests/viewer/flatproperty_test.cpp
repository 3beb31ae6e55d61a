// The block that one property travels in, against bytes written down by hand.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "store/propertyvalues.h"
#include "tests/storage/storesupport.h"
#include "tests/support/filebytes.h"
#include "viewer/flatproperty.h"

namespace {

// The block's bytes; what points behind the header, which differs from run to run, is replaced by 0xEE.
Bytes BytesOf(const CEPROPVAL& property) {
    FlatProperty* const flat = Flatten(property);
    Bytes bytes(LocalSize(flat));
    std::memcpy(bytes.data(), flat, bytes.size());
    for (const std::size_t pointer : {8u, 12u})
        if (NumberAt(bytes, pointer) == ArenaAddress(flat) + sizeof(FlatProperty))
            PutNumber(&bytes, pointer, 0xEEEEEEEE);
    LocalFree(flat);
    return bytes;
}

// What a reader makes of a block that another process left: its text, or a "b" for each byte of a blob.
std::u16string Read(const Bytes& bytes) {
    void* const block = LocalAlloc(LMEM_ZEROINIT, bytes.size());
    std::copy(bytes.begin(), bytes.end(), static_cast<BYTE*>(block));
    CEPROPVAL property;
    std::u16string read = u"refused";
    if (Unflatten(static_cast<FlatProperty*>(block), static_cast<DWORD>(bytes.size()), &property))
        read = TypeFromPropID(property.propid) == CEVT_BLOB ? std::u16string(property.val.blob.dwCount, u'b')
                                                            : std::u16string(property.val.lpwstr);
    LocalFree(block);
    return read;
}

} // namespace

TEST(FlatProperty, LaysOutTextsBlobsAndNumbers) {
    Values values;
    values.Text(0x1234, u"Hi").Text(0x1234, u"").Blob(5, "\xAA\xBB").Number(7, -2);
    values.Add(Prop(0x1234, CEVT_LPWSTR)); // absent
    values.Add(Prop(7, 99));               // nobody knows this type
    EXPECT_EQ(BytesOf(values.list[0]),
              FromHex("1F 00 34 12 00 00 00 00 EE EE EE EE 00 00 00 00 48 00 69 00 00 00"));
    EXPECT_EQ(BytesOf(values.list[1]).size(), 18u);
    EXPECT_EQ(BytesOf(values.list[2]), FromHex("41 00 05 00 00 00 00 00 02 00 00 00 EE EE EE EE AA BB"));
    EXPECT_EQ(BytesOf(values.list[3]), FromHex("03 00 07 00 00 00 00 00 FE FF FF FF 00 00 00 00"));
    EXPECT_EQ(BytesOf(values.list[4]), FromHex("1F 00 34 12 00 00 00 00 00 00 00 00 00 00 00 00"));
    EXPECT_EQ(Flatten(values.list[5]), nullptr);
}

TEST(FlatProperty, DistrustsBlocksFromElsewhere) {
    const Bytes text = FromHex("1F 00 01 00 00 00 00 00 EF BE AD DE 00 00 00 00 48 00 00 00");
    EXPECT_EQ(Read(text), u"H"); // the foreign pointer is not followed
    for (std::size_t size = 0; size < 16; ++size)
        EXPECT_EQ(Read(Slice(text, 0, size)), u"refused") << size;
    EXPECT_EQ(Read(Slice(text, 0, 19)), u"refused");            // half a terminator
    EXPECT_EQ(Read(Changed(text, 16, 0x00010048)), u"refused"); // and none

    const Bytes blob = FromHex("41 00 05 00 00 00 00 00 02 00 00 00 01 00 00 00 AA BB");
    EXPECT_EQ(Read(blob), u"bb");
    for (const DWORD count : {3u, 255u, 0xFF000002})
        EXPECT_EQ(Read(Changed(blob, 8, count)), u"refused");
    EXPECT_EQ(Read(Changed(Changed(blob, 8, 0xFF000002), 12, 0)), u""); // it has no pointer
    EXPECT_EQ(Read(FromHex("63 00 05 00 00 00 00 00 02 00 00 00 00 00 00 00")), u"refused");
}
