#include "shell/console.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

consolestate con;

namespace {

constexpr long POLLNANOSECONDS = 10'000'000; // between two looks at the keyboard during long work
constexpr int ESCAPEMILLISECONDS = 50;       // the bytes of one key follow each other faster
constexpr size_t KEYROOM = 512;              // keys typed ahead

struct posixconsole {
    termios original{};              // modes of the terminal as they were found
    bool raw = false;                // they are changed now
    std::deque<unsigned char> ahead; // bytes read and not yet taken
    std::string out;                 // text not yet shown
    std::string in;                  // standard input without a screen: read and not yet taken
    size_t inpos = 0;
    timespec lastpoll{};
};
posixconsole tty;

volatile sig_atomic_t breakflag, resizeflag;

// ---- output ----

void writeall(const char* text, size_t length) {
    while (length > 0) {
        const ssize_t n = write(STDOUT_FILENO, text, length);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return; // nobody reads any more
        text += n;
        length -= size_t(n);
    }
}

// East Asian wide characters and emoji take two columns, combining marks none.
int charwidth(unsigned c) {
    static const struct {
        unsigned first, last;
        int width;
    } ranges[] = {{0x300, 0x36F, 0},     {0x200B, 0x200F, 0},  {0x20D0, 0x20FF, 0}, {0xFE00, 0xFE0F, 0},
                  {0x1100, 0x115F, 2},   {0x2E80, 0xA4CF, 2},  {0xAC00, 0xD7A3, 2}, {0xF900, 0xFAFF, 2},
                  {0xFE30, 0xFE6F, 2},   {0xFF00, 0xFF60, 2},  {0xFFE0, 0xFFE6, 2}, {0x1F300, 0x1F64F, 2},
                  {0x1F900, 0x1F9FF, 2}, {0x20000, 0x3FFFD, 2}};
    for (const auto& r : ranges)
        if (c >= r.first && c <= r.last) return r.width;
    return 1;
}

void trackcolumn(const char* text, size_t length) {
    size_t pos = 0;
    while (pos < length) {
        const unsigned char c = static_cast<unsigned char>(text[pos]);
        const unsigned code = concharacter(text, length, pos);
        if (c == '\n' || c == '\r')
            con.column = 0;
        else if (c == '\b')
            con.column -= con.column > 0;
        else if (c == '\t')
            con.column = (con.column / 8 + 1) * 8;
        else if (c >= ' ')
            con.column += charwidth(code);
    }
}

void sequence(const char* text) {
    if (con.screen) tty.out += text;
}

// ---- signals ----

void settermios(const termios& modes) { tcsetattr(STDIN_FILENO, TCSADRAIN, &modes); }

void rawmodes() {
    termios modes = tty.original;
    modes.c_lflag &= ~tcflag_t(ICANON | ECHO | IEXTEN);
    modes.c_iflag &= ~tcflag_t(ICRNL | INLCR | IXON);
    modes.c_cc[VMIN] = 1;
    modes.c_cc[VTIME] = 0;
    settermios(modes);
    tty.raw = true;
}

extern "C" void onbreak(int) {
    // A statement that looks neither at keys nor prints cannot see the flag; a user who insists gets out.
    if (breakflag >= 3) {
        if (tty.raw) settermios(tty.original);
        _exit(130);
    }
    breakflag = breakflag + 1;
}

extern "C" void onresize(int) { resizeflag = 1; }

// Stopped by the user, or ended from outside: the terminal is left as it was found.
extern "C" void onleave(int signalnumber) {
    const int savederrno = errno;
    const bool wasraw = tty.raw;
    if (wasraw) settermios(tty.original);
    signal(signalnumber, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signalnumber);
    raise(signalnumber);
    sigprocmask(SIG_UNBLOCK, &set, nullptr); // here it stops, until it is continued
    signal(signalnumber, onleave);
    if (wasraw) rawmodes();
    resizeflag = 1;
    errno = savederrno;
}

// A fault of the program: the terminal is given back before it ends as the system would have it.
extern "C" void onfault(int signalnumber) {
    if (tty.raw) settermios(tty.original);
    char text[80];
    const int n =
        snprintf(text, sizeof text, "\nunhandled exception, catcherr: 0x%8x\n", unsigned(signalnumber));
    if (write(STDERR_FILENO, text, size_t(n)) < 0) _exit(1);
    signal(signalnumber, SIG_DFL);
    raise(signalnumber);
}

// Runs on a stack of its own: the machine stack may be what is used up.
void catchfaults() {
    static char stack[1 << 16];
    stack_t own{};
    own.ss_sp = stack;
    own.ss_size = sizeof stack;
    if (sigaltstack(&own, nullptr) != 0) return;
    struct sigaction action {};
    action.sa_handler = onfault;
    action.sa_flags = SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (const int s : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(s, &action, nullptr);
}

void onsignal(int signalnumber, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signalnumber, &action, nullptr); // no SA_RESTART: a wait for a key has to wake up
}

void windowsize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        con.columns = size.ws_col;
        con.rows = size.ws_row;
    }
}

