// The compiled resources: what the program finds in them, and what broken ones do.
#include <cstring>
#include <gtest/gtest.h>

#include "platform/base/resourceindex.h"
#include "platform/resources.h"
#include "resources/resource.h"

namespace {

void AppendBytes(std::vector<std::byte>& file, std::initializer_list<unsigned> values) {
    for (const unsigned value : values)
        file.push_back(static_cast<std::byte>(value));
}

// The empty entry that begins every file, a data entry 10/101 of six bytes, one with a name of text ("AB"),
// and a table of two texts, 6/1: "Hi" and one that claims more characters than there are.
std::vector<std::byte> SmallFile() {
    std::vector<std::byte> file;
    AppendBytes(file, {0, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0});
    file.resize(32);
    AppendBytes(file, {6, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0xFF, 0xFF, 101, 0});
    file.resize(64);
    AppendBytes(file, {1, 2, 3, 4, 5, 6, 0, 0});
    AppendBytes(file, {1, 0, 0, 0, 36, 0, 0, 0, 0xFF, 0xFF, 10, 0, 'A', 0, 'B', 0, 0, 0});
    file.resize(108);
    AppendBytes(file, {9, 0, 0, 0});
    AppendBytes(file, {10, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 6, 0, 0xFF, 0xFF, 1, 0});
    file.resize(144);
    AppendBytes(file, {2, 0, 'H', 0, 'i', 0, 9, 0, '!', 0});
    return file;
}

} // namespace

TEST(Resources, AreFoundByTypeAndNumber) {
    const auto file = SmallFile();
    const auto entries = IndexResources(file.data(), file.size());
    ASSERT_EQ(entries.size(), 2u); // the empty one and the one with a name of text are passed over
    EXPECT_EQ(entries[0].type, 10);
    EXPECT_EQ(entries[0].id, 101);
    EXPECT_EQ(entries[0].size, 6u);
    EXPECT_EQ(entries[0].bytes, file.data() + 64);

    std::size_t length = 0;
    ASSERT_EQ(FindTableText(entries[1], 0, length), file.data() + 146);
    EXPECT_EQ(length, 2u);
    EXPECT_EQ(FindTableText(entries[1], 1, length), nullptr);
    EXPECT_EQ(FindTableText(entries[1], 2, length), nullptr);
}

TEST(Resources, BrokenFilesAreReadUpToTheBreak) {
    const auto whole = SmallFile();
    for (std::size_t size = 0; size < whole.size(); size++) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const auto entries = IndexResources(cut.data(), cut.size());
        EXPECT_EQ(entries.size(), size < 70 ? 0u : 1u) << size;
    }
    for (const std::size_t place : {32u, 36u}) { // sizes of data and header that pass the end, or wrap around
        auto broken = whole;
        std::memset(&broken[place], 0xFF, 4);
        EXPECT_TRUE(IndexResources(broken.data(), broken.size()).empty());
    }
}

TEST(Resources, TextsAreCutToTheRoomGiven) {
    WCHAR text[40];
    EXPECT_EQ(LoadStringW(nullptr, IDS_PRODUCT, text, 40), 17);
    EXPECT_EQ(std::u16string(text), u"Pocket Strandview");
    EXPECT_EQ(LoadStringW(nullptr, IDS_PRODUCT, text, 7), 6);
    EXPECT_EQ(std::u16string(text), u"Pocket");
    EXPECT_EQ(LoadStringW(nullptr, IDS_PRODUCT + 1, text, 40), 0); // of the same table
    EXPECT_EQ(std::u16string(text), u"");
    EXPECT_EQ(LoadStringW(nullptr, 60000, text, 40), 0);
    EXPECT_EQ(LoadStringW(nullptr, IDS_PRODUCT, text, 0), 0);
}

TEST(Resources, WhatIsAbsentIsNull) {
    EXPECT_NE(FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU), RT_MENU), nullptr);
    EXPECT_EQ(FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_MAIN_MENU), RT_BITMAP), nullptr);
    EXPECT_EQ(FindResourceW(nullptr, u"MENU", RT_MENU), nullptr);
    EXPECT_EQ(LoadResource(nullptr, nullptr), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0u);
}
