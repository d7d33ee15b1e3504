"""A session at a terminal: the prompt, the line input, the editor, breaks, the end."""
import os
import signal
import termios
import time

from session import *



def test_prompt_echo_and_result():
    with Session() as s:
        s.line("X = 3")
        s.line("X + 1")
        assert s.screen.lines()[:3] == ["* X = 3", "* X + 1", s.screen.lines()[2]]
        assert "4" in s.screen.lines()[2]


def test_banner_unless_quiet():
    with Session("--vanilla") as s:
        s.prompted()
        assert "TARN Mathematical Modeling System" in s.screen.everything()
        assert "is the command prompt" in s.screen.everything()
    with Session("--quiet", "--vanilla") as s:
        s.prompted()
        assert s.screen.text() == "*"


def test_end_of_input_and_exit_give_the_terminal_back():
    for keys in (CONTROLD, "EXIT" + ENTER):
        with Session() as s:
            s.prompted()
            assert not s.modes()[3] & termios.ECHO
            before = s.screen
            s.send(keys)
            assert s.end() == 0
            assert before.column == 0
            assert "end of TARN.LOG" in s.log()


def test_line_is_edited_before_enter():
    with Session() as s:
        s.prompted()
        s.send("TYPE 12" + LEFT + "5" + BACKSPACE + "3" + "\x05" + "4")
        s.prompted("* TYPE 1324")
        s.send(LEFT + LEFT + DELETE)
        s.until(lambda: s.screen.lines()[0] == "* TYPE 134", "Delete")
        s.send(ENTER)
        s.expect("134")


def test_long_line_wraps_and_shrinks():
    with Session(columns=20, rows=6) as s:
        s.prompted()
        s.send("X = 1+2+3+4+5+6+7+8+9+10+11+12")
        s.until(lambda: s.screen.lines()[:2] == ["* X = 1+2+3+4+5+6+7+", "8+9+10+11+12"], "wrapped")
        s.send(BACKSPACE * 14)
        s.until(lambda: s.screen.lines()[:2] == ["* X = 1+2+3+4+5+6+", ""], "shrunk")
        s.send("7" + ENTER)
        s.line("X")
        assert "28" in s.screen.text()


def test_continuation_prompts():
    with Session() as s:
        s.prompted()
        s.send("X = 1 + \\" + ENTER)
        s.prompted(": ")
        s.send("2" + ENTER)
        s.prompted()
        s.send('S = "one' + ENTER)
        s.prompted("> ")
        s.send('two"' + ENTER)
        s.line("X")
        assert "3" in s.screen.text()


def test_error_opens_the_line_editor():
    with Session() as s:
        s.prompted()
        s.send("X = 3 4" + ENTER)
        s.expect("ESC:abort, ENTER:re-execute")
        s.until(lambda: s.cursorline() == "X = 3 4", "the statement comes back")
        header = next(k for k, l in enumerate(s.screen.lines()) if "ESC:abort" in l)
        assert s.screen.attributes[header][1] == "0;7" or "7" in s.screen.attributes[header][1]
        s.send(BACKSPACE + BACKSPACE + ENTER)
        s.prompted()
        s.line("X")
        assert s.screen.text().rstrip().endswith("*")
        assert "X = 3 4" in s.log()
        s.send("Y = )" + ENTER)
        s.until(lambda: s.cursorline() == "Y = )", "again")
        s.send(ESC)
        s.prompted()
        s.line("1 + 1")


def test_editor_replaces_and_moves():
    with Session() as s:
        s.prompted()
        s.send("ABC DEF" + ENTER)
        s.until(lambda: s.cursorline() == "ABC DEF", "editor")
        s.send(HOME + INSERT + "1+2+3" + END + BACKSPACE + BACKSPACE)
        s.until(lambda: s.cursorline() == "1+2+3", "replaced")
        s.send(ENTER)
        s.prompted()
        assert "6" in s.screen.text()


def test_failed_loop_comes_back_but_not_from_a_do_file():
    with Session(files={"bad.do": "X = 3 4\nY = 5\n"}) as s:
        s.prompted()
        s.send("FOR I = 1:3 { X = )" + " }" + ENTER)
        s.until(lambda: s.cursorline() == "FOR I = 1:3 { X = ) }", "loop in the editor")
        s.send(ESC)
        s.prompted()
        s.line("DO BAD")
        assert "ESC:abort" not in "\n".join(s.screen.lines()[-3:])


