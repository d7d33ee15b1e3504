// Statements on windows, curves and titles, in whole sessions: what each clause does, what each fault leaves.
#include "plot/plotobj.h"
#include "support/livesession.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace {

class PlotStatements : public LiveSession {
protected:
    void SetUp() override {
        LiveSession::SetUp();
        start();
        run("M = (1:3) &' LIST(2,8,5); L = 1:3; K = 2");
    }
    void TearDown() override {
        symtabstart(); // lets go of all records
        LiveSession::TearDown();
    }

    static const curve& curvenamed(const char* name) { return curveof(symtablookup(name)); }
    static const window& windownamed(const char* name) { return windowof(symtablookup(name)); }
    static const title& titlenamed(const char* name) { return titleof(symtablookup(name)); }

    static std::string ring(const char* win) {
        std::string names;
        for (int k = ringnext(symtablookup(win)); k; k = ringnext(k)) names += std::string(sym(k).name) + " ";
        return names;
    }

    // Everything that there is, as text.
    static std::string everything() {
        std::string text = run("TYPE SYMBOLS");
        for (int idx = 1; idx < SYMTABSIZE; idx++) {
            const symbol& s = sym(idx);
            if (s.name[0] == '@' || s.type < WINDOWTYPE || s.type > TITLETYPE) continue;
            text += run(std::string("TYPE ") + s.name);
            if (s.type != CURVETYPE) continue;
            for (const char* part : {"GETDATA", "GETLABELS", "GETPTSIZE"})
                text += run(std::string("TYPE ") + part + "(" + s.name + ")");
        }
        return text;
    }
};

// ---- faults ----