// ---- keys ----

enum waitresult { INPUT, TIMEOUT, INTERRUPTED, CLOSED };

// Waits for input, with the signals let in only here so that none is missed between test and wait.
waitresult waitinput(int milliseconds) {
    sigset_t blocked, before;
    sigemptyset(&blocked);
    for (const int s : {SIGINT, SIGWINCH}) sigaddset(&blocked, s);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    int ready = -1;
    if (!breakflag && !resizeflag) {
        pollfd fd{STDIN_FILENO, POLLIN, 0};
        const timespec limit{milliseconds / 1000, milliseconds % 1000 * 1000000L};
        ready = ppoll(&fd, 1, milliseconds < 0 ? nullptr : &limit, &before);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return ready > 0 ? INPUT : ready == 0 ? TIMEOUT : INTERRUPTED;
}

waitresult fillahead(int milliseconds) {
    const waitresult result = waitinput(milliseconds);
    if (result != INPUT) return result;
    unsigned char block[KEYROOM];
    const size_t room = tty.ahead.size() < KEYROOM ? KEYROOM - tty.ahead.size() : 0;
    if (room == 0) return TIMEOUT;
    const ssize_t n = read(STDIN_FILENO, block, room);
    if (n < 0 && errno == EINTR) return INTERRUPTED;
    if (n <= 0) return CLOSED;
    tty.ahead.insert(tty.ahead.end(), block, block + n);
    return INPUT;
}

int nextbyte(int milliseconds) {
    while (tty.ahead.empty())
        if (fillahead(milliseconds) != INPUT) return -1;
    const int c = tty.ahead.front();
    tty.ahead.pop_front();
    return c;
}

int keyofletter(int c) {
    switch (c) {
    case 'A': return KEYUP;
    case 'B': return KEYDOWN;
    case 'C': return KEYRIGHT;
    case 'D': return KEYLEFT;
    case 'H': return KEYHOME;
    case 'F': return KEYENDKEY;
    case 'P': return KEYF1;
    default: return KEYNONE;
    }
}

int keyofnumber(int n) {
    switch (n) {
    case 1:
    case 7: return KEYHOME;
    case 2: return KEYINSERT;
    case 3: return KEYDELETE;
    case 4:
    case 8: return KEYENDKEY;
    case 5: return KEYPGUP;
    case 6: return KEYPGDN;
    case 11: return KEYF1;
    default: return KEYNONE;
    }
}

// The rest of a key that began with ESC, as terminals of the VT100 family send it. KEYNONE: a key without
// meaning.
int escapedkey() {
    if (tty.ahead.empty() && fillahead(ESCAPEMILLISECONDS) != INPUT) return KEYESC;
    const int kind = tty.ahead.front();
    if (kind != '[' && kind != 'O') return KEYESC;
    tty.ahead.pop_front();
    int number = 0;
    bool first = true;
    for (;;) {
        const int c = nextbyte(ESCAPEMILLISECONDS);
        if (c < 0) return KEYNONE;
        if (c == ';') first = false; // modifiers follow
        if (c >= '0' && c <= '9' && first) number = (number * 10 + (c - '0')) % 1000;
        if (c == '~') return keyofnumber(number);
        if (c >= '@') return keyofletter(c);
    }
}

int takekey() {
    const int c = tty.ahead.front();
    tty.ahead.pop_front();
    if (c == '\n') return KEYENTER;
    if (c == 127) return '\b';
    if (c == KEYESC) return escapedkey();
    return c == 0 ? KEYNONE : c;
}

bool polltime() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    const long elapsed =
        (now.tv_sec - tty.lastpoll.tv_sec) * 1'000'000'000L + (now.tv_nsec - tty.lastpoll.tv_nsec);
    if (elapsed < POLLNANOSECONDS) return false;
    tty.lastpoll = now;
    return true;
}

// A key that was pressed alone and is no text for the next line.
int lonekey() {
    if (!con.screen || !polltime()) return KEYNONE;
    conflush();
    fillahead(0);
    if (tty.ahead.empty()) return KEYNONE;
    const unsigned char c = tty.ahead.front();
    const bool escape = c == KEYESC;
    if (!escape && (tty.ahead.size() > 1 || (c >= ' ' && !strchr("QqRr", c)) || c == '\r' || c == '\n'))
        return KEYNONE;
    return takekey();
}

} // namespace

