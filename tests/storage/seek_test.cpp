#include <algorithm>
#include <functional>
#include <random>

#include "tests/storage/storesupport.h"

namespace {

// Writes one record a value and tells in which order the values come back, as positions in the list.
std::vector<int> OrderOf(const SORTORDERSPEC& spec,
                         const std::vector<std::function<void(Values&)>>& records) {
    const CEOID database = CeCreateDatabase(u"Sorted", 1, 1, &spec);
    HANDLE handle = OpenById(database);
    LONG number = 0;
    for (const auto& fill : records) {
        Values values;
        values.Number(99, number++);
        fill(values);
        EXPECT_NE(values.Write(handle), 0U);
    }
    CloseHandle(handle);
    handle = OpenById(database, spec.propid);
    std::vector<int> order;
    for (Place at = Seek(handle, CEDB_SEEK_BEGINNING); at != kNowhere;
         at = Seek(handle, CEDB_SEEK_CURRENT, 1))
        order.push_back(ReadBack(handle)[0].val.lVal);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    CloseHandle(handle);
    EXPECT_TRUE(CeDeleteDatabase(database));
    return order;
}

template <typename Set>
std::function<void(Values&)> Scalar(WORD type, Set set) {
    return [=](Values& values) { set(values.Add(Prop(1, type)).val); };
}

std::function<void(Values&)> Text(std::u16string text) {
    return [=](Values& values) { values.Text(1, text); };
}

void Without(Values&) {}

TEST(SortOrders, FollowTypeDirectionCaseAndAbsence) {
    TestDevice device;
    const auto number = [](LONG value) { return Scalar(CEVT_I4, [=](CEVALUNION& to) { to.lVal = value; }); };
    const std::vector<std::function<void(Values&)>> numbers = {number(3), Without, number(-5), number(3),
                                                               number(0)};
    const CEPROPID i4 = Prop(1, CEVT_I4);
    EXPECT_EQ(OrderOf({i4, 0}, numbers), (std::vector<int>{2, 4, 0, 3, 1}));
    EXPECT_EQ(OrderOf({i4, CEDB_SORT_DESCENDING}, numbers), (std::vector<int>{0, 3, 4, 2, 1}));
    EXPECT_EQ(OrderOf({i4, CEDB_SORT_UNKNOWNFIRST}, numbers), (std::vector<int>{1, 2, 4, 0, 3}));
    EXPECT_EQ(OrderOf({i4, CEDB_SORT_UNKNOWNFIRST | CEDB_SORT_DESCENDING}, numbers),
              (std::vector<int>{1, 0, 3, 4, 2}));

    const std::vector<std::function<void(Values&)>> texts = {
        Text(u"b"), Text(u"B"), Text(u"ab"), Text(u"a"), Text(u""), Text(u"\u00c4"), Text(u"\u00e4")};
    const CEPROPID text = Prop(1, CEVT_LPWSTR);
    EXPECT_EQ(OrderOf({text, 0}, texts), (std::vector<int>{4, 1, 3, 2, 0, 5, 6}));
    EXPECT_EQ(OrderOf({text, CEDB_SORT_CASEINSENSITIVE}, texts), (std::vector<int>{4, 3, 2, 0, 1, 5, 6}));
    EXPECT_EQ(OrderOf({text, CEDB_SORT_CASEINSENSITIVE | CEDB_SORT_DESCENDING}, texts),
              (std::vector<int>{5, 6, 0, 1, 2, 3, 4}));

    const auto real = [](double value) {
        return Scalar(CEVT_R8, [=](CEVALUNION& to) { to.dblVal = value; });
    };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_R8), 0}, {real(1e300), real(-1.5), real(0), real(-1e300), real(1.25)}),
              (std::vector<int>{3, 1, 2, 4, 0}));
    const auto time = [](DWORD high, DWORD low) {
        return Scalar(CEVT_FILETIME, [=](CEVALUNION& to) { to.filetime = {low, high}; });
    };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_FILETIME), 0}, {time(2, 0), time(1, 0xFFFFFFFF), time(1, 5)}),
              (std::vector<int>{2, 1, 0}));
    const auto small = [](int value) {
        return Scalar(CEVT_I2, [=](CEVALUNION& to) { to.iVal = static_cast<short>(value); });
    };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_I2), 0}, {small(256), small(-1), small(2)}), (std::vector<int>{1, 2, 0}));
    const auto large = [](DWORD value) {
        return Scalar(CEVT_UI4, [=](CEVALUNION& to) { to.ulVal = value; });
    };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_UI4), 0}, {large(0x80000001), large(2), large(1), large(0x7FFFFFFF)}),
              (std::vector<int>{2, 1, 3, 0}));
    const auto blob = [](std::string bytes) { return [=](Values& values) { values.Blob(1, bytes); }; };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_BLOB), 0}, {blob("ab"), blob("c"), blob("aa"), blob("\xFF"), blob("")}),
              (std::vector<int>{4, 1, 3, 2, 0}))
        << "shorter ones first, then by their bytes";
    const auto truth = [](BOOL value) {
        return Scalar(CEVT_BOOL, [=](CEVALUNION& to) { to.boolVal = value; });
    };
    EXPECT_EQ(OrderOf({Prop(1, CEVT_BOOL), 0}, {truth(7), truth(0), truth(1)}), (std::vector<int>{1, 0, 2}));
}

