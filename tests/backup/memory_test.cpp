// Restores without memory.
#include "backup/restore.h"
#include "tests/backup/backupfixture.h"
#include "tests/support/scarcememory.h"

namespace {

TEST_F(BackupTest, RestoreWithoutMemoryLeavesNoHalfDatabase) {
    constexpr const WCHAR* kPath = u"\\all.bkp";
    constexpr long kMost = 20'000;
    settings.unattended = 1;
    MakeRecords(u"Many", 5);
    MakeSample(u"Keep");
    const std::u16string whole = Contents(u"Many");
    for (const bool compress : {false, true}) {
        BackupEngine engine;
        engine.compress = compress;
        ASSERT_TRUE(BackUp(engine, kPath, {u"Many"}));
        for (const bool failsForGood : {false, true}) {
            bool enough = false;
            for (long allocations = 0; !enough; ++allocations) {
                SCOPED_TRACE(testing::Message() << allocations << (failsForGood ? " and none after" : ""));
                ASSERT_LT(allocations, kMost);
                device.Restart();
                {
                    const ScarceMemory scarce(allocations, failsForGood);
                    RestoreCommand(nullptr, kPath);
                }
                enough = !ScarceMemory::WasShort();
                const std::u16string left = Contents(u"Many");
                // Without any memory, what was made cannot be deleted either.
                ASSERT_TRUE(left == whole || (!enough && (left == u"missing" || failsForGood)));
                ASSERT_EQ(Contents(u"Keep"), kSampleContents);
                DeleteAllBut(u"Keep");
            }
        }
        ASSERT_TRUE(RestoreCommand(nullptr, kPath));
    }
}

} // namespace
