#include "unit/vellum/harness.h"

#include <random>

namespace {

class Saved : public Vellum {
protected:
    static void writewhole(const std::string& name, const std::string& bytes) {
        std::filesystem::remove(name); // a file written over may be flushed to the disk
        std::ofstream(name, std::ios::binary) << bytes;
    }
};

// A symbol that is called twice from a scene with a patch in it.
std::vector<vlpicture*> scene() {
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* symbol = DNEWPIC();
    DMOVE(0, 0);
    for (int i = 0; i < 300; i++) DDRAW(i % 2 * 0.125, i / 2048.0);
    vlpicture* picture = DNEWPIC();
    DCOLOR(3);
    DMOVE(0.25, 0.5);
    DENQPIC(symbol);
    const double turned[16] = {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    DTRANSFORM(turned);
    DTRANSFORMON(1);
    DENQPIC(symbol);
    DRESETTRANSFORM();
    const uint8_t bits[] = {0x12, 0x34, 0x56, 0x78};
    vlpatch* patch = DPATCH(nullptr, 0, 0, 4, 2, 4, bits);
    DMOVE(0.75, 0.75);
    DENQPATCH(patch);
    DCLOSEPIC();
    DPRIORITY(picture, 2.5);
    return {picture, symbol};
}

std::string playedinto(vlpicture* picture) {
    vlpatch* patch = DPATCH(nullptr, 0, 0, 64, 64, 8, nullptr);
    DPSHOW(picture, patch);
    const auto bits = DPATCHBITS(patch);
    std::string s(bits.begin(), bits.end());
    DKILLPATCH(patch);
    return s;
}

// A word without its handle.
uint32_t bare(uint32_t word) { return word >= 0xc8000000 && word < 0xd4000000 ? word & 0xfc000000 : word; }

TEST_F(Saved, picturesComeBackWordForWord) {
    memory(64, 64, 8);
    const auto pictures = scene();
    const std::string before = playedinto(pictures[0]);
    const auto words = DPICWORDS(pictures[0]), symbol = DPICWORDS(pictures[1]);
    DSAVE("a.pic", 0, std::span(pictures.data(), 1));
    DQUIT(0);
    memory(64, 64, 8);
    vltables tables;
    const auto read = DUSE("a.pic", VLTABLES | VLKEEPPALETTE, &tables);
    ASSERT_EQ(read.size(), 1u) << "the symbol is only called";
    EXPECT_EQ(DPICSTATE(read[0]), 1);
    const auto again = DPICWORDS(read[0]);
    ASSERT_EQ(again.size(), words.size());
    for (size_t i = 0; i < words.size(); i++) EXPECT_EQ(bare(again[i]), bare(words[i])) << i;
    EXPECT_EQ(playedinto(read[0]), before);
    EXPECT_EQ(tables.priorities, std::vector<double>{2.5});
    EXPECT_EQ(tables.colours.size(), 256u);
    EXPECT_EQ(tables.colours[0], 0xffffffu);
    DKILL(read[0], -1);
}

TEST_F(Saved, allPicturesUnderARunningName) {
    memory(64, 64, 8);
    const auto pictures = scene();
    DPOST(pictures[1], -1);
    DSAVE(nullptr, 0);
    DSAVE(nullptr, 1);
    EXPECT_EQ(DUSE("0.pic", 0, nullptr).size(), 2u);
    const auto posted = DUSE("1.pic", 0, nullptr);
    ASSERT_EQ(posted.size(), 1u);
    EXPECT_EQ(DPICWORDS(posted[0]), DPICWORDS(pictures[1]));
}

TEST_F(Saved, layoutOfAPictureFile) {
    memory(64, 64, 24); // no palette
    DWINDOW(0, 1, 0, 1);
    DVIEWPORT(0, 1, 0, 1);
    vlpicture* p = DNEWPIC();
    DMOVE(0, 0);
    DDRAW(0.5, 0.5);
    DSAVE("a.pic", 0);
    const std::string file = readwhole("a.pic");
    const auto number = [&](size_t place, int bytes) {
        uint32_t v = 0;
        for (int i = bytes - 1; i >= 0; i--) v = v << 8 | uint8_t(file[place - 1 + size_t(i)]);
        return v;
    };
    EXPECT_EQ(number(1, 4), uint32_t(DDEVICENUMBER("MEM")));
    EXPECT_EQ(number(5, 4), 1u);
    EXPECT_EQ(number(13, 4), 0x80000000u | 19) << "a picture, right behind the table";
    EXPECT_EQ(number(17, 2), 0u);
    EXPECT_EQ(number(19 + 24, 4), 1u) << "one chunk";
    EXPECT_EQ(number(19 + 64, 2), 2u);
    EXPECT_EQ(number(19 + 66, 4), DPICWORDS(p)[0]);
    EXPECT_EQ(number(19 + 70, 4), DPICWORDS(p)[1]);
    EXPECT_EQ(file.size(), 18u + 64 + 2 + 8);
}

TEST_F(Saved, patchesInBothForms) {
    memory(10, 10, 8);
    std::mt19937 random(1);
    for (const int depth : {1, 4, 8, 15, 24, 32}) {
        std::string bytes(size_t(41 * 27 * depth / 8 + 5), 0);
        for (char& c : bytes) c = char(random());
        vlpatch* patch = DPATCH(nullptr, 0, 0, 41, 27, depth, reinterpret_cast<const uint8_t*>(bytes.data()));
        vlpatch* child = DPATCH(patch, 3, 4, 20, 10, 0, nullptr);
        DPATCH(child, 1, 1, 5, 5, 0, nullptr);
        DPATCH(patch, 30, 2, 2, 2, 0, nullptr);
        DPATCHWRITE(patch, "t.pat", 0);
        DPATCHWRITE(patch, "b.pat", 1);
        const std::string text = readwhole("t.pat"), binary = readwhole("b.pat");
        EXPECT_EQ(text.size(), 2 * binary.size() - 1);
        EXPECT_EQ(text.find_first_not_of("0123456789abcdef", 1), std::string::npos);
        for (const char* name : {"t.pat", "b.pat"}) {
            vlpatch* read = DPATCHREAD(name, VLCHILDREN, nullptr);
            int w, h, d;
            DPATCHSIZE(read, &w, &h, &d);
            EXPECT_EQ(w, 41);
            EXPECT_EQ(h, 27);
            EXPECT_EQ(d, depth);
            for (int y = 0; y < 27; y++) {
                for (int x = 0; x < 41; x++) ASSERT_EQ(DPIXEL(read, x, y, 0, 0), DPIXEL(patch, x, y, 0, 0));
            }
            DPATCHWRITE(read, "again.pat", 1);
            EXPECT_TRUE(readwhole("again.pat") == binary) << "children and all, depth " << depth;
        }
    }
}

TEST_F(Saved, textOfAPatch) {
    memory(10, 10, 24);
    const uint8_t bits[] = {0xab, 0xcd};
    DPATCHWRITE(DPATCH(nullptr, 0, 0, 4, 1, 4, bits), nullptr, 0);
    const std::string text = readwhole("0.pat");
    EXPECT_EQ(text.substr(0, 25), std::string(1, '\0') + "0014"
                                                         "0004"
                                                         "0004"
                                                         "0001"
                                                         "0000"
                                                         "abcd");
}

TEST_F(Saved, faultsHaveTheirWords) {
    EXPECT_EQ(DINI("PSP", nullptr, "a.ps", 0, 0, 0, 0), 1);
    EXPECT_EQ(fault([] { DPATCHWRITE(DSCREENPATCH(), "a.pat", 1); }),
              "DPATCHWRITE: cannot save disabled screenpatch");
    EXPECT_EQ(fault([] { DUSE("missing.pic", 0, nullptr); }),
              "VELLUM save file (missing.pic) does not exist\n");
    EXPECT_EQ(fault([] { DPATCHREAD("missing.pat", 0, nullptr); }),
              "VELLUM save file (missing.pat) does not exist\n");
    writewhole("empty.pic", "");
    EXPECT_EQ(fault([] { DUSE("empty.pic", 0, nullptr); }), "Cached-file read error: empty.pic \n");
}

// Every beginning of a file, and every file with one byte changed, ends in the fault or in pictures that
// play.
TEST_F(Saved, brokenFilesEndInTheirFault) {
    memory(32, 32, 2);
    const auto pictures = scene();
    DSAVE("a.pic", 0, pictures);
    const uint8_t bits[] = {1, 2, 3, 4};
    vlpatch* patch = DPATCH(nullptr, 0, 0, 4, 4, 2, bits);
    DPATCH(patch, 1, 1, 2, 2, 0, nullptr);
    DPATCHWRITE(patch, "b.pat", 1);
    DPATCHWRITE(patch, "t.pat", 0);
    std::mt19937 random(7);
    for (const std::string name : {"a.pic", "b.pat", "t.pat"}) {
        const std::string whole = readwhole(name);
        for (size_t i = 0; i < whole.size(); i++) {
            const bool cut = i % 2;
            std::string broken = cut ? whole.substr(0, i) : whole;
            if (!cut) broken[i] = char(random());
            writewhole("broken", broken);
            const std::string message = fault([&] {
                if (name != "a.pic") {
                    DKILLPATCH(DPATCHREAD("broken", VLCHILDREN | VLTABLES, nullptr));
                    return;
                }
                for (vlpicture* p : DUSE("broken", 0, nullptr)) {
                    DPSHOW(p, nullptr);
                    DKILL(p, -1);
                }
            });
            if (cut) {
                EXPECT_EQ(message, "Cached-file read error: broken \n") << name << " cut at " << i;
            } else {
                const bool told = message == "Cached-file read error: broken \n" ||
                                  message.starts_with("Unable to open VELLUM");
                EXPECT_TRUE(message.empty() || told) << message;
            }
        }
    }
}

} // namespace
