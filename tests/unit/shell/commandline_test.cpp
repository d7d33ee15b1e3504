// The words of the command line: what each form of it means.
#include "shell/commandline.h"

#include <gtest/gtest.h>

namespace {

using words = std::vector<std::string>;

TEST(CommandLine, StartWordsDisplaysAndDoFiles) {
    const struct {
        words line;
        int startmode;
        words displays;
        const char* dofile;
    } rows[] = {
        {{}, 0, {}, "_"},
        {{"bwi"}, 1, {}, "_"},
        {{"bwii"}, 2, {}, "_"},
        {{"bwii", "model"}, 2, {}, "_"}, // a do-file needs start mode 3
        {{"BWI"}, 3, {}, "BWI.do"},
        {{"model"}, 3, {}, "model.do"},
        {{"model.do"}, 3, {}, "model.do"},
        {{"MODEL.DO"}, 3, {}, "MODEL.DO"},
        {{"model.Do"}, 3, {}, "model.Do.do"},
        {{"do"}, 3, {}, "do.do"},
        {{"a"}, 3, {}, "a.do"},
        {{".do"}, 3, {}, ".do"}, // three characters
        {{"-PSL"}, 3, {"PSL"}, "_"},
        {{"-PSL", "model"}, 3, {"PSL"}, "model.do"},
        {{"model", "-PSL"}, 3, {"PSL"}, "_"}, // the last word counts
        {{"-A", "x", "-B", "y"}, 3, {"A", "B"}, "y.do"},
        {{"-"}, 3, {""}, "_"},
        {{"bwi", "-PSL"}, 1, {"PSL"}, "_"},
        {{"--quiet"}, 0, {}, "_"}, // taken off before the rest is read
        {{"--vanilla", "bwii"}, 2, {}, "_"},
    };
    for (const auto& row : rows) {
        const commandline c = readcommandline(row.line);
        EXPECT_EQ(c.run, runkind::session) << row.dofile;
        EXPECT_EQ(c.session.startmode, row.startmode) << row.dofile;
        EXPECT_EQ(c.session.displays, row.displays) << row.dofile;
        EXPECT_EQ(c.session.dofile, row.dofile);
        EXPECT_FALSE(c.session.batch);
    }
}

TEST(CommandLine, Options) {
    const struct {
        words line;
        runkind run;
        const char* operand;
        bool quiet, vanilla;
    } rows[] = {
        {{"--quiet"}, runkind::session, "", true, false},
        {{"--quiet", "--vanilla", "x"}, runkind::session, "", true, true},
        {{"--help"}, runkind::help, "", false, false},
        {{"--version"}, runkind::version, "", false, false},
        {{"--batch", "m.do"}, runkind::batch, "m.do", false, false},
        {{"--batch", "-"}, runkind::batch, "-", false, false},
        {{"--vanilla", "--eval", "X = 3"}, runkind::eval, "X = 3", false, true},
        {{"--eval", ""}, runkind::eval, "", false, false},
        {{"--eval", "--quiet"}, runkind::eval, "--quiet", false, false}, // an operand is taken as it stands
        {{"-PSL", "--batch", "m.do"}, runkind::batch, "m.do", false, false},
    };
    for (const auto& row : rows) {
        const commandline c = readcommandline(row.line);
        EXPECT_EQ(c.run, row.run) << row.operand;
        EXPECT_EQ(c.operand, row.operand);
        EXPECT_EQ(c.session.quiet, row.quiet);
        EXPECT_EQ(c.session.vanilla, row.vanilla);
        EXPECT_EQ(c.session.batch, row.run == runkind::batch || row.run == runkind::eval);
    }
}

TEST(CommandLine, WrongUsage) {
    const words rows[] = {{"--"},
                          {"--Quiet"},
                          {"--batch"},
                          {"--eval"},
                          {"--quiet=1"},
                          {"--batch", "a.do", "--eval", "1"},
                          {"--help", "--version"},
                          {"model.do", "--unknown"}};
    for (const words& row : rows) {
        const commandline c = readcommandline(row);
        EXPECT_EQ(c.run, runkind::wrong) << row[0];
        EXPECT_FALSE(c.operand.empty());
    }
}

} // namespace
