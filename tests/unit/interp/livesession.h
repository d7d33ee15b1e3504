// A whole session inside a test: the start-up files of the build, a directory of its own, a keyboard made of
// lines.
#pragma once

#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

struct livesessionstate {
    std::string output;             // of the console
    std::string errors;             // copies for standard error, in a batch
    std::vector<std::string> typed; // lines of the keyboard
    size_t nexttyped = 0;
    bool editor = false;             // is there a screen for the line editor?
    std::vector<std::string> edited; // texts that came up in it
    std::string correction;          // what the user makes of them
    int polls = 0, breakafter = -1;  // control-C at this look at the console
    int key = -1;                    // pressed once
};
inline livesessionstate live;

class LiveSession : public testing::Test {
protected:
    void SetUp() override {
        live = livesessionstate{};
        before = std::filesystem::current_path();
        char pattern[] = "/tmp/tarntestXXXXXX";
        folder = mkdtemp(pattern);
        std::filesystem::current_path(folder);
        setconsole();
    }

    void TearDown() override {
        if (report.log) sessionclose();
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
        hooksreset();
    }

    static sessionoptions options() {
        sessionoptions o;
        o.programpath = TARNSTARTDIR;
        o.quiet = o.vanilla = true;
        return o;
    }

    int start(const sessionoptions& o = options()) {
        const int status = sessionstart(o);
        live.output.clear();
        return status;
    }

    // Runs statements as a do-file would, and gives what they print.
    static std::string run(const std::string& statements) {
        live.output.clear();
        sessionexecute(statements);
        return live.output;
    }

    // Types lines at the keyboard until the session ends; gives its exit status.
    static int type(std::vector<std::string> lines) {
        live.output.clear();
        live.typed = std::move(lines);
        live.nexttyped = 0;
        return sessionrun();
    }

    static double scalar(const char* name) { return symtabscalar(name, -999); }

    static void file(const char* name, const std::string& text) { std::ofstream(name) << text; }
    static std::string contents(const char* name) {
        std::string text;
        readwhole(name, text);
        return text;
    }

    std::filesystem::path folder, before;

private:
    static void setconsole() {
        hooksreset();
        console.write = [](const char* text, size_t n) { live.output.append(text, n); };
        console.errortext = [](const char* text) { live.errors += text; };
        console.readline = [](const char* prompt, std::string& text) {
            tarnprint("%s", prompt);
            if (live.nexttyped == live.typed.size()) return false;
            text = live.typed[live.nexttyped++];
            live.output += text + "\n";
            return true;
        };
        console.lineedit = [](std::string& text) {
            if (!live.editor) return false;
            live.edited.push_back(text);
            text = live.correction;
            return true;
        };
        console.breakpending = [] { return live.breakafter >= 0 && live.polls++ == live.breakafter; };
        console.getkey = [](bool) {
            const int key = live.key;
            live.key = -1;
            return key;
        };
    }
};
