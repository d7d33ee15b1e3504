#include "vellum/vlcache.h"

#include "unit/vellum/harness.h"

#include <random>

namespace {

class PageCache : public Vellum {
protected:
    void SetUp() override {
        Vellum::SetUp();
        cacheshutdown();
    }
    void TearDown() override {
        cacheshutdown();
        Vellum::TearDown();
    }
};

std::string bytesof(int file, uint32_t offset, uint32_t length) {
    std::string s(length, '?');
    cacheread(file, offset, length, s.data());
    return s;
}

// Random reads and writes of two files at once, in a pool much smaller than they are, against plain buffers.
void againstbuffers(bool deferred, unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](uint32_t n) { return uint32_t(random() % n); };
    const std::string names[2] = {"one.bin", "two.bin"};
    std::string expected[2];
    int files[2];
    for (int i = 0; i < 2; i++) {
        files[i] = cacheopen(names[i].c_str(), 1, 1);
        cacheinhibit(files[i], deferred ? 1 : 0);
    }
    for (int round = 0; round < 600; round++) {
        const uint32_t which = below(2), offset = 1 + below(60000), length = below(below(4) ? 300 : 7000);
        std::string& plain = expected[which];
        if (below(2)) {
            std::string piece(length, 0);
            for (char& c : piece) c = char(random());
            cachewrite(files[which], offset, length, piece.data());
            if (length && plain.size() < offset - 1 + length) plain.resize(offset - 1 + length);
            plain.replace(offset - 1, length, piece);
        } else {
            std::string want = offset - 1 < plain.size() ? plain.substr(offset - 1, length) : "";
            want.resize(length);
            ASSERT_EQ(bytesof(files[which], offset, length), want) << "round " << round;
        }
        ASSERT_EQ(cachesize(files[which]), plain.size());
        if (round == 300) resizebufferpool(3);
        if (round == 450) cachepurge(files[0], 2);
    }
    for (int i = 0; i < 2; i++) {
        cacheclose(files[i]);
        EXPECT_EQ(readwhole(names[i]), expected[i]);
    }
}

TEST_F(PageCache, agreesWithPlainBuffers) {
    for (const bool deferred : {false, true}) {
        for (unsigned seed = 1; seed <= 4; seed++) againstbuffers(deferred, seed);
    }
}

TEST_F(PageCache, offsetsCountFromOne) {
    const int file = cacheopen("a.bin", 1, 1);
    EXPECT_EQ(file, 5) << "files are taken from the highest number down";
    cachepoke(file, 2049, 'x');
    EXPECT_EQ(cachesize(file), 2049u);
    int page = 0, pos = -1;
    EXPECT_EQ(*cachepointer(file, 2049, &page, &pos), 'x');
    EXPECT_EQ(page, 2);
    EXPECT_EQ(pos, 0);
    cacheclose(file);
    EXPECT_EQ(readwhole("a.bin"), std::string(2048, '\0') + "x");
}

TEST_F(PageCache, writesGoThroughUnlessPutOff) {
    const int file = cacheopen("a.bin", 1, 1);
    cachewrite(file, 1, 3, "abc");
    EXPECT_EQ(readwhole("a.bin"), "abc");
    cacheinhibit(file, 1);
    cachewrite(file, 2, 1, "X");
    EXPECT_EQ(readwhole("a.bin"), "abc");
    EXPECT_EQ(bytesof(file, 1, 3), "aXc");
    cacheinhibit(file, -1);
    EXPECT_EQ(readwhole("a.bin"), "aXc");
    cacheclose(file);
}

TEST_F(PageCache, faultsHaveTheirWords) {
    EXPECT_EQ(cacheopen("missing.bin", 0, 0), 0);
    EXPECT_EQ(fault([] { cacheopen("missing.bin", 0, -1); }),
              "Cannot open cached-file: missing.bin \nmissing.bin: No such file or directory");
    EXPECT_EQ(fault([] { cacheopen("no/such/folder.bin", 1, 1); }),
              "Out of Disk space for Cached-file: no/such/folder.bin \nno/such/folder.bin: No such file or "
              "directory");
    EXPECT_EQ(fault([] { cachepeek(3, 1); }), "Cached-file not open.\n");
    std::ofstream("r.bin") << "read me";
    const int file = cacheopen("r.bin", 0, 0);
    EXPECT_EQ(fault([&] { cachepoke(file, 1, 'x'); }),
              "Cached-file write error: r.bin \nit was opened for reading");
    EXPECT_EQ(fault([&] { cachepeek(file, 0); }), "Cached-file read error: fetchbuffer \n");
    EXPECT_EQ(cachepeek(file, 100000), 0) << "past the end there are zeros";
    cacheclose(file);
    EXPECT_EQ(fault([&] { cacheclose(file); }), "Cached-file not open.\n");
}

// What was put off fails when it is forced out, and the fault tells by which call.
TEST_F(PageCache, forcedWritesNameTheirCall) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
    const std::pair<const char*, void (*)(int)> forced[] = {
        {"inhibitwrite", [](int file) { cacheinhibit(file, -1); }},
        {"resizebufferpool", [](int) { resizebufferpool(4); }},
        {"closefile", [](int file) { cacheclose(file); }},
    };
    for (const auto& row : forced) {
        const vlcachefile held(cacheopen("/dev/full", 1, 1));
        cacheinhibit(held.file, 1);
        cachepoke(held.file, 1, 'x');
        EXPECT_EQ(fault([&] { row.second(held.file); }),
                  "Cached-file write error: " + std::string(row.first) +
                      " \n/dev/full: No space left on device");
    }
    const vlcachefile through(cacheopen("/dev/full", 1, 1));
    EXPECT_EQ(fault([&] { cachepoke(through.file, 1, 'x'); }),
              "Cached-file write error: writepage \n/dev/full: No space left on device");
}

TEST_F(PageCache, moreFilesThanPlacesIsAFault) {
    for (int i = 0; i < 5; i++) cacheopen(("f" + std::to_string(i)).c_str(), 1, 1);
    EXPECT_EQ(fault([] { cacheopen("f5", 1, 1); }), "Cannot open cached-file: f5 \n5 files are open already");
}

} // namespace