unsigned concharacter(const char* text, size_t length, size_t& pos) {
    const unsigned char lead = static_cast<unsigned char>(text[pos++]);
    int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    unsigned code = more == 0 ? lead : lead & (0x3Fu >> more);
    while (more-- > 0 && pos < length && (static_cast<unsigned char>(text[pos]) & 0xC0) == 0x80)
        code = code << 6 | (static_cast<unsigned char>(text[pos++]) & 0x3Fu);
    return code;
}

int conwidth(const char* text, size_t length) {
    int width = 0;
    for (size_t pos = 0; pos < length;) width += charwidth(concharacter(text, length, pos));
    return width;
}

void constart(bool plain) {
    const char* term = getenv("TERM");
    const char* nocolour = getenv("NO_COLOR");
    [[maybe_unused]] static const int registered = atexit(conclose); // a page on a full disk ends the process
    con = consolestate{};
    con.inputtty = isatty(STDIN_FILENO);
    con.outputtty = isatty(STDOUT_FILENO);
    con.screen = !plain && con.inputtty && con.outputtty && term && strcmp(term, "dumb") != 0 &&
                 tcgetattr(STDIN_FILENO, &tty.original) == 0;
    con.colours = con.screen && !(nocolour && *nocolour);
    onsignal(SIGINT, onbreak);
    if (!con.screen) return;
    onsignal(SIGWINCH, onresize);
    for (const int s : {SIGTSTP, SIGTERM, SIGHUP, SIGQUIT}) onsignal(s, onleave);
    catchfaults();
    windowsize();
    rawmodes();
}

void conclose() {
    if (con.screen) {
        conattr("");
        if (con.column > 0) conwrite("\n", 1);
    }
    conflush();
    if (tty.raw) settermios(tty.original);
    tty.raw = false;
    con.screen = false;
}

void conwrite(const char* text, size_t length) {
    trackcolumn(text, length);
    tty.out.append(text, length);
    const size_t room = con.screen ? 0 : 65536;
    if (tty.out.size() > room && (!con.screen || memchr(text, '\n', length))) conflush();
}

void conflush() {
    writeall(tty.out.data(), tty.out.size());
    tty.out.clear();
}

bool conbreak() {
    if (!breakflag) return false;
    breakflag = 0;
    return true;
}

int conkey(bool wait) {
    if (!wait) return lonekey();
    conflush();
    for (;;) {
        if (conbreak()) return KEYBREAK;
        if (resizeflag) {
            resizeflag = 0;
            windowsize();
            return KEYRESIZED;
        }
        if (!tty.ahead.empty()) {
            const int key = takekey();
            if (key != KEYNONE) return key;
        } else if (fillahead(-1) == CLOSED) {
            return KEYEND;
        }
    }
}

bool conplainline(std::string& text) {
    for (;;) {
        const size_t end = tty.in.find('\n', tty.inpos);
        if (end != std::string::npos) {
            text = tty.in.substr(tty.inpos, end - tty.inpos);
            tty.inpos = end + 1;
            return true;
        }
        tty.in.erase(0, tty.inpos);
        tty.inpos = 0;
        conflush();
        char block[65536];
        const ssize_t n = read(STDIN_FILENO, block, sizeof block);
        if (n < 0 && errno == EINTR) {
            if (breakflag) return false;
            continue;
        }
        if (n <= 0) break;
        tty.in.append(block, size_t(n));
    }
    text = std::move(tty.in);
    tty.in.clear();
    return !text.empty();
}

void consetxy(int column, int row) {
    char text[32];
    snprintf(text, sizeof text, "\033[%d;%dH", row, column);
    sequence(text);
    con.column = column - 1;
}

void conmove(int column, int rows) {
    char text[48];
    text[0] = 0;
    if (rows) snprintf(text, sizeof text, "\033[%d%c", rows < 0 ? -rows : rows, rows < 0 ? 'A' : 'B');
    sequence(text);
    sequence("\r");
    if (column > 0) snprintf(text, sizeof text, "\033[%dC", column);
    if (column > 0) sequence(text);
    con.column = column;
}

void conclearbelow() { sequence("\033[J"); }

void conclear() {
    sequence("\033[H\033[2J");
    con.column = 0;
}

void conattr(const char* attribute) {
    // Inverse video and the like is no colour, and stays readable without.
    if (!con.colours && strcmp(attribute, "7") != 0 && *attribute) return;
    sequence("\033[0");
    if (*attribute) sequence(";"), sequence(attribute);
    sequence("m");
}

void conscreensave() { sequence("\033[?1049h\033[H\033[2J"); }

void conscreenrestore() {
    sequence("\033[?1049l");
    conflush();
}

void conbell() { sequence("\a"); }

void conreleaseterminal() {
    conflush();
    if (tty.raw) settermios(tty.original);
    tty.raw = false;
}

void contaketerminal() {
    if (con.screen) rawmodes();
}
