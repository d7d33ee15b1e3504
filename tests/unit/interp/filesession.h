/* tests/unit/interp/filesession.h - statements run in a folder of their own, with a keyboard that is a list
 * of lines. Owns:    the folder, what is printed, what is typed. Callers: the tests of files that statements
 * read and write. Never:   reads a start-up file but the vocabulary. */
#pragma once

#include "interp/base/hooks.h"
#include "interp/base/operand.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/session.h"
#include "values/harray.h"
#include "values/stringarray.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <vector>

struct filesessionstate {
    std::string output;
    std::deque<std::string> typed; // lines that the keyboard will give
    std::string prompts;           // with which it was asked for lines
    std::vector<std::string> questions;
    int answer = 0; // to every question
};
inline filesessionstate filesession;

class FileSession : public testing::Test {
protected:
    std::filesystem::path folder, before = std::filesystem::current_path();

    void SetUp() override {
        char pattern[] = "/tmp/tarntestXXXXXX";
        folder = mkdtemp(pattern);
        std::filesystem::current_path(folder);
        begin();
    }
    void TearDown() override {
        sessionclose();
        std::filesystem::current_path(before);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(folder);
    }
    // A session from its start, with nothing defined.
    void begin() {
        filesession = filesessionstate{};
        hooksreset();
        console.write = [](const char* text, size_t length) { filesession.output.append(text, length); };
        console.readline = [](const char* prompt, std::string& text) {
            filesession.prompts += prompt;
            if (filesession.typed.empty()) return false;
            text = filesession.typed.front();
            filesession.typed.pop_front();
            return true;
        };
        console.question = [](const char*, const char* message, const char* const*, int) {
            filesession.questions.push_back(message);
            return filesession.answer;
        };
        sessionoptions options;
        options.startmode = 2;
        options.programpath = TESTDATADIR "/../../data/";
        options.quiet = options.vanilla = true;
        ASSERT_EQ(sessionstart(options), 0) << filesession.output;
        filesession.output.clear();
    }
    // What the statements print; after an error the next line goes on.
    std::string run(const std::string& statements) {
        filesession.output.clear();
        size_t at = 0;
        while (at < statements.size()) {
            const size_t end = std::min(statements.find('\n', at), statements.size());
            sessionexecute(statements.substr(at, end - at) + "\n");
            at = end + 1;
        }
        return filesession.output;
    }
    void file(const std::string& name, const std::string& text) {
        std::filesystem::remove(folder / name); // quicker than writing over it, on some file systems
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::string contents(const std::string& name) {
        std::string text;
        EXPECT_TRUE(readwhole((folder / name).c_str(), text)) << name;
        return text;
    }
    static const symbol* object(const char* name) {
        const int idx = symtablookup(name);
        return idx > 0 ? &sym(idx) : nullptr;
    }
    static int typeof(const char* name) { return object(name) ? object(name)->type : -1; }
    // The elements of a matrix row by row, or the one of a scalar; empty for anything else.
    static std::vector<double> numbers(const char* name) {
        const symbol* s = object(name);
        if (s && s->type == SCALAR) return {s->val.rval};
        if (!s || s->type != MATRIX) return {};
        const auto* m = static_cast<const harray*>(s->val.ptr);
        return {cells(m) + 1, cells(m) + 1 + harraycount(m)};
    }
    static std::string shape(const char* name) {
        const symbol* s = object(name);
        if (!s || (s->type != MATRIX && s->type != STRINGMATRIX)) return "none";
        const auto* m = static_cast<const harray*>(s->val.ptr); // both kinds begin with rows and cols
        return std::to_string(m->rows) + " by " + std::to_string(m->cols);
    }
};
