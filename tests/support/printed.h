/* tests/support/printed.h - a fresh bottom of the house for each test, with what it prints.
 * Owns:    the symbols, the stacks, the account of faults and the reports of the running test.
 * Callers: the fixtures of all rooms.
 * Never:   starts a room above base: a fixture does that behind this one's SetUp. */
#pragma once

#include "interp/base/fpfault.h"
#include "interp/base/hooks.h"
#include "interp/base/parser.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "support/fixedwords.h"

#include <gtest/gtest.h>

#include <string>

struct printingtest : testing::Test {
    std::string out;

    void SetUp() override {
        hooksreset();
        symtabstart();
        parserreset();
        fp = fpstate{};
        fp.limit = 0;
        catchprinted();
    }
    void TearDown() override {
        report = reportstate{};
        symtabsweep();
        hooksreset();
    }
    void catchprinted() {
        report = reportstate{};
        report.recoveryset = true;
        report.capture = &out;
    }
    // What f prints, with the fixed words of the error that it may end in; out has the whole.
    template <class Action> std::string textof(Action&& f) {
        failed = false;
        out.clear();
        try {
            f();
        } catch (const recoveryjump& j) {
            EXPECT_EQ(j.value, -1);
            failed = true;
            parserreset();
        }
        return fixedwords(out);
    }
    // The text of the error that f ends in; empty when it ends well.
    template <class Action> std::string errorof(Action&& f) {
        const std::string text = textof(f);
        return failed ? text : "";
    }

private:
    bool failed = false;
};
