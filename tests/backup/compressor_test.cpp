#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <span>
#include <vector>

#include "backup/compressor.h"
#include "tests/backup/backupfixture.h"

namespace {

// The format's writer in its plainest form, step for step, with the table and the group of codes that it has:
// slow and plain, and sharing nothing with the codec.
class PlainWriter {
public:
    Bytes stream;
    int resets = 0;
    int zeroPairsLost = 0;

    explicit PlainWriter(const Bytes& input) {
        int ent = input[0];
        for (std::size_t next = 1; next < input.size(); ++next) {
            const int c = input[next];
            const int key = (c << 16) + ent;
            const int consumed = static_cast<int>(next) + 1;
            const int slot = Find(key, (c << 8) ^ ent);
            if (hashTab[slot] == key) {
                ent = codeTab[slot];
                continue;
            }
            Emit(ent);
            ent = c;
            if (freeEnt < 65536) {
                zeroPairsLost += hashTab[slot] == 0;
                codeTab[slot] = freeEnt++;
                hashTab[slot] = key;
            } else if (consumed >= checkpoint) {
                TestRatio(consumed);
            }
        }
        Emit(ent);
        Write((offset + 7) / 8);
    }

private:
    std::vector<int> hashTab = std::vector<int>(69001, -1);
    std::vector<int> codeTab = std::vector<int>(69001);
    BYTE group[16] = {};
    int offset = 0;
    int bytesOut = 3;
    int nBits = 9;
    int maxCode = 511;
    int freeEnt = 257;
    bool clearFlag = false;
    int ratio = 0;
    int checkpoint = 50000;

    int Find(int key, int slot) const {
        if (hashTab[slot] == key || hashTab[slot] < 0)
            return slot;
        const int step = slot == 0 ? 1 : 69001 - slot;
        do {
            slot -= step;
            slot += slot < 0 ? 69001 : 0;
        } while (hashTab[slot] != key && hashTab[slot] > 0);
        return slot;
    }

    void Write(int count) {
        stream.insert(stream.end(), group, group + count);
        bytesOut += count;
        offset = 0;
    }

    void Emit(int code) {
        BYTE* at = group + offset / 8;
        const int kept = offset % 8;
        *at = static_cast<BYTE>((*at & ((1 << kept) - 1)) | code << kept);
        for (int done = 8 - kept; done < nBits; done += 8)
            *++at = static_cast<BYTE>(code >> done);
        offset += nBits;
        if (offset == nBits * 8)
            Write(nBits);
        if (freeEnt <= maxCode && !clearFlag)
            return;
        if (offset > 0)
            Write(nBits);
        nBits = clearFlag ? 9 : nBits + 1;
        maxCode = nBits == 16 ? 65536 : (1 << nBits) - 1;
        clearFlag = false;
    }

    void TestRatio(int consumed) {
        checkpoint = consumed + 50000;
        int reached = 0;
        if (consumed > 0x7FFFFF)
            reached = bytesOut >> 8 == 0 ? 0x7FFFFFFF : consumed / (bytesOut >> 8);
        else
            reached = (consumed << 8) / bytesOut;
        if (reached > ratio) {
            ratio = reached;
            return;
        }
        ratio = 0;
        std::fill(hashTab.begin(), hashTab.end(), -1);
        freeEnt = 257;
        clearFlag = true;
        Emit(256);
        ++resets;
    }
};

class CodecTest : public testing::Test {
protected:
    Compressor codec;
    std::mt19937 random{20240229};

    CodecTest() { EXPECT_TRUE(codec.AllocateTables()); }

    Bytes Result() const { return Bytes(codec.Output(), codec.Output() + codec.OutputLength()); }
    Bytes Compressed(const Bytes& data) {
        EXPECT_TRUE(codec.Compress(data.data(), static_cast<DWORD>(data.size())));
        return Result();
    }
    bool Expand(const Bytes& stream, DWORD limit = Compressor::kExpandLimit) {
        return codec.Expand(stream.data(), static_cast<DWORD>(stream.size()), limit);
    }
    Bytes Expanded(const Bytes& stream) {
        EXPECT_TRUE(Expand(stream));
        return Result();
    }

