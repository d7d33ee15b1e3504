/* tests/support/livesession.h - a whole session inside a test.
 * Owns:    a folder of the test's own, what is printed, a keyboard made of lines.
 * Callers: tests of statements: StartedSession where the start itself is not tested, FileSession for what is
 * read from files and written to them. */
#pragma once

#include "interp/base/hooks.h"
#include "interp/base/report.h"
#include "interp/base/symtab.h"
#include "interp/dofiles.h"
#include "interp/session.h"
#include "support/fixedwords.h"
#include "support/folder.h"
#include "values/harray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

struct livesessionstate {
    std::string output;                 // of the console
    std::string errors;                 // copies for standard error, in a batch
    std::vector<std::string> typed;     // lines of the keyboard
    std::string prompts;                // of a FileSession, with which it was asked for lines
    std::vector<std::string> questions; // put to the user of a FileSession
    int answer = 0;                     // to each
    bool editor = false;                // is there a screen for the line editor?
    std::vector<std::string> edited;    // texts that came up in it
    std::string correction;             // what the user makes of them
    int polls = 0, breakafter = -1;     // control-C at this look at the console
    int key = -1;                       // pressed once
};
inline livesessionstate live;

class LiveSession : public testing::Test {
protected:
    void SetUp() override {
        live = livesessionstate{};
        folder.open();
        setconsole();
    }

    void TearDown() override {
        if (report.log) sessionclose();
        folder.close();
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
        return sessionrun();
    }

    static double scalar(const char* name) { return symtabscalar(name, -999); }

    void file(const std::string& name, const std::string& text) const { folder.write(name, text); }
    std::string contents(const std::string& name) const { return wholefile(folder.named(name)); }

    testfolder folder;

    static bool nexttyped(std::string& text) {
        if (live.typed.empty()) return false;
        text = live.typed.front();
        live.typed.erase(live.typed.begin());
        return true;
    }
    static void setconsole() {
        hooksreset();
        console.write = [](const char* text, size_t n) { live.output.append(text, n); };
        console.errortext = [](const char* text) { live.errors += text; };
        console.readline = [](const char* prompt, std::string& text) {
            tarnprint("%s", prompt);
            if (!nexttyped(text)) return false;
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

class StartedSession : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        start();
    }
};

// Nothing but the vocabulary is read at the start; each line is a statement of its own, so that after an
// error the next one goes on.
class FileSession : public LiveSession {
protected:
    void SetUp() override {
        folder.open();
        begin();
    }
    void TearDown() override {
        sessionclose();
        LiveSession::TearDown();
    }
    // A session from its start, with nothing defined.
    void begin() {
        live = livesessionstate{};
        setconsole();
        console.readline = [](const char* prompt, std::string& text) {
            live.prompts += prompt;
            return nexttyped(text);
        };
        console.question = [](const char*, const char* message, const char* const*, int) {
            live.questions.push_back(message);
            return live.answer;
        };
        sessionoptions o = options();
        o.startmode = 2;
        ASSERT_EQ(start(o), 0) << live.output;
    }
    std::string run(const std::string& statements) {
        live.output.clear();
        for (size_t at = 0, end; at < statements.size(); at = end + 1) {
            end = std::min(statements.find('\n', at), statements.size());
            sessionexecute(statements.substr(at, end - at) + "\n");
        }
        return fixedwords(live.output);
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