def test_control_c_breaks_a_loop():
    with Session(env={"PROMPT": "x"}) as s:
        s.prompted()
        s.send("FOR I = 1:10000000 { FOR J = 1:100 { S = I*J } }" + ENTER)
        time.sleep(0.5)
        s.send(CONTROLC)
        s.expect("Command in progress aborted.")
        s.expect("the objects (USE MYFILE).")
        s.line("1 + 1")


def test_control_c_at_the_prompt_drops_the_line():
    with Session() as s:
        s.prompted()
        s.send("X = 12")
        s.prompted("* X = 12")
        s.send(CONTROLC)
        s.prompted()
        assert "aborted" not in s.screen.text()
        s.line("2 + 3")
        assert "5" in s.screen.text()


def test_q_stops_a_do_file():
    loop = 'FOR I = 1:100000000 { S = I }\n"done"; TYPE "never"\n'
    with Session(files={"long.do": loop}) as s:
        s.prompted()
        s.send("DO LONG" + ENTER)
        time.sleep(0.5)
        s.send("Q")
        s.prompted()
        assert "never" not in s.screen.text() and "ESC:abort" not in s.screen.text()


def test_typing_ahead_is_kept():
    loop = "FOR I = 1:300000 { S = I }\n"
    with Session(files={"long.do": loop}) as s:
        s.prompted()
        s.send("DO LONG" + ENTER)
        for key in "1000+S" + ENTER:
            time.sleep(0.005)
            s.send(key)
        s.expect("301000")


def test_pasted_statements_all_run():
    with Session() as s:
        s.prompted()
        s.send("".join(f"S{k} = {k}*2\n" for k in range(200)))
        s.send("S0+S199\n")
        s.expect("398")


def test_history_browsing():
    with Session(rows=10) as s:
        for k in range(30):
            s.line(f"A{k} = {k}")
        before = s.screen.lines()
        s.send(UP)
        s.expect("INS:take the line")
        s.until(lambda: s.cursorline() == "" and s.screen.lines()[s.screen.row].startswith("* A29"), "last line")
        s.send(HOME)
        s.until(lambda: s.screen.row == 0 and s.screen.lines()[1].startswith("* A0 = 0"), "start of the log")
        s.send(END)
        s.until(lambda: s.screen.lines() == before, "the screen is as it was")
        s.send(UP + UP + INSERT)
        s.until(lambda: s.cursorline() == "A28 = 28", "taken into the editor")
        s.send(BACKSPACE + "9" + ENTER)
        s.line("A28")
        assert "29" in s.screen.text()


def test_printable_key_ends_browsing_and_is_typed():
    with Session() as s:
        s.line("A = 1")
        s.send(UP)
        s.expect("INS:take the line")
        s.send("B")
        s.prompted("* B")


def test_lines_are_recalled():
    with Session() as s:
        s.line("A = 1")
        s.line("B = 2")
        s.send("\x10\x10")
        s.prompted("* A = 1")
        s.send("\x0e")
        s.prompted("* B = 2")
        s.send("\x0e")
        s.prompted()


def test_edit_brings_back_the_statement_before():
    with Session() as s:
        s.line("A = 17")
        s.send("EDIT" + ENTER)
        s.until(lambda: s.cursorline() == "A = 17", "the statement before EDIT")
        s.send(BACKSPACE + "8" + ENTER)
        s.line("A")
        assert "18" in s.screen.text()


def test_edit_of_function_and_string():
    with Session() as s:
        s.line("FUNCTION F(X) = X + 1")
        s.line('T = "say ""no"""')
        s.send("EDIT F" + ENTER)
        s.until(lambda: "F(X)" in s.cursorline() and s.cursorline().rstrip().endswith("1"), "the definition")
        s.send(BACKSPACE + "5" + ENTER)
        s.line("F(1)")
        assert "6" in s.screen.text()
        s.send("EDIT T" + ENTER)
        s.until(lambda: s.cursorline() == '     T = "say ""no"""', "the string")
        s.send(ESC)
        s.prompted()