TEST(Seek, FailsAtTheEndsAndStaysThere) {
    TestDevice device;
    const CEOID database = CeCreateDatabase(u"Steps", 1, 0, nullptr);
    const HANDLE handle = OpenById(database);
    EXPECT_EQ(FailureOf(ReadBack(handle).record), ERROR_NO_MORE_ITEMS);
    for (const DWORD type : {CEDB_SEEK_BEGINNING, CEDB_SEEK_END, CEDB_SEEK_CURRENT}) {
        EXPECT_EQ(Seek(handle, type), kNowhere);
        EXPECT_EQ(GetLastError(), ERROR_NO_MORE_ITEMS);
    }
    std::vector<CEOID> made;
    for (LONG number = 0; number < 5; ++number)
        made.push_back(Values().Number(1, number).Write(handle));
    EXPECT_EQ(ReadBack(handle).record, made[0]) << "a handle begins on the first record";
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, -1), kNowhere);
    EXPECT_EQ(Seek(handle, CEDB_SEEK_END), Place(made[4], 4));
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CURRENT, 1), kNowhere);
    EXPECT_EQ(ReadBack(handle).record, made[4]) << "a failed step leaves the handle where it was";
    EXPECT_EQ(Seek(handle, CEDB_SEEK_BEGINNING, 2), Place(made[2], 2));
    EXPECT_EQ(Seek(handle, CEDB_SEEK_BEGINNING, 5), kNowhere);
    EXPECT_EQ(Seek(handle, CEDB_SEEK_END, INT32_MIN), kNowhere);
    EXPECT_EQ(ReadBack(handle).record, made[2]);
    EXPECT_TRUE(CeDeleteRecord(handle, made[2]));
    EXPECT_EQ(ReadBack(handle).record, 0U);
    EXPECT_EQ(Seek(handle, CEDB_SEEK_CEOID, made[2]), kNowhere);
    EXPECT_EQ(FailureOf(CeSeekDatabase(handle, 3, 0, nullptr)), ERROR_INVALID_PARAMETER);
    CloseHandle(handle);
}

// A handle against a plain list, while records come, change and go through another handle.
void WalkAtRandom(bool sorted) {
    TestDevice device;
    const SORTORDERSPEC spec = {Prop(1, CEVT_I4), 0};
    const CEOID database = CeCreateDatabase(u"Model", 1, 1, &spec);
    const HANDLE writer = OpenById(database);
    const HANDLE handle = OpenById(database, sorted ? spec.propid : 0);
    std::mt19937 random(sorted ? 1 : 2);
    std::vector<std::pair<LONG, CEOID>> model; // in the handle's order; the number is 0 when it plays no part
    std::pair<LONG, CEOID> current;
    const auto enter = [&](LONG number, CEOID record) {
        const std::pair<LONG, CEOID> entry(sorted ? number : 0, record);
        model.insert(std::lower_bound(model.begin(), model.end(), entry), entry);
        return entry;
    };
    for (int round = 0; round < 4000; ++round) {
        const LONG number = static_cast<LONG>(random() % 50);
        const std::size_t chosen = model.empty() ? 0 : random() % model.size();
        const unsigned action = model.size() < 150 ? 0 : random() % 12;
        if (action < 2) {
            enter(number,
                  Values().Number(1, number).Text(2, std::u16string(random() % 60, u'f')).Write(writer));
        } else if (action == 2) {
            ASSERT_TRUE(CeDeleteRecord(writer, model[chosen].second));
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(chosen));
        } else if (action == 3) {
            const CEOID record = model[chosen].second;
            ASSERT_EQ(Values().Number(1, number).Write(writer, record), record);
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(chosen));
            const auto entry = enter(number, record);
            current = current.second == record ? entry : current;
        } else {
            auto at = std::lower_bound(model.begin(), model.end(), current);
            const bool gone = at == model.end() || *at != current;
            DWORD type = CEDB_SEEK_CURRENT;
            std::int64_t value = 1;
            if (action == 4 || current.second == 0) {
                type = action == 4 ? CEDB_SEEK_CEOID : CEDB_SEEK_END;
                value = action == 4 ? model[chosen].second : 0;
                at = action == 4 ? model.begin() + static_cast<std::ptrdiff_t>(chosen) : model.end() - 1;
            } else if (action < 9) {
                at += gone ? 0 : at == model.end() ? 0 : 1;
            } else {
                value = -1;
                at = at == model.begin() ? model.end() : at - 1;
            }
            const Place expected =
                at == model.end() ? kNowhere : Place(at->second, static_cast<DWORD>(at - model.begin()));
            ASSERT_EQ(Seek(handle, type, value), expected) << "round " << round;
            if (expected != kNowhere) {
                ASSERT_EQ(ReadBack(handle).record, at->second);
                current = *at;
            }
        }
    }
    CloseHandle(handle);
    CloseHandle(writer);
}

TEST(Seek, KeepsPlaceAndIndexAmongChanges) {
    for (const bool sorted : {false, true}) {
        SCOPED_TRACE(sorted);
        WalkAtRandom(sorted);
    }
}

} // namespace
