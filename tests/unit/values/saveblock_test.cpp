// The blocks of save files: their bytes, round trips to the bit, and what is made of damaged ones.
#include "values/saveblock.h"

#include "interp/base/machine.h"
#include "support/printed.h"

#include <bit>
#include <cstring>
#include <functional>

namespace {

struct saveblocktest : printingtest {
    void SetUp() override {
        printingtest::SetUp();
        valuesstart();
    }
};

// What a writer puts into a file.
std::string written(const std::function<void(savewriter&)>& write) {
    savewriter out{tmpfile()};
    write(out);
    EXPECT_FALSE(out.failed);
    std::string bytes(size_t(ftell(out.file)), '\0');
    rewind(out.file);
    EXPECT_EQ(fread(bytes.data(), 1, bytes.size(), out.file), bytes.size());
    fclose(out.file);
    return bytes;
}

std::string bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s += char(v);
    return s;
}

TEST_F(saveblocktest, layout) {
    EXPECT_EQ(written([](savewriter& o) { putshort(o, -2); }), bytes({0xFE, 0xFF}));
    EXPECT_EQ(written([](savewriter& o) { putlong(o, 0x01020304); }), bytes({4, 3, 2, 1}));
    EXPECT_EQ(written([](savewriter& o) { putdouble(o, 1.5); }), bytes({0, 0, 0, 0, 0, 0, 0xF8, 0x3F}));
    EXPECT_EQ(written([](savewriter& o) { puttext(o, "AB"); }), bytes({3, 0, 'A', 'B', 0}));
    EXPECT_EQ(written([](savewriter& o) { puttext(o, ""); }), bytes({1, 0, 0}));
    EXPECT_EQ(written([](savewriter& o) { puttext(o, nullptr); }), bytes({0, 0}));
    EXPECT_EQ(written([](savewriter& o) { putmatrix(o, nullptr); }), bytes({0, 0}));
    const harrayptr m(harraynew(1, 2));
    cells(m.get())[1] = 1.5;
    EXPECT_EQ(written([&](savewriter& o) { putmatrix(o, m.get()); }),
              bytes({1, 0, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0}));
    const stringarrayptr a(StringArrayAlloc(2, 1));
    StringArrayStrPut(a.get(), 2, 1, "x");
    EXPECT_EQ(written([&](savewriter& o) { putstrings(o, a.get()); }),
              bytes({1, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0, 'x', 0}));
}

TEST_F(saveblocktest, numbersRoundTripToTheBit) {
    const double values[] = {0.0,     -0.0,   0.1,           4.9406564584124654e-324,
                             -MAXPOS, MAXPOS, UNDEFINEDMARK, MACHEPS};
    const std::string all = written([&](savewriter& o) {
        for (double v : values) putdouble(o, v);
        for (int v : {0, 1, -1, 32767, -32768}) putshort(o, v);
        putlong(o, 0xFFFFFFFF);
    });
    savereader in = savereaderon(all);
    for (double v : values) EXPECT_EQ(std::bit_cast<uint64_t>(getdouble(in)), std::bit_cast<uint64_t>(v));
    for (int v : {0, 1, -1, 32767, -32768}) EXPECT_EQ(getshort(in), v);
    EXPECT_EQ(getlong(in), 0xFFFFFFFF);
    EXPECT_EQ(bytesleft(in), 0u);
    EXPECT_EQ(in.fault, nullptr);
}

TEST_F(saveblocktest, textsOfAnyLength) {
    for (size_t length : {0u, 1u, 32765u, 32766u, 32767u, 70000u}) {
        const std::string text(length, 'q');
        const std::string block = written([&](savewriter& o) { puttext(o, text.c_str()); });
        savereader in = savereaderon(block);
        std::string back;
        EXPECT_TRUE(gettext(in, back)) << length;
        EXPECT_EQ(back, text);
        EXPECT_EQ(bytesleft(in), 0u);
    }
}

TEST_F(saveblocktest, matrices) {
    for (const auto& [rows, cols] : {std::pair{0u, 0u}, {0u, 5u}, {3u, 0u}, {1u, 1u}, {70u, 30u}}) {
        const harrayptr m(harraynew(rows, cols));
        for (size_t k = 1; k <= harraycount(m.get()); k++) cells(m.get())[k] = 1.0 / double(k);
        const std::string block = written([&](savewriter& o) { putmatrix(o, m.get()); });
        savereader in = savereaderon(block);
        const harrayptr back(getmatrix(in));
        ASSERT_TRUE(back);
        EXPECT_EQ(memcmp(back.get(), m.get(), (harraycount(m.get()) + 1) * sizeof(double)), 0);
    }
}

// Every cut, and every bit turned: no crash, and a block cut short is always noticed.
TEST_F(saveblocktest, damage) {
    const harrayptr m(harraynew(2, 2));
    const stringarrayptr a(StringArrayAlloc(2, 2));
    StringArrayStrPut(a.get(), 1, 2, "text");
    const std::string whole = written([&](savewriter& o) {
        putmatrix(o, m.get());
        putstrings(o, a.get());
        puttext(o, "tail");
    });
    const auto readall = [](const std::string& block) {
        savereader in = savereaderon(block);
        const harrayptr m2(getmatrix(in));
        const stringarrayptr a2(getstrings(in));
        std::string text;
        gettext(in, text);
        return in.fault;
    };
    EXPECT_EQ(readall(whole), nullptr);
    for (size_t cut = 0; cut < whole.size(); cut++) EXPECT_NE(readall(whole.substr(0, cut)), nullptr) << cut;
    for (size_t bit = 0; bit < whole.size() * 8; bit++) {
        std::string turned = whole;
        turned[bit / 8] = char(turned[bit / 8] ^ (1 << (bit % 8)));
        readall(turned);
    }
}

TEST_F(saveblocktest, faults) {
    const struct {
        std::string block;
        const char* fault;
    } rows[] = {
        {bytes({1, 0, 0xFF, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF, 0xFF, 0x0F}), "the file ends inside its value"},
        {bytes({1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}), "its matrix has an impossible shape"},
        {bytes({7, 0, 1, 0, 0, 0, 1, 0, 0, 0}), "its matrix is damaged"},
        {bytes({1, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x7F}),
         "it holds a number that is not finite"},
    };
    for (const auto& row : rows) {
        savereader in = savereaderon(row.block);
        EXPECT_EQ(harrayptr(getmatrix(in)), nullptr);
        ASSERT_NE(in.fault, nullptr);
        EXPECT_STREQ(in.fault, row.fault);
        EXPECT_EQ(getshort(in), 0) << "nothing more is taken";
    }
    for (const std::string& block :
         {bytes({2, 0, 'a', 'b'}), bytes({3, 0, 'a', 0, 0}), bytes({0x80, 0xFF}), bytes({9, 0, 'a', 0})}) {
        savereader in = savereaderon(block);
        std::string text;
        EXPECT_FALSE(gettext(in, text));
        EXPECT_NE(in.fault, nullptr);
    }
}

} // namespace
