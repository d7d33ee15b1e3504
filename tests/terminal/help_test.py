"""HELP: pages, menus, the way back, and that it leaves no trace."""
from session import *


def test_a_topic_its_menu_and_back():
    with Session() as s:
        s.prompted()
        s.send("HELP RETURN" + ENTER)
        s.expect("Ends a do-file")
        s.until(lambda: "Enter choice" in s.screen.text(), "the menu's prompt")
        assert "1: top level help" in s.screen.text() and "STOP" in s.screen.text()
        s.send("weight" + ENTER)
        s.expect("Clause of FIT")
        s.send("2" + ENTER)  # last topic
        s.until(lambda: "Ends a do-file" in s.screen.text(), "the topic before")
        s.send("99" + ENTER)
        s.expect("Present choice not available. Try again.")
        s.send("%" + ENTER)
        s.expect("Illegal topic name. Try again.")
        s.send("3" + ENTER)  # quit
        s.prompted()
        assert "do-file" not in s.screen.text()
        s.line("TYPE 2+3")
        assert "= 5" in s.screen.text()
        assert "do-file" not in s.log()


def test_pages():
    with Session() as s:
        s.prompted()
        s.send("? \"switches and system variables\"" + ENTER)
        s.expect("Enter choice")
        s.send("listings: type and print" + ENTER)
        s.expect("Press PGDN")
        s.send(PGDN)
        s.expect("HOME=restart topic")
        s.send(HOME)
        s.until(lambda: "Press PGDN" in s.screen.text(), "the first page")
        s.send(END)
        s.until(lambda: "Enter choice (or PGUP=up 1 page or HOME" in s.screen.text(), "the last page")
        s.send(ENTER)
        s.prompted()


def test_a_name_that_is_not_there_offers_its_neighbours():
    with Session() as s:
        s.prompted()
        s.send("HELP SINN" + ENTER)
        s.expect("Choice <SINN> not found in helpfile.")
        s.until(lambda: "sinint" in s.screen.text(), "the names beside it")
        s.send(ESC)
        s.prompted()
        s.send("HELP +" + ENTER)
        s.expect("use a quoted string for the help subject")
