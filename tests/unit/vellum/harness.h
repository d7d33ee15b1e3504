/* tests/unit/vellum/harness.h - what the tests of the graphics library share. */
#pragma once

#include "vellum/vellum.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

// What the library's error handler throws in these tests.
struct vlfault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline std::string readwhole(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// A directory of its own, the handler installed, and the device closed at the end.
class Vellum : public testing::Test {
protected:
    void SetUp() override {
        last = std::filesystem::current_path();
        char pattern[] = "/tmp/vellumXXXXXX";
        folder = mkdtemp(pattern);
        std::filesystem::current_path(folder);
        DERROR([](const char* message) { throw vlfault(message); });
    }
    void TearDown() override {
        DQUIT(0);
        DERROR(nullptr);
        std::filesystem::current_path(last);
        std::filesystem::remove_all(folder);
    }
    // Opens a page and its root patch for drawing.
    static void page(const char* device, const char* file) {
        int colours = 0;
        ASSERT_EQ(DINI(device, &colours, file, 0, 0, 0, 0), 1);
        DGET(DSCREENPATCH(), 1);
    }
    // A memory device of w by h pixels, square, erased to the paper.
    static void memory(int w, int h, int depth) {
        DDEVICE("MEM")->depth = depth;
        int colours = 0;
        ASSERT_EQ(DINI("MEM", &colours, nullptr, w / 100.0, h / 100.0, w, h), 1);
        DGET(DSCREENPATCH(), 1);
    }
    // The message of the fault that a call ends in; empty when it ends well.
    template <class Call> static std::string fault(Call call) {
        try {
            call();
        } catch (const vlfault& e) { return e.what(); }
        return "";
    }

private:
    std::filesystem::path last;
    std::string folder;
};