def test_edit_file_uses_the_users_editor():
    with Session(env={"EDITOR": "cat >/dev/null </dev/null; echo 'Z = 5' >"}) as s:
        s.line('EDIT FILE "new.do"')
        s.line("DO NEW")
        s.line("Z + 1")
        assert "6" in s.screen.text()


def test_utf8_stays_whole():
    with Session() as s:
        s.prompted()
        s.send('TYPE "caf' + "\u00e9\u4e2d" + BACKSPACE + "s" + LEFT + LEFT + "t" + '"' + BACKSPACE + '\x05"')
        s.until(lambda: s.screen.lines()[0] == '* TYPE "caft\u00e9s"', "edited by characters")
        s.send(ENTER)
        s.until(lambda: "caft\u00e9s" in s.screen.lines()[1], "printed")


def test_window_size_is_followed():
    with Session(columns=40, rows=10) as s:
        s.prompted()
        s.send("X = " + "1+" * 14)
        s.prompted("* X = " + "1+" * 14)
        s.screen.columns  # the model keeps its cells; only the program learns of the new width
        s.resize(60, 10)
        time.sleep(0.3)
        s.send("1" + ENTER)
        s.line("X")
        assert "15" in s.screen.text()


def test_stopped_and_continued():
    with Session() as s:
        s.prompted()
        os.kill(s.process, signal.SIGTSTP)
        os.kill(s.process, signal.SIGSTOP)
        os.kill(s.process, signal.SIGCONT)
        time.sleep(0.3)
        assert not s.modes()[3] & termios.ECHO
        s.send("1 + 1" + ENTER)
        s.expect("= 2")


def test_text_of_the_statement_stays_under_the_pasted_one():
    """Keys that come while a statement runs are echoed once, at their line."""
    with Session() as s:
        s.prompted()
        s.send("A = 1" + ENTER + "B = 2" + ENTER + "A + B" + ENTER)
        s.expect("= 3")
        assert s.screen.lines()[:3] == ["* A = 1", "* B = 2", "* A + B"]


def test_killed_from_outside_gives_the_terminal_back():
    for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGSEGV):
        with Session() as s:
            s.prompted()
            os.kill(s.process, number)
            assert s.end() == -number
            assert s.modes()[3] & termios.ECHO


def test_a_page_on_a_full_disk_gives_the_terminal_back():
    with Session(filesize=8192) as s:
        s.line("DRAW C1 = (1:5000) &' (SIN ON (1:5000))")
        s.send('PLOT IN "figure"' + ENTER)
        assert s.end() == 1
        assert "ERROR writing into PostScript file." in s.screen.everything()
        assert "figure.ps: File too large" in s.screen.everything()
        assert s.modes()[3] & termios.ECHO


def test_colours_only_when_asked_and_allowed():
    statement = "INCOLOR = RED"
    with Session() as s:
        s.prompted()
        assert b"\x1b[" not in s.raw.replace(b"\x1b[0m", b"")
        s.line(statement)
        s.line("X = 1")
        assert b"\x1b[0;31m" in s.raw or b"\x1b[0;91m" in s.raw
    with Session(env={"NO_COLOR": "1"}) as s:
        s.line(statement)
        s.line("X = 1")
        assert b";31m" not in s.raw and b";91m" not in s.raw


def test_dumb_terminal_gets_no_control_codes():
    with Session(env={"TERM": "dumb"}) as s:
        s.prompted()
        s.send("1 + 1\n")
        s.expect("2")
        s.send("X = 3 4\n")
        s.expect("##Error")
        assert b"\x1b" not in s.raw
        s.send("\x04")
        assert s.end() == 0


def test_dostep_waits_for_a_key_before_each_line():
    with Session(files={"two.do": 'TYPE "first"\nTYPE "second"\n'}) as s:
        s.line("DOSTEP = 1")
        s.send("DO TWO" + ENTER)
        time.sleep(0.3)
        s.read(0.1)
        assert "first" not in s.screen.text()
        s.send(" ")
        s.expect("first")
        assert "second" not in s.screen.text()
        s.send(" ")
        s.expect("second")


def test_save_asks_before_overwriting():
    with Session() as s:
        s.line("A = 1")
        s.line('SAVE A IN "f"')
        s.send('SAVE A IN "f"' + ENTER)
        s.expect("already exists")
        s.send("K")
        s.expect("save not performed")
        s.prompted()