    Bytes Noise(std::size_t length, int lowest, int highest) {
        Bytes bytes(length);
        std::generate(bytes.begin(), bytes.end(), [&] {
            return static_cast<BYTE>(lowest + static_cast<int>(random() % (highest - lowest + 1)));
        });
        return bytes;
    }
    // Words of a small language, the early ones more often.
    Bytes Prose(std::size_t length) {
        std::vector<Bytes> words;
        for (int word = 0; word < 3000; ++word)
            words.push_back(Noise(2 + random() % 9, 'a', 'z'));
        Bytes text;
        while (text.size() < length) {
            const Bytes& word = words[random() % (1 + random() % words.size())];
            text.insert(text.end(), word.begin(), word.end());
            text.push_back(' ');
        }
        return text;
    }

    PlainWriter ExpectSameStream(const char* what, const Bytes& data) {
        const PlainWriter plain(data);
        const Bytes stream = Compressed(data);
        EXPECT_TRUE(stream == plain.stream) << what;
        EXPECT_TRUE(Expanded(stream) == data) << what;
        return plain;
    }
};

void Append(Bytes* bytes, const Bytes& more) {
    bytes->insert(bytes->end(), more.begin(), more.end());
}

// Codes of 9 bits, no more than fit before the width changes.
Bytes StreamOf(std::span<const int> codes) {
    Bytes stream((codes.size() * 9 + 7) / 8);
    for (std::size_t bit = 0; bit < codes.size() * 9; ++bit)
        stream[bit / 8] |= static_cast<BYTE>((codes[bit / 9] >> bit % 9 & 1) << bit % 8);
    return stream;
}

TEST_F(CodecTest, StreamsWrittenByHand) {
    // One code; a string that is used before it is whole (A, AA, A); and a zero code.
    for (const auto& [data, stream] :
         {std::pair{"41", "41 00"}, {"41 41 41 41", "41 02 06 01"}, {"00", "00 00"}}) {
        EXPECT_EQ(Compressed(FromHex(data)), FromHex(stream));
        EXPECT_EQ(Expanded(FromHex(stream)), FromHex(data));
    }
    // A reset: the rest of its group of nine bytes is passed over, and the next code is a byte.
    EXPECT_EQ(Expanded(FromHex("41 00 02 FF FF FF FF FF FF 42 00")), FromHex("41 42"));
    EXPECT_EQ(Expanded(FromHex("41 00 02")), FromHex("41"));

    EXPECT_TRUE(codec.Compress(nullptr, 0));
    EXPECT_EQ(codec.OutputLength(), 0u);
    EXPECT_FALSE(Expand({}));
    EXPECT_EQ(codec.Output(), nullptr);
    EXPECT_EQ(Expanded(FromHex("41")), FromHex("41"));
    Compressor withoutTables;
    EXPECT_FALSE(withoutTables.Compress(FromHex("41").data(), 1));
    EXPECT_FALSE(withoutTables.Expand(FromHex("41 00").data(), 2));
}

TEST_F(CodecTest, WritesTheFormatToTheByte) {
    for (std::size_t length : {1, 2, 255, 256, 257, 300, 767, 768, 769, 5000}) {
        ExpectSameStream("noise", Noise(length, 0, 255));
        ExpectSameStream("zeros", Bytes(length, 0));
    }
    ExpectSameStream("two bytes", Noise(400000, 0, 1));
    ExpectSameStream("long runs", Bytes(3000000, 'x'));
    ExpectSameStream("prose", Prose(600000));
    // Every code given, with the input ending around that point.
    const Bytes noise = Noise(65800, 0, 255);
    for (std::size_t length = 65400; length <= noise.size(); length += 50)
        ExpectSameStream("full table", Bytes(noise.begin(), noise.begin() + static_cast<int>(length)));

    Bytes changing;                      // on which the ratio falls
    while (changing.size() < 10000000) { // past the point where it is reckoned more coarsely
        Append(&changing, Prose(300000 + random() % 200000));
        Append(&changing, Noise(random() % 300000, 0, 255));
        Append(&changing, Bytes(random() % 100000, 0));
    }
    EXPECT_GT(ExpectSameStream("changing", changing).resets, 15);

    int lost = 0;
    for (int round = 0; round < 5; ++round) {
        Bytes data = Noise(30000, 1, 16); // takes the first slot of the pair of zeros
        for (int piece = 0; piece < 4000; ++piece) {
            Append(&data, Bytes(3, 0));
            Append(&data, Noise(100, 1, 255));
        }
        lost += ExpectSameStream("zero pairs", data).zeroPairsLost;
    }
    EXPECT_GT(lost, 3);
}

TEST_F(CodecTest, StartsEveryStreamAfresh) {
    const Bytes text = Prose(100000);
    for (std::size_t record = 0; record < 300; ++record) {
        const Bytes data = Slice(text, random() % text.size() / 2, record % 50 == 0 ? 50000 : 1000);
        for (int time = 0; time < 2; ++time)
            EXPECT_TRUE(Compressed(data) == PlainWriter(data).stream) << record;
    }
}

TEST_F(CodecTest, ExchangesStreamsWithThePublicProgram) {
    const TestDevice device;
    const auto filter = [&](const std::string& command, const Bytes& bytes) {
        WriteBytes(u"\\in.Z", bytes);
        const std::string line = "cd " + device.folder + "/root && " + command + " < in.Z > out";
        EXPECT_EQ(std::system(line.c_str()), 0);
        return FileBytes(u"\\out");
    };
    const Bytes header = FromHex("1F 9D 90"); // blocks, 16 bits
    Bytes mixed;
    for (int piece = 0; piece < 4; ++piece) {
        Append(&mixed, Prose(400000));
        Append(&mixed, Noise(400000, 0, 255));
    }
    for (const Bytes& data : {Bytes(1, 'A'), Noise(300, 0, 255), Prose(20000), mixed}) {
        Bytes ours = header;
        Append(&ours, Compressed(data));
        EXPECT_TRUE(filter("uncompress -c", ours) == data);
        const Bytes theirs = filter("compress -b16 -c -f", data);
        ASSERT_EQ(Slice(theirs, 0, 3), header);
        EXPECT_TRUE(Expanded(Slice(theirs, 3, theirs.size() - 3)) == data);
    }
}

TEST_F(CodecTest, SurvivesAnyBytes) {
    // Codes that are not defined yet, at first, later, and after a reset.
    for (const std::vector<int>& codes : {std::vector<int>{300, 511, 65},
                                          {256, 256, 511},
                                          {65, 400, 400, 258, 511, 66},
                                          {65, 66, 257, 256, 0, 0, 0, 0, 300, 400}})
        EXPECT_LT(Expanded(StreamOf(codes)).size(), 64u);

    Bytes data = Prose(3000);
    Append(&data, Bytes(500, 0));
    const Bytes stream = Compressed(data);
    for (std::size_t length = 2; length < stream.size(); ++length) {
        const Bytes cut = Expanded(Slice(stream, 0, length));
        EXPECT_TRUE(std::equal(cut.begin(), cut.end(), data.begin())) << length;
    }
    // A few thousand codes, each for a string that is longer by a byte than the one before.
    const Bytes bomb = Compressed(Bytes(Compressor::kExpandLimit + 1, 0));
    EXPECT_LT(bomb.size(), 30000u);
    EXPECT_FALSE(Expand(bomb));
    const Bytes zeros = Compressed(Bytes(5000, 0));
    EXPECT_TRUE(Expand(zeros, 5000));
    EXPECT_FALSE(Expand(zeros, 4999));
    constexpr DWORD limit = 1000000;
    for (int round = 0; round < 3000; ++round) {
        Bytes damaged = round % 3 == 0 ? Noise(2 + random() % 3000, 0, 255) : stream;
        for (unsigned change = random() % 20; change > 0; --change)
            damaged[random() % damaged.size()] ^= static_cast<BYTE>(1 << random() % 8);
        const bool expanded = Expand(damaged, limit);
        EXPECT_LE(codec.OutputLength(), expanded ? limit : 0);
    }
    for (int round = 0; round < 20; ++round) // far enough for all widths and a full table
        Expand(Noise(200000, round % 2 ? 0 : 2, 255), 1 << 26);
    EXPECT_TRUE(Compressed(data) == stream); // and nothing of all that is left behind
}

} // namespace
