// Backups and restores without memory.
#include "backup/restore.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/scarcememory.h"

namespace {

constexpr const WCHAR* kPath = u"\\all.bkp";

class ScarceMemoryTest : public BackupTest {
protected:
    bool failsForGood = false;

    // Runs a job with ever more memory until nothing fails any more.
    template <typename Job, typename Check>
    void WithEverMore(Job job, Check check) {
        settings.unattended = 1;
        constexpr long kMost = 20'000;
        for (const bool forGood : {false, true}) {
            failsForGood = forGood;
            long allocations = 0;
            for (bool enough = false; !enough && allocations < kMost; ++allocations) {
                SCOPED_TRACE(testing::Message() << allocations << (forGood ? " and none after" : ""));
                device.Restart();
                {
                    const ScarceMemory scarce(allocations, forGood);
                    job();
                }
                enough = !ScarceMemory::WasShort();
                check(enough);
                if (HasFailure())
                    return;
            }
            EXPECT_LT(allocations, kMost);
        }
    }
};

TEST_F(ScarceMemoryTest, RestoreLeavesNoHalfDatabase) {
    MakeRecords(u"Many", 5);
    MakeSample(u"Keep");
    const std::u16string whole = Contents(u"Many");
    for (const bool compress : {false, true}) {
        BackupEngine engine;
        engine.compress = compress;
        ASSERT_TRUE(BackUp(engine, kPath, {u"Many"}));
        WithEverMore([] { RestoreCommand(nullptr, kPath); },
                     [&](bool enough) {
                         const std::u16string left = Contents(u"Many");
                         // Without any memory, what was made cannot be deleted either.
                         ASSERT_TRUE(left == whole || (!enough && (left == u"missing" || failsForGood)));
                         ASSERT_EQ(Contents(u"Keep"), kSampleContents);
                         DeleteAllBut(u"Keep");
                     });
        ASSERT_TRUE(RestoreCommand(nullptr, kPath));
    }
}

TEST_F(ScarceMemoryTest, BackupIsWholeOrSaysThatItIsNot) {
    MakeRecords(u"Many", 5);
    bool whole = false;
    Bytes last;
    WithEverMore(
        [&] {
            BackupEngine engine;
            engine.compress = false;
            whole = BackUp(engine, kPath, {u"Many"}) && engine.complete;
        },
        [&](bool enough) {
            ASSERT_TRUE(whole || !enough);
            if (whole) {
                const Bytes written = FileBytes(kPath);
                ASSERT_EQ(NumberAt(written, 24 + 140), written.size());
                ASSERT_EQ(NumberAt(written, 24 + 76) & 0xFFFF, 5u);
            }
        });
}

} // namespace
