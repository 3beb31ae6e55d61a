// The compiled resources: what the program finds in them.
#include <gtest/gtest.h>

#include "platform/resources.h"
#include "resources/resource.h"

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