TEST_F(PlotStatements, FaultsAreToldAndChangeNothing) {
    run("DRAW M; TITLE T1 = \"text\"; W2 = W; FUNCTION F(X) = X");
    const std::string was = everything();
    const struct {
        const char *statement, *message;
    } rows[] = {
        {"DRAW C1 LINETYPE 13 COLOR RED",
         "##Error: invalid linetype.\nWarning: line types are 0 to 12, this is 13\n"},
        {"DRAW C1 LINETYPE (1,2) COLOR RED",
         "##Error: improper number of arguments to LINETYPE\nWarning: LINETYPE takes a number, a matrix of 1 "
         "to 7 numbers, or (seg1, gap, seg2, tick1, tick2, thick, fill)\n"},
        {"DRAW C1 LINETYPE NULLM",
         "##Error: improper number of arguments to LINETYPE\nWarning: LINETYPE takes a number, a matrix of 1 "
         "to 7 numbers, or (seg1, gap, seg2, tick1, tick2, thick, fill)\n"},
        {"DRAW C1 LINE \"a\"", "##Error: bad argument type in LINETYPE (LINE)\nWarning: \"a\" is a string\n"},
        {"DRAW C1 LINETYPE (1,2,3,4,5,6,L)",
         "##Error: bad argument type in LINETYPE (LINE)\nWarning: L is a 3 by 1 matrix\n"},
        {"DRAW C1 COLOR RED POINTTYPE 32", "##Error: invalid pointtype.\nWarning: point types are -31 to 31, "
                                           "or a letter in quotes; this is 32\n"},
        {"DRAW C1 POINTTYPE -1", "##Error: invalid pointtype.\nWarning: point types are -31 to 31, or a "
                                 "letter in quotes; this is -1\n"},
        {"DRAW C1 POINTTYPE \"\"", "##Error: invalid pointtype.\nWarning: the text is empty\n"},
        {"DRAW C1 POINTTYPE \"\xc3\xa9\"",
         "##Error: invalid pointtype.\nWarning: a point is a single letter of ASCII\n"},
        {"DRAW C1 LINETYPE -1", "##Error: invalid linetype.\nWarning: line types are 0 to 12, this is -1\n"},
        {"DRAW C1 COLOR PUCE",
         "##Error: PUCE is not a scalar type as expected\nWarning: PUCE is undefined\n"},
        {"DRAW C1 COLOR RED POINTTYPE 999", "##Error: invalid pointtype.\nWarning: point types are -31 to "
                                            "31, or a letter in quotes; this is 999\n"},
        {"DRAW C1 COLOR RED PTFONT 35",
         "##Error: invalid font table number.\nWarning: fonts are -14 to 34, this is 35\n"},
        {"DRAW C1 COLOR RED LABELFONT -15",
         "##Error: invalid label font number.\nWarning: fonts are -14 to 34, this is -15\n"},
        {"DRAW C1 COLOR RED LABELSIZE -1", "##Error: LABELSIZE must be non-negative\n"},
        {"DRAW C1 PTSIZE -1", "##Error: point sizes must be non-negative\n"},
        {"DRAW C1 PTSIZE LIST(1,-1)", "##Error: point sizes must be non-negative\nWarning: row 2 is -1\n"},
        {"DRAW C1 PTSIZE \"a\"", "##Error: illegal point size\nWarning: \"a\" is a string\n"},
        {"DRAW C1 PTSIZE NULLM", "##Error: illegal point size\nWarning: the matrix is empty\n"},
        {"DRAW C1 COLOR (1,2,3,4)",
         "##Error: wrong number of arguments for COLOR clause\nWarning: it takes one to three: of points, "
         "line and labels, or of the first two and labels\n"},
        {"DRAW C1 PLACE (1)",
         "##Error: PLACE must have two parenthesized arguments\nWarning: as in PLACE (LEFT, TOP)\n"},
        {"DRAW C1 PLACE (CENTER,LEFT) COLOR RED",
         "##Error: illegal PLACE vcenter argument\nWarning: PLACE (h, v) takes LEFT, CENTER or RIGHT and "
         "then BOTTOM, CENTER or TOP\n"},
        {"DRAW C1 PLACE (TOP,CENTER) COLOR RED",
         "##Error: illegal PLACE hcenter argument\nWarning: PLACE (h, v) takes LEFT, CENTER or RIGHT and "
         "then BOTTOM, CENTER or TOP\n"},
        {"DRAW C1 OFFSET L",
         "##Error: OFFSET must have two parenthesized arguments\nWarning: as in OFFSET (0.1, 0.1)\n"},
        {"TITLE T1 AT 3",
         "##Error: AT clause must have two parenthesized arguments\nWarning: as in AT (0.5, 0.5)\n"},
        {"DRAW C1 LABEL \"a\" COLOR RED",
         "##Error: LABEL argument must be matrix or scalar\nWarning: \"a\" is a string\n"},
        {"DRAW C1 LABEL L&'L&'L",
         "##Error: label matrix must have 1 or 2 cols\nWarning: the expression is a 3 by 3 matrix\n"},
        {"DRAW C1 FFRACT COLOR RED", "##Error: DRAW statements must use WORLD data units\nWarning: points in "
                                     "other units are drawn by AXIS\n"},
        {"DRAW C1 FORMAT (1,2)", "##Error: FORMAT needs 6 scalars\nWarning: as in FORMAT (-3,8,0,0,2,0)\n"},
        {"DRAW C1 = K", "##Error: bad DRAW or AXIS arg. type\nWarning: K is a scalar: a matrix of points "
                        "or the name of a curve is needed\n"},
        {"DRAW W", "##Error: bad DRAW or AXIS arg. type\nWarning: W is a window: a matrix of points or the "
                   "name of a curve is needed\n"},
        {"DRAW M, L", "##Error: bad DRAW or AXIS arg. type\nWarning: M is a 3 by 2 matrix: the name must be "
                      "new, or that of a curve\n"},
        {"DRAW NEW", "##Error: bad DRAW or AXIS arg. type\nWarning: NEW is undefined\n"},
        {"DRAW F'X = M", "##Error: bad DRAW or AXIS arg. type\nWarning: F'X is a derivative: it has a value with arguments behind it\n"},
        {"DRAW C1 = M, L", "##Error: too many arguments in DRAW or AXIS statement\nWarning: a name and its "
                           "points: DRAW NAME = MATRIX\n"},
        {"AXIS M&'M", "##Error: DRAW & AXIS data matrix must have 1 or 2 cols\nWarning: the expression is a "
                      "3 by 4 matrix\n"},
        {"DRAW C1 = NULLM",
         "##Error: DRAW & AXIS data matrix must have 1 or 2 cols\nWarning: NULLM is a 0 by 0 matrix\n"},
        {"DRAW C1 = W.XAXIS IN K", "##Error: K is not a window\n"},
        {"DRAW M IN \"x\"", "##Error: x is not a window\n"},
        {"WINDOW 0 TO 1 IN W2",
         "##Error: not enough TO clauses\nWarning: two are needed: x1 TO x2, y1 TO y2\n"},
        {"WINDOW 0 TO 1, 0 TO 1, 0 TO 1",
         "##Error: too many TO clauses\nWarning: two are enough: x1 TO x2, y1 TO y2\n"},
        {"WINDOW 0 TO L, 0 TO 1", "##Error: scalars required in TO clause\nWarning: L is a 3 by 1 matrix\n"},
        {"WINDOW 0 TO 1, 3 TO 3", "##Error: illegal WINDOW limits: 3 TO 3\n"},
        {"WINDOW MAXNEG TO MAXPOS, 3 TO 4",
         "##Error: illegal WINDOW limits: -1.79769e+308 TO 1.79769e+308\n"},
        {"WINDOW ADJUST 16", "##Error: ADJUST arguments must be in [0,15]\nWarning: a sum of 1 shrink, 2 "
                             "expand, 4 pad, 8 round, or WFIX, WFLOAT, WNICE, WMATCH\n"},
        {"WINDOW ADJUST (0,0,-1,0)", "##Error: ADJUST arguments must be in [0,15]\nWarning: a sum of 1 "
                                     "shrink, 2 expand, 4 pad, 8 round, or WFIX, WFLOAT, WNICE, WMATCH\n"},
        {"WINDOW ADJUST (1,2)",
         "##Error: ADJUST must have 1 or 4 arguments\nWarning: the four are for xmin, xmax, ymin, ymax\n"},
        {"WINDOW L", "##Syntax Error[0]: illegal statement\nWarning: L is a 3 by 1 matrix: a window is named "
                     "by IN, its limits are told with TO\n"},
        {"FRAME 0 TO 1.01, 0 TO 1 PRIORITY 3",
         "##Error: frame is outside the screen\nWarning: the screen is 0 TO 1, 0 TO 1 in these units\n"},
        {"FRAME 0 TO 10.1, 0 TO 1 INCHES",
         "##Error: frame is outside the screen\nWarning: the screen is 0 TO 10, 0 TO 7.5 in these units\n"},
        {"FRAME 1 TO 0, 0 TO 1", "##Error: FRAME limits must rise from the first to the second\n"},
        {"FRAME 0 TO 1, 0 TO 1 FFRACT COLOR RED",
         "##Error: bad units in FRAME or IMAGE statement\nWarning: FRAME takes FRACT or INCHES\n"},
        {"IMAGE 0 TO 1, 0 TO 1 WORLD", "##Error: bad units in FRAME or IMAGE statement\nWarning: IMAGE takes "
                                       "FFRACT, FINCHES, FRACT or INCHES\n"},
        {"IMAGE -0.1 TO 1, 0 TO 1 COLOR RED",
         "##Error: image is outside the frame\nWarning: the frame of W is 0 TO 1, 0 TO 1 in these units\n"},
        {"IMAGE 0.5 TO 0.5, 0 TO 1", "##Error: IMAGE limits must rise from the first to the second\n"},
        {"IMAGE 0 TO 1", "##Error: not enough TO clauses\nWarning: two are needed: x1 TO x2, y1 TO y2\n"},
        {"BLANK C1, K", "##Error: bad type in BLANK/UNBLANK\nWarning: K is a scalar\n"},
        {"TITLE M = \"a\"",
         "##Error: title name already assigned to other type\nWarning: M is a 3 by 2 matrix\n"},
        {"TITLE C1 = \"a\"", "##Error: title name already assigned to other type\nWarning: C1 is a curve\n"},
        {"TITLE \"a\", 5", "##Error: title name already assigned to other type\nWarning: 5 is a number: "
                           "a position is TOP, LEFT, RIGHT or BOTTOM\n"},
        {"TITLE \"a\", \"b\"", "##Error: bad TITLE arg. type\nWarning: \"b\" is a string: one name, one "
                               "text and one position are enough\n"},
        {"TITLE TOP, LEFT, \"b\"", "##Error: bad TITLE arg. type\nWarning: LEFT is a scalar: one name, "
                                   "one text and one position are enough\n"},
        {"TITLE T1 = NEW", "##Error: bad TITLE arg. type\nWarning: NEW is undefined: one name, one text and "
                           "one position are enough\n"},
        {"TITLE A, B, \"b\", TOP, 1", "##Error: too many arguments in TITLE statement\nWarning: a name, a "
                                      "title to copy, a text and a position are all that it takes\n"},
        {"TITLE T1 FONT 35 COLOR RED",
         "##Error: invalid font number\nWarning: fonts are -14 to 34, this is 35\n"},
        {"TITLE T1 SIZE -1 COLOR RED", "##Error: SIZE must be non-negative\n"},
        {"TITLE T1 PLACE (5,5) COLOR RED", "##Error: illegal PLACE vcenter argument\nWarning: PLACE (h, v) "
                                           "takes LEFT, CENTER or RIGHT and then BOTTOM, CENTER or TOP\n"},
        {"TITLE \"a\" IN C1", "##Error: C1 is not a window\n"},
        {"TYPE GETDATA(W)", "##Error: not a curve, axis, or window\nWarning: W is a window\n"},
        {"TYPE GETPTSIZE(M)", "##Error: not a curve, axis, or window\nWarning: M is a 3 by 2 matrix\n"},
        {"TYPE GETIMAGE(C1)", "##Error: not a curve, axis, or window\nWarning: C1 is a curve\n"},
        {"TYPE GETIMAGE(W,5)",
         "##Error: 2nd arg must be 1,2,3, or 4\nWarning: 1 FRACT, 2 INCHES, 3 FFRACT, 4 FINCHES\n"},
        {"TYPE GETFRAME(W,0)", "##Error: 2nd arg must be 1 or 2\nWarning: 1 FRACT, 2 INCHES\n"},
        {"W2 = W", "##Error: LHS type for assignment invalid\nWarning: W is a window, and W2 is a window: "
                   "DELETE W2 first, if it shall become another kind of object\n"},
        {"EDIT C1", "##Error: Only a FUNCTION, INITIAL, STRING, TITLE, FILE or CONSTRAINT may be "
                    "edited\nWarning: C1 is a curve\n"},
        {"SAVE C1 IN \"f\"", "##Error: saving an illegal object, no file created\nWarning: C1 is a curve\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.statement), row.message) << row.statement;
        EXPECT_EQ(everything(), was) << row.statement;
    }
}

// What a statement has no use for is told of; what it can use takes effect.
TEST_F(PlotStatements, ClausesWithoutEffectAreToldOf) {
    const struct {
        const char *statement, *names;
    } rows[] = {
        {"DRAW C1 AT (1,2) COLOR RED", "AT"},
        {"DRAW C1 ADJUST 7 SHIFT 1", "SHIFT ADJUST"},
        {"XAXIS PRIORITY 3", "PRIORITY"},
        {"TITLE T1 LINETYPE 2 LABEL L", "LINETYPE LABEL"},
        {"WINDOW 0 TO 1, 0 TO 1 COLOR RED", "COLOR"},
        {"FRAME ADJUST 7", "ADJUST"},
        {"IMAGE PRIORITY 3 COLOR RED", "PRIORITY"},
        {"FRAMEBOX ANGLE 3", "ANGLE"},
        {"TITLE T1 SIZE 0.03 FONT 5 SHIFT 0 AT (0,0) PLACE (LEFT,TOP) ANGLE 3 COLOR RED", ""},
        {"DRAW C1 LABEL L OFFSET (0,0) LABELSIZE 0.1 LABELFONT 5 WCLIP 1 PTSIZE 0.1 PTFONT 5", ""},
    };
    run("DRAW C1 = M; TITLE T1 = \"text\"");
    for (const auto& row : rows) {
        std::string expected;
        std::istringstream names(row.names);
        for (std::string name; names >> name;)
            expected += "Warning: " + name + " has no effect in this statement\n";
        EXPECT_EQ(run(row.statement), expected) << row.statement;
    }
    EXPECT_EQ(curvenamed("C1").linecolor, 2);
    EXPECT_EQ(windownamed("W").imagecolor, 2);
}

TEST_F(PlotStatements, ShiftedImageIsToldWithTheNewFrameInForce) {
    run("IMAGE 2 TO 8, 2 TO 6 FINCHES");
    EXPECT_EQ(run("FRAME 0.5 TO 1, 0 TO 1"),
              "##Error: FRAME command shifted image out of frame\n"
              "Warning: the image of W does not fit in: set it anew with IMAGE\n");
    EXPECT_DOUBLE_EQ(windownamed("W").fxmin, 0.5);
    EXPECT_DOUBLE_EQ(windownamed("W").ixmin, 0.7); // it went by the shift of the corner
}

// ---- DRAW and the axes ----

TEST_F(PlotStatements, OperandsOfDraw) {
    run("DRAW M; DRAW L; DRAW OWN = M ROW 1; DRAW; DRAW COPY = OWN COLOR RED; AXIS");
    EXPECT_EQ(ring("W"), "A4 COPY C3 OWN C2 C1 W.YAXIS W.XAXIS ");
    EXPECT_EQ(at(curvenamed("C2").data.get(), 3, 1), 3); // one column: 1, 2, 3 beside it
    EXPECT_EQ(at(curvenamed("C2").data.get(), 3, 2), 3);
    EXPECT_EQ(curvenamed("OWN").data->rows, 1u);
    EXPECT_EQ(curvenamed("C3").data, nullptr);
    EXPECT_EQ(curvenamed("C3").wclipsw, 1);
    EXPECT_EQ(curvenamed("A4").wclipsw, 0);
    EXPECT_EQ(curvenamed("COPY").linecolor, 2);
    EXPECT_EQ(curvenamed("OWN").linecolor, 1);
    run("DRAW OWN = L; DRAW C1 = COPY");
    EXPECT_EQ(curvenamed("COPY").data->rows, 1u); // a matrix of its own
    EXPECT_EQ(curvenamed("C1").data->rows, 1u);
    EXPECT_EQ(curvenamed("C1").linecolor, 2);
    EXPECT_EQ(ring("W"), "C1 A4 COPY C3 OWN C2 W.YAXIS W.XAXIS ");
    EXPECT_EQ(run("DRAW C1 = C1"), "");
    EXPECT_EQ(curvenamed("C1").data->rows, 1u);
}

TEST_F(PlotStatements, AutomaticNamesSkipWhatIsThere) {
    run("C1 = 3; T2 = 4; DRAW M; TITLE \"a\"; AXIS M");
    EXPECT_EQ(ring("W"), "A4 T3 C2 W.YAXIS W.XAXIS ");
}

TEST_F(PlotStatements, ClausesOfCurves) {
    run("DRAW M");
    const struct {
        const char* clauses;
        const char* shown; // by TYPE
    } rows[] = {
        {"LINETYPE 2", "lines: linetype: 2,  color"},
        {"LINE K+1", "linetype: 3,"},
        {"POINTTYPE 4", "pointtype: 4, font"},
        {"POINTTYPE -31", "pointtype: -31,"},
        {"POINTTYPE \"x\"", "pointtype: x,"},
        {"POINTTYPE 1065", "pointtype: A,"},
        {"PTFONT -14", "pointtype: 0, font: -14,"},
        {"PTSIZE 0.1 INCHES", "size: 0.1 INCHES"},
        {"PTSIZE L FRACT", "size: -2 FRACT"},
        {"COLOR RED", "FFRACT color: RED(2) \nlines: linetype: 1,  color: RED(2) "},
        {"COLOR (RED,GREEN)", "FFRACT color: RED(2) \nlines: linetype: 1,  color: RED(2) "},
        {"COLOR (RED,GREEN)", "0.02, FFRACT color: GREEN(3) "},
        {"COLOR (RED,GREEN,BLUE)", "FFRACT color: RED(2) \nlines: linetype: 1,  color: GREEN(3) "},
        {"COLOR (RED,GREEN,BLUE)", "0.02, FFRACT color: BLUE(4) "},
        {"COLOR CLEAR", "lines: linetype: 1,  color: CLEAR(-2) "},
        {"COLORNUM 100", "lines: linetype: 1,  color: (100) "},
        {"LABEL L", "label matrix: 3 rows"},
        {"LABEL 7", "label matrix: 1 rows"},
        {"LABELSIZE 0.5 INCHES LABELFONT 34", "labels: font: 34, size: 0.5, INCHES"},
        {"FORMAT (-1,4,0,0,2,1) ANGLE 45", "format: (-1,4,0,0,2,1), angle: 45"},
        {"PLACE (CENTER,TOP)", " place (center, top)"},
        {"PLACE (RIGHT,CENTER)", " place (right, center)"},
        {"OFFSET (-0.5,2) INCHES", " xoffset: -0.5, yoffset: 2 INCHES"},
        {"WCLIP 0", "wclipsw: 0"},
        {"WORLD", "curve: X, (UNBLANKED) in window: W"},
        {"LINETYPE (1,2,3,4,5,6,7)",
         "linetype: seg1: 1, gap: 2, seg2: 3, tick1: 4, tick2: 5\nthick: 6, fill: 7\n"},
        {"LINETYPE 1:9", "linetype: seg1: 1, gap: 2, seg2: 3, tick1: 4, tick2: 5\nthick: 6, fill: 7\n"},
        {"LINETYPE LIST(1,2)",
         "linetype: seg1: 1, gap: 2, seg2: 1.79769e+308, tick1: 1.79769e+308, tick2: 1.79769e+308\n"
         "thick: -1, fill: -1\n"},
    };
    for (const auto& row : rows) {
        run("DELETE X");
        EXPECT_EQ(run(std::string("DRAW X = M ") + row.clauses), "") << row.clauses;
        const std::string shown = run("TYPE X");
        EXPECT_NE(shown.find(row.shown), std::string::npos) << row.clauses << "\n" << shown;
        // The same on a curve that is there, which keeps all else.
        run(std::string("DELETE X; DRAW X = M PRIORITY 1; DRAW X ") + row.clauses);
        EXPECT_EQ(run("TYPE X"), shown) << row.clauses;
    }
}

TEST_F(PlotStatements, WarningsOfDrawGoOn) {
    run("DRAW M");
    EXPECT_EQ(run("DRAW C1 FONT 3 COLOR RED"),
              "Warning: FONT and SIZE clauses only apply in TITLE statements.\n"
              "Use PTFONT, PTSIZE, LABELFONT, or LABELSIZE as appropriate.\n");
    EXPECT_EQ(curvenamed("C1").linecolor, 2);
    EXPECT_EQ(run("AXIS C1"), "Warning: changing kind of CURVE/AXIS\n");
    EXPECT_EQ(run("TYPE AXES"), "currently defined AXES\n   C1 in W\n   W.XAXIS in W\n   W.YAXIS in W\n");
}

TEST_F(PlotStatements, PointSizesComeAndGo) {
    run("DRAW M PTSIZE L");
    EXPECT_EQ(curvenamed("C1").ptsizes->rows, 3u);
    run("DRAW C1 COLOR RED");
    EXPECT_EQ(curvenamed("C1").ptsizes->rows, 3u);
    run("DRAW C1 PTSIZE 0.5");
    EXPECT_EQ(curvenamed("C1").ptsizes, nullptr);
    EXPECT_EQ(run("TYPE GETPTSIZE(C1)*2"), run("TYPE LIST(1)"));
    run("DRAW C1 LABEL L; DRAW C1 LABEL NULLM");
    EXPECT_EQ(curvenamed("C1").labels, nullptr);
}

TEST_F(PlotStatements, MovingACurveAdjustsBothWindows) {
    run("DRAW L; DRAW BIG = 10*L; DRAW BIG COLOR RED IN W2");
    EXPECT_EQ(ring("W"), "C1 W.YAXIS W.XAXIS ");
    EXPECT_EQ(ring("W2"), "BIG ");
    EXPECT_EQ(windownamed("W").wymax, 3);
    EXPECT_EQ(windownamed("W2").wymax, 30);
    run("DRAW BIG COLOR BLUE"); // without IN it stays where it is
    EXPECT_EQ(ring("W2"), "BIG ");
    run("TITLE T1 = \"a\"; TITLE T1 IN W2; TITLE T1 COLOR RED");
    EXPECT_EQ(ring("W2"), "T1 BIG ");
}

TEST_F(PlotStatements, AxesAreFoundByTheirWindow) {
    run("XAXIS L; XAXIS COLOR RED; YAXIS L IN W2");
    EXPECT_EQ(ring("W"), "W.YAXIS W.XAXIS ");
    EXPECT_EQ(ring("W2"), "W2.YAXIS ");
    EXPECT_EQ(curvenamed("W.XAXIS").linecolor, 2);
    run("W3.XAXIS = 7");
    EXPECT_EQ(run("XAXIS L IN W3"), "##Error: bad DRAW or AXIS arg. type\nWarning: W3.XAXIS is a scalar: "
                                    "the name must be new, or that of a curve\n");
}

// What an axis shows goes with the window; new data or labels are those of the window as it is now.
TEST_F(PlotStatements, AxesKeepPaceWithTheirWindow) {
    run("WINDOW 0 TO 10, 0 TO 10 IN V; XAXIS (0:10)&'0*(0:10) LABEL 0:10 IN V; WINDOW 100 TO 300, 0 TO 1 IN "
        "V");
    const curve& c = curvenamed("V.XAXIS");
    EXPECT_EQ(c.axisw[1], 10);
    run("XAXIS LIST(100,200)&'LIST(0,0) IN V"); // new data: the old labels are brought along
    EXPECT_EQ(c.axisw[0], 100);
    EXPECT_EQ(c.axisw[1], 300);
    EXPECT_DOUBLE_EQ(cells(c.labels.get())[1], 100);
    EXPECT_DOUBLE_EQ(cells(c.labels.get())[6], 200);
    run("WINDOW 0 TO 1, 0 TO 1 IN V; XAXIS LABEL LIST(5,6) IN V"); // new labels: the old points are
    EXPECT_EQ(c.axisw[1], 1);
    EXPECT_NEAR(at(c.data.get(), 1, 1), 0, 1e-15);
    EXPECT_NEAR(at(c.data.get(), 2, 1), 0.5, 1e-15);
    EXPECT_EQ(cells(c.labels.get())[1], 5);
    run("WINDOW 0 TO 7, 0 TO 1 IN V; XAXIS L LABEL L IN V"); // both: neither is touched
    EXPECT_EQ(c.axisw[1], 7);
    EXPECT_EQ(at(c.data.get(), 3, 1), 3);
    EXPECT_EQ(cells(c.labels.get())[3], 3);
    run("WINDOW 0 TO 9, 0 TO 1 IN V; XAXIS COLOR RED IN V"); // neither: all stays
    EXPECT_EQ(c.axisw[1], 7);
}

TEST_F(PlotStatements, AxesChooseTheirMarksUntilTheUserDoes) {
    const auto labels = [](const char* name) { return run(std::string("TYPE GETLABELS(") + name + ")'"); };
    const auto list = [](const char* values) { return run(std::string("TYPE (") + values + ")'"); };
    run("DRAW LIST(0,5)&'LIST(-0.7,1)");
    EXPECT_EQ(labels("W.XAXIS"), list("LIST(0,0.5,1,1.5,2,2.5,3,3.5,4,4.5,5)"));
    EXPECT_EQ(labels("W.YAXIS"), list("LIST(-0.6,-0.4,-0.2,0,0.2,0.4,0.6,0.8,1)"));
    EXPECT_NE(run("TYPE W.YAXIS").find("format: (1,1,0,3,20,0)"), std::string::npos);
    run("DRAW LIST(0,5)&'LIST(-0.7,1)*1000");
    EXPECT_EQ(labels("W.YAXIS"), list("200*LIST(-3,-2,-1,0,1,2,3,4,5)"));
    run("DELETE C2; XAXIS COLOR RED"); // a look changes no marks
    EXPECT_EQ(labels("W.YAXIS"), list("LIST(-0.6,-0.4,-0.2,0,0.2,0.4,0.6,0.8,1)"));
    EXPECT_EQ(curvenamed("W.XAXIS").wclipsw, 2);
    run("XAXIS LABELSIZE 0.06"); // large labels have room for fewer
    EXPECT_EQ(labels("W.XAXIS"), list("LIST(0,1,2,3,4,5)"));
    run("XAXIS LABEL NULLM; YAXIS FORMAT (2,2,0,0,0,0)");
    EXPECT_EQ(curvenamed("W.XAXIS").labels, nullptr);
    EXPECT_EQ(curvenamed("W.XAXIS").wclipsw, 2);
    run("WINDOW 10 TO 0, 0 TO 2E6");
    EXPECT_EQ(curvenamed("W.YAXIS").format[1], 2);             // a format of the user's stays
    EXPECT_EQ(cells(curvenamed("W.XAXIS").data.get())[1], 10); // from left to right on the screen
    run("YAXIS LABEL LIST(1,2); WINDOW 0 TO 1, 0 TO 1");
    EXPECT_EQ(curvenamed("W.YAXIS").wclipsw, 0);
    EXPECT_EQ(labels("W.YAXIS"), list("LIST(1,2)"));
    run("XAXIS LIST(0,1)&'0; WINDOW 0 TO 7, 0 TO 1");
    EXPECT_EQ(curvenamed("W.XAXIS").data->rows, 2u);
    run("YAXIS WCLIP 3 IN NEW; WINDOW 0 TO 1, 0 TO 50 IN NEW");
    EXPECT_EQ(labels("NEW.YAXIS"), list("5*(0:10)"));
}

TEST_F(PlotStatements, CopiesOfAxesShowTheSame) {
    run("XAXIS (0:10)&'0*(0:10) LABEL 0:10; DRAW 100*L; AXIS COPY = W.XAXIS; AXIS FROMCURVE = C1");
    EXPECT_EQ(curvenamed("COPY").axisw[1], 10); // its points are those of the first window
    EXPECT_EQ(curvenamed("FROMCURVE").axisw[1], 3);
    EXPECT_EQ(curvenamed("FROMCURVE").axisw[3], 300);
    const window& w = windownamed("W");
    for (const char* name : {"COPY", "FROMCURVE"}) {
        double x = name[0] == 'C' ? 10 : 3, y = name[0] == 'C' ? 0 : 300; // the last point of each
        axistonormal(x, y, w, curvenamed(name));
        EXPECT_NEAR(x, w.ixmax, 1e-15) << name;
        EXPECT_NEAR(y, name[0] == 'C' ? w.iymin : w.iymax, 1e-15) << name;
    }
}

// ---- windows ----

TEST_F(PlotStatements, WindowStatement) {
    run("DRAW M"); // x 1..3, y 2..8
    EXPECT_EQ(windownamed("W").wymax, 8);
    run("WINDOW -5 TO 5, 10 TO -10");
    EXPECT_EQ(windownamed("W").wxmin, -5);
    EXPECT_EQ(windownamed("W").wymax, -10);
    EXPECT_EQ(windownamed("W").adjust[3], 0);
    run("DRAW 100*M");
    EXPECT_EQ(windownamed("W").wxmax, 5);
    run("WINDOW ADJUST 3");
    EXPECT_EQ(windownamed("W").wxmax, 300);
    run("DELETE C2");
    EXPECT_EQ(windownamed("W").wxmax, 3);
    run("WINDOW 0 TO 20, 0 TO 20 ADJUST (0,WSHRINK,WEXPAND,WFIX)");
    EXPECT_EQ(windownamed("W").wxmin, 0);
    EXPECT_EQ(windownamed("W").wxmax, 3);
    EXPECT_EQ(windownamed("W").wymax, 20);
}

TEST_F(PlotStatements, FrameAndImage) {
    run("FRAME 0.5 TO 1, 0 TO 0.5 COLOR RED PRIORITY 2");
    const window& w = windownamed("W");
    EXPECT_DOUBLE_EQ(w.fxmin, 0.5);
    EXPECT_DOUBLE_EQ(w.fymax, 0.375); // half the height of a screen of 10 by 7.5 inches
    EXPECT_DOUBLE_EQ(w.ixmin, 0.5625);
    EXPECT_DOUBLE_EQ(w.iymax, 0.875 * 0.375);
    EXPECT_EQ(w.framecolor, 2);
    EXPECT_EQ(w.priority, 2);
    run("FRAME 0 TO 5, 0 TO 5 INCHES");
    EXPECT_DOUBLE_EQ(w.fxmax, 0.5);
    EXPECT_DOUBLE_EQ(w.ixmin, 0.0625);
    run("IMAGE 1 TO 4, 1 TO 4 INCHES COLOR GREEN");
    EXPECT_DOUBLE_EQ(w.ixmin, 0.1);
    EXPECT_EQ(w.imageunits, TOKINCHES);
    EXPECT_EQ(w.imagecolor, 3);
    run("FRAME 0.05 TO 0.55, 0 TO 0.9"); // INCHES: the image stays on the screen
    EXPECT_DOUBLE_EQ(w.ixmin, 0.1);
    run("IMAGE 1 TO 4, 1 TO 4 FINCHES; FRAME 0.1 TO 0.6, 0 TO 1"); // FINCHES: it goes with the corner
    EXPECT_DOUBLE_EQ(w.ixmin, 0.2);
    EXPECT_DOUBLE_EQ(w.ixmax, 0.5);
    run("IMAGE 0 TO 1, 0 TO 1; FRAME 0.3 TO 0.7, 0.1 TO 0.9; FRAME 0 TO 1/3, 0 TO 1/3; FRAME 0 TO 1, 0 TO 1");
    EXPECT_NEAR(w.ixmax, 1, 1e-15);
    EXPECT_EQ(run("IMAGE 0 TO 1, 0 TO 1 FRACT"), "");
}

TEST_F(PlotStatements, BoxesAndBlanks) {
    run("DRAW M; TITLE T1 = \"a\"; FRAMEBOX COLOR RED; IMAGEBOX NO");
    const window& w = windownamed("W");
    EXPECT_EQ(w.framebox, 1);
    EXPECT_EQ(w.frameboxcolor, 2);
    EXPECT_EQ(w.imagebox, 0);
    run("FRAMEBOX NO; IMAGEBOX COLORNUM 5");
    EXPECT_EQ(w.framebox, 0);
    EXPECT_EQ(w.frameboxcolor, 2);
    EXPECT_EQ(w.imagebox, 1);
    EXPECT_EQ(w.imageboxcolor, 5);
    run("BLANK C1, T1");
    EXPECT_EQ(curvenamed("C1").blanked + titlenamed("T1").blanked + w.blanked, 2);
    run("UNBLANK W");
    EXPECT_EQ(curvenamed("C1").blanked + titlenamed("T1").blanked + w.blanked, 0);
    run("BLANK W");
    EXPECT_EQ(curvenamed("W.XAXIS").blanked + curvenamed("C1").blanked + titlenamed("T1").blanked + w.blanked,
              4);
}

TEST_F(PlotStatements, Inquiries) {
    run("DRAW M LABEL L");
    EXPECT_EQ(run("TYPE GETDATA(C1)-M"), run("TYPE 0*M"));
    EXPECT_EQ(run("TYPE GETLABELS(C1)"), run("TYPE L*1"));
    EXPECT_EQ(run("TYPE GETWINDOW(W)"), run("TYPE LIST(1,3,2,8)"));
    EXPECT_EQ(run("TYPE GETFRAME(W)"), run("TYPE LIST(0,1,0,1)"));
    EXPECT_EQ(run("TYPE GETFRAME(W,2)"), run("TYPE LIST(0,10,0,7.5)"));
    EXPECT_EQ(run("TYPE GETIMAGE(W,3)"), run("TYPE LIST(0.125,0.875,0.125,0.875)"));
    EXPECT_EQ(run("TYPE GETIMAGE(W,4)"), run("TYPE LIST(1.25,8.75,0.9375,6.5625)"));
    EXPECT_EQ(run("TITLE TOP, \"say \"\"hi\"\"\"; TYPE TITLETEXT(W.TOP)"), "     say \"hi\"\n");
    run("DRAW");
    EXPECT_EQ(run("TYPE NROWS(GETDATA(C2))"), run("TYPE 0*1"));
}

// ---- titles ----

TEST_F(PlotStatements, OperandsOfTitle) {
    run("S = \"of a variable\"; TITLE \"free\"; TITLE S, TOP; TITLE T9 = \"named\"; TITLE LEFT, \"left\" "
        "COLOR RED");
    EXPECT_EQ(ring("W"), "W.LEFT T9 W.TOP T1 W.YAXIS W.XAXIS ");
    EXPECT_EQ(titlenamed("W.TOP").text, "of a variable");
    run("TITLE COPY = W.LEFT; TITLE W.LEFT = \"other\"; TITLE T9 = COPY");
    EXPECT_EQ(titlenamed("COPY").text, "left");
    EXPECT_EQ(titlenamed("T9").color, 2);
    EXPECT_EQ(titlenamed("T9").angle, 90);
    EXPECT_EQ(titlenamed("W.LEFT").color, 2); // a title that is there keeps all else
    run("TITLE NEWONE, RIGHT, \"r\" IN W2; TITLE EMPTY");
    EXPECT_EQ(ring("W2"), "NEWONE ");
    EXPECT_EQ(titlenamed("EMPTY").text, "");
}

TEST_F(PlotStatements, PlacesOfTitles) {
    const struct {
        const char* words;
        double x, y, angle; // in fractions of the frame; image 0.125 .. 0.875
    } rows[] = {{"TOP", 0, 0.9375, 0},
                {"LEFT", 0.03125, 0, 90},
                {"RIGHT", 0.9375, 0, 90},
                {"BOTTOM", 0, 0.0625, 0},
                {"TOP, \"x\" SIZE 0.1", 0, 1 - 0.05 / 0.75, 0}, // sizes are fractions of the frame's width
                {"LEFT, \"x\" SIZE 0.1", 0.05, 0, 90},
                {"RIGHT, \"x\" SIZE 0.2", 0.9, 0, 90},
                {"BOTTOM, \"x\" SIZE 0.1", 0, 0.05 / 0.75, 0},
                {"TOP, \"x\" ANGLE 10", 0, 0.9375, 10}};
    for (const auto& row : rows) {
        run(std::string("DELETE T; TITLE T = ") + row.words);
        const title& t = titlenamed("T");
        EXPECT_NEAR(t.x, row.x, 1e-15) << row.words;
        EXPECT_NEAR(t.y, row.y, 1e-15) << row.words;
        EXPECT_EQ(t.angle, row.angle) << row.words;
        EXPECT_EQ(t.shift, 0.5) << row.words;
        EXPECT_EQ(t.hplace, -1) << row.words;
        EXPECT_EQ(t.vplace, 0) << row.words;
    }
    run("TITLE TOP INCHES SHIFT 0 PLACE (RIGHT,BOTTOM)"); // the place is stored in the units told
    EXPECT_NEAR(titlenamed("W.TOP").y, 0.9375 * 7.5, 1e-12);
    EXPECT_EQ(titlenamed("W.TOP").shift, 0);
    EXPECT_EQ(titlenamed("W.TOP").hplace, 1);
    run("TITLE TOP, \"x\" AT (3,4) WORLD");
    EXPECT_EQ(titlenamed("W.TOP").x, 3);
    EXPECT_EQ(titlenamed("W.TOP").atunits, TOKWORLD);
}

TEST_F(PlotStatements, AnglesOfTitlesWrap) {
    const struct {
        const char* angle;
        double wrapped;
    } rows[] = {{"-30", 330}, {"730", 10}, {"-720", 0}, {"360", 0}, {"-1E-20", 0}, {"1E15", 280}};
    for (const auto& row : rows) {
        run(std::string("TITLE T = \"a\" ANGLE ") + row.angle);
        EXPECT_EQ(titlenamed("T").angle, row.wrapped) << row.angle;
    }
}

TEST_F(PlotStatements, TitlesAreEdited) {
    live.editor = true;
    live.correction = "title T1 = \"new\"\r";
    run("TITLE T1 = \"say \"\"hi\"\"\"");
    type({"EDIT T1", "EXIT"});
    ASSERT_EQ(live.edited.size(), 1u);
    EXPECT_EQ(live.edited[0], "title T1 = \"say \"\"hi\"\"\"");
}

// ---- deleting, copying ----

TEST_F(PlotStatements, Deleting) {
    run("DRAW M; TITLE TOP, \"x\"; W2 = W; DELETE W, C1, W.TOP");
    EXPECT_EQ(run("TYPE WINDOWS, CURVES, TITLES"),
              "currently defined WINDOWS\n   W2\ncurrently defined CURVES\n"
              "   C2 in W2\ncurrently defined TITLES\n   W2.TOP in W2\n");
    EXPECT_EQ(run("DELETE C1"), "Warning: DELETE: C1 does not exist\n");
    run("DELETEALL");
    EXPECT_EQ(run("TYPE WINDOWS, CURVES, AXES"), "currently defined WINDOWS\n   none\ncurrently defined "
                                                 "CURVES\n   none\ncurrently defined AXES\n   none\n");
    EXPECT_EQ(run("DRAW 1:3; TYPE CURVES"), "currently defined CURVES\n   C3 in W\n");
}

// ---- save files ----

TEST_F(PlotStatements, RecordsHaveTheirSizesInTheFile) {
    run("WINDOW 1 TO 2, 3 TO 4 IN V; SAVE V IN \"bare\"");
    const std::string bare = contents("bare.SAV");
    EXPECT_EQ(bare.size(), 2u + 2 + 2 + 136 + 2); // type, name, record, count of members
    const auto number = [](const std::string& bytes, size_t place) {
        double value;
        memcpy(&value, bytes.data() + place, sizeof value);
        return value;
    };
    EXPECT_EQ(number(bare, 6 + 2), 1);
    EXPECT_EQ(number(bare, 6 + 34), 10 / 7.5); // the screen's shape
    EXPECT_EQ(number(bare, 6 + 42 + 8), 1);    // fxmax
    run("DRAW C = M PTSIZE 0.5 COLOR GREEN IN V; SAVE V IN \"curve\"");
    const std::string withcurve = contents("curve.SAV");
    const size_t record = bare.size() + 2 + 4;                    // behind the member's type and name
    EXPECT_EQ(withcurve.size(), record + 184 + (2 + 8 + 48) + 2); // the matrix, and none of labels
    EXPECT_EQ(number(withcurve, record + 128), 0.5);
    EXPECT_EQ(withcurve.substr(record + 142, 6), std::string("\xE0\x03\xE0\x03\xE0\x03", 6)); // 31 << 5
    run("DELETE C; TITLE T = \"ab\" IN V; SAVE V IN \"title\"");
    EXPECT_EQ(contents("title.SAV").size(), bare.size() + 2 + 4 + 60 + 2 + 3);
}

TEST_F(PlotStatements, SaveAndUseGiveTheSameBack) {
    run("DRAW M COLOR (RED,GREEN,BLUE) PTSIZE L&'L LABEL L&'L LINETYPE LIST(1,2) POINTTYPE \"x\"; DRAW; "
        "BLANK C1");
    run("TITLE TOP, \"title\" COLOR AQUA; FRAME 0 TO 0.5, 0.1 TO 1 COLOR GREY PRIORITY -3; IMAGE 1 TO 4, 1 "
        "TO 4 FINCHES");
    run("WINDOW ADJUST (1,2,3,15); FRAMEBOX COLOR ROSE");
    const std::string was = everything();
    run("SAVE W IN \"w\"; USEOVER \"w\"");
    EXPECT_EQ(everything(), was);
    run("DELETE W; USE \"w\"");
    EXPECT_EQ(everything(), was);
}

TEST_F(PlotStatements, UseFindsNewNamesForAllOfAWindow) {
    run("DRAW M; TITLE TOP, \"x\"; SAVE W IN \"w\"");
    EXPECT_EQ(run("USE \"w\""), "Using: WA\n"); // the keeping answer of the question
    EXPECT_EQ(ring("WA"), "WA.TOP C1A WA.YAXIS WA.XAXIS ");
    EXPECT_EQ(ring("W"), "W.TOP C1 W.YAXIS W.XAXIS ");
}

TEST_F(PlotStatements, AWindowKeepsItsPlaceOnAnotherScreen) {
    run("FRAME 0.5 TO 1, 0.2 TO 0.8; SAVE W IN \"w\"");
    for (const auto& [x, y] : {std::pair(10.0, 7.5), std::pair(7.5, 10.0), std::pair(6.0, 6.0)}) {
        run("DELETE W");
        screenresize(x, y);
        run("USE \"w\"");
        const window& w = windownamed("W");
        EXPECT_DOUBLE_EQ(w.fxmin, 0.5 * screen.aspectx);
        EXPECT_DOUBLE_EQ(w.fymax, 0.8 * screen.aspecty);
        EXPECT_DOUBLE_EQ(w.ixmin, (0.5 + 0.125 * 0.5) * screen.aspectx);
    }
}

TEST_F(PlotStatements, DamagedWindowsAreRefusedWhole) {
    run("DRAW M LABEL L; TITLE TOP, \"x\"; SAVE W IN \"w\"");
    const std::string good = contents("w.SAV"), was = everything();
    std::string bytes = good;
    memset(bytes.data() + 6 + 34, 0, 8);
    file("w.SAV", bytes);
    EXPECT_EQ(run("USEOVER \"w\""),
              "Using: \n##Error: Bad Window Adjust in USE\nWarning: in w.SAV, before byte 1366\n");
    EXPECT_EQ(everything(), was);
    for (size_t n = 1; n < good.size(); n += n < 160 ? 1 : 7) {
        file("w.SAV", good.substr(0, n));
        EXPECT_NE(run("USEOVER \"w\"").find("is damaged"), std::string::npos) << n;
    }
    EXPECT_EQ(everything(), was);
}

TEST_F(PlotStatements, AnyByteMayBeWrong) {
    run("DRAW M LABEL L PTSIZE L; TITLE TOP, \"x\"; SAVE W IN \"w\"");
    const std::string good = contents("w.SAV");
    std::mt19937 random(11);
    for (int n = 0; n < 600; n++) {
        std::string bytes = good;
        for (int k = int(random() % 3); k >= 0; k--) bytes[random() % bytes.size()] = char(random());
        file("w.SAV", bytes);
        run("USEOVER \"w\"");
        everything(); // whatever came in can be shown
    }
    file("w.SAV", good);
    run("DELETEALL; USE \"w\"");
    EXPECT_EQ(ring("W"), "W.TOP C1 W.YAXIS W.XAXIS ");
}

TEST_F(PlotStatements, AnotherThingCalledW) {
    run("W = 1:3");
    EXPECT_EQ(run("DRAW M"),
              "##Error: W is not a window\nWarning: without IN a plot statement means the window W: "
              "DELETE W, or name a window by IN\n");
    EXPECT_EQ(run("DRAW M IN P; TYPE CURVES"), "currently defined CURVES\n   C1 in P\n");
}

TEST_F(PlotStatements, AUsersOwnStandardWindow) {
    run("WINDOW -7 TO 7, 0 TO 1; SAVE W IN \"DW\"");
    start();
    run("DRAW; TYPE C1");
    EXPECT_EQ(windownamed("W").wxmin, -7);
    file("DW.SAV", "nonsense"); // then it is the system's
    start();
    EXPECT_EQ(run("DRAW"), "");
    EXPECT_EQ(ring("W"), "C1 W.YAXIS W.XAXIS ");
}

} // namespace
