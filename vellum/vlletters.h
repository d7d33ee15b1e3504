/* vellum/vlletters.h - the characters of a text: bytes, or the letters that UTF-8 spells.
 * Owns:    which characters beyond ASCII the faces have, and where. Callers: text. Never:   reads a font. */
#pragma once

// A character of a face; symbol: of the symbol face that goes with it.
struct vlletter {
    int code;
    bool symbol;
};

/* A walk over a text. A byte that is not part of UTF-8, or spells a letter no face has, stands for itself. */
class vlletters {
public:
    explicit vlletters(const char* text) : at(reinterpret_cast<const unsigned char*>(text)) {}
    bool more() const { return *at != 0; }
    vlletter next();

private:
    const unsigned char* at;
};

// The symbol face that has the weight of a face of the system's file; the face itself for others.
int vlsymbolfont(int font);
