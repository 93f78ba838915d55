// Written by generate_entity_table.py.
#include "velan/markup/EntityTableInternal.h"

namespace velan {

// clang-format off
const char* const entityStrings[kEntityCount + 1] = {
    "AElig", "aelig", "Aacute", "aacute", "Acirc", "acirc", "Agrave", "agrave", "Aring", "aring", "Atilde", "atilde",
    "Auml", "auml", "Ccedil", "ccedil", "ETH", "eth", "Eacute", "eacute", "Ecirc", "ecirc", "Egrave", "egrave", "Euml",
    "euml", "Iacute", "iacute", "Icirc", "icirc", "Igrave", "igrave", "Iuml", "iuml", "Ntilde", "ntilde", "Oacute",
    "oacute", "Ocirc", "ocirc", "Ograve", "ograve", "Oslash", "oslash", "Otilde", "otilde", "Ouml", "ouml", "THORN",
    "thorn", "Uacute", "uacute", "Ucirc", "ucirc", "Ugrave", "ugrave", "Uuml", "uuml", "Yacute", "yacute", "yuml",
    "szlig", "nbsp", "iexcl", "cent", "pound", "curren", "yen", "brvbar", "sect", "uml", "copy", "ordf", "laquo", "not",
    "shy", "reg", "macr", "deg", "plusmn", "sup2", "sup3", "acute", "micro", "para", "middot", "sup1", "ordm", "raquo",
    "frac14", "frac12", "frac34", "iquest", "times", "divide", "Alpha", "Beta", "Gamma", "Delta", "Epsilon", "Zeta",
    "Eta", "Theta", "Iota", "Kappa", "Lambda", "Mu", "Nu", "Xi", "Omicron", "Pi", "Rho", "Sigma", "Tau", "Upsilon",
    "Phi", "Chi", "Psi", "Omega", "alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta", "iota", "kappa",
    "lambda", "mu", "nu", "xi", "omicron", "pi", "rho", "sigmaf", "sigma", "tau", "upsilon", "phi", "chi", "psi",
    "omega", "thetasym", "upsih", "piv", "bull", "hellip", "prime", "Prime", "oline", "frasl", "image", "weierp",
    "real", "trade", "alefsym", "larr", "uarr", "rarr", "darr", "harr", "crarr", "lArr", "uArr", "rArr", "dArr", "hArr",
    "forall", "part", "exist", "empty", "nabla", "isin", "notin", "ni", "prod", "sum", "minus", "lowast", "radic",
    "prop", "infin", "ang", "and", "or", "cap", "cup", "int", "there4", "sim", "cong", "asymp", "ne", "equiv", "le",
    "ge", "sub", "sup", "nsub", "sube", "supe", "oplus", "otimes", "perp", "sdot", "lceil", "rceil", "lfloor", "rfloor",
    "lang", "rang", "loz", "spades", "clubs", "hearts", "diams", "OElig", "oelig", "Scaron", "scaron", "Yuml", "circ",
    "tilde", "ensp", "emsp", "thinsp", "zwnj", "zwj", "lrm", "rlm", "ndash", "mdash", "lsquo", "rsquo", "sbquo",
    "ldquo", "rdquo", "bdquo", "dagger", "Dagger", "permil", "lsaquo", "rsaquo", "euro", nullptr,
};

const unichar entityCharacters[kEntityCount + 1] = {
    0x00C6, 0x00E6, 0x00C1, 0x00E1, 0x00C2, 0x00E2, 0x00C0, 0x00E0, 0x00C5, 0x00E5, 0x00C3, 0x00E3, 0x00C4, 0x00E4,
    0x00C7, 0x00E7, 0x00D0, 0x00F0, 0x00C9, 0x00E9, 0x00CA, 0x00EA, 0x00C8, 0x00E8, 0x00CB, 0x00EB, 0x00CD, 0x00ED,
    0x00CE, 0x00EE, 0x00CC, 0x00EC, 0x00CF, 0x00EF, 0x00D1, 0x00F1, 0x00D3, 0x00F3, 0x00D4, 0x00F4, 0x00D2, 0x00F2,
    0x00D8, 0x00F8, 0x00D5, 0x00F5, 0x00D6, 0x00F6, 0x00DE, 0x00FE, 0x00DA, 0x00FA, 0x00DB, 0x00FB, 0x00D9, 0x00F9,
    0x00DC, 0x00FC, 0x00DD, 0x00FD, 0x00FF, 0x00DF, 0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x00AA, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF, 0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x00B4, 0x00B5,
    0x00B6, 0x00B7, 0x00B9, 0x00BA, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF, 0x00D7, 0x00F7, 0x0391, 0x0392, 0x0393,
    0x0394, 0x0395, 0x0396, 0x0397, 0x0398, 0x0399, 0x039A, 0x039B, 0x039C, 0x039D, 0x039E, 0x039F, 0x03A0, 0x03A1,
    0x03A3, 0x03A4, 0x03A5, 0x03A6, 0x03A7, 0x03A8, 0x03A9, 0x03B1, 0x03B2, 0x03B3, 0x03B4, 0x03B5, 0x03B6, 0x03B7,
    0x03B8, 0x03B9, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BE, 0x03BF, 0x03C0, 0x03C1, 0x03C2, 0x03C3, 0x03C4, 0x03C5,
    0x03C6, 0x03C7, 0x03C8, 0x03C9, 0x03D1, 0x03D2, 0x03D6, 0x2022, 0x2026, 0x2032, 0x2033, 0x203E, 0x2044, 0x2111,
    0x2118, 0x211C, 0x2122, 0x2135, 0x2190, 0x2191, 0x2192, 0x2193, 0x2194, 0x21B5, 0x21D0, 0x21D1, 0x21D2, 0x21D3,
    0x21D4, 0x2200, 0x2202, 0x2203, 0x2205, 0x2207, 0x2208, 0x2209, 0x220B, 0x220F, 0x2211, 0x2212, 0x2217, 0x221A,
    0x221D, 0x221E, 0x2220, 0x2227, 0x2228, 0x2229, 0x222A, 0x222B, 0x2234, 0x223C, 0x2245, 0x2248, 0x2260, 0x2261,
    0x2264, 0x2265, 0x2282, 0x2283, 0x2284, 0x2286, 0x2287, 0x2295, 0x2297, 0x22A5, 0x22C5, 0x2308, 0x2309, 0x230A,
    0x230B, 0x2329, 0x232A, 0x25CA, 0x2660, 0x2663, 0x2665, 0x2666, 0x0152, 0x0153, 0x0160, 0x0161, 0x0178, 0x02C6,
    0x02DC, 0x2002, 0x2003, 0x2009, 0x200C, 0x200D, 0x200E, 0x200F, 0x2013, 0x2014, 0x2018, 0x2019, 0x201A, 0x201C,
    0x201D, 0x201E, 0x2020, 0x2021, 0x2030, 0x2039, 0x203A, 0x20AC, 0,
};

const uint16_t kEntityMoves[64] = {
    1, 1, 0, 2, 0, 2, 0, 1, 1, 6, 0, 2, 1, 3, 5, 7, 2, 4, 0, 1, 12, 0, 0, 9, 0, 0, 0, 0, 3, 2, 0, 6, 1, 2, 0, 5, 8, 0,
    7, 0, 4, 1, 0, 4, 1, 1, 0, 0, 4, 9, 10, 0, 2, 1, 0, 1, 4, 0, 6, 7, 3, 4, 11, 2,
};

const uint8_t kEntitySlots[512] = {
    0, 0, 36, 0, 65, 2, 79, 0, 0, 239, 0, 0, 204, 0, 0, 0, 0, 0, 58, 0, 170, 153, 77, 93, 0, 0, 0, 0, 0, 0, 0, 0, 13, 0,
    152, 0, 0, 161, 0, 0, 1, 142, 0, 0, 0, 182, 0, 213, 220, 0, 0, 162, 0, 0, 0, 0, 0, 0, 0, 138, 0, 0, 0, 242, 0, 0, 0,
    183, 131, 228, 0, 0, 18, 0, 0, 0, 32, 0, 0, 0, 122, 0, 0, 0, 0, 108, 0, 150, 0, 0, 0, 74, 0, 63, 0, 0, 9, 0, 98, 0,
    85, 49, 159, 0, 8, 0, 243, 110, 0, 0, 0, 39, 200, 0, 75, 0, 0, 0, 23, 172, 0, 0, 0, 0, 0, 227, 0, 0, 0, 0, 217, 0,
    126, 0, 167, 0, 0, 33, 117, 140, 0, 0, 0, 225, 61, 181, 67, 0, 0, 0, 0, 62, 21, 137, 192, 245, 164, 0, 7, 17, 125,
    0, 0, 0, 116, 0, 187, 41, 73, 0, 141, 0, 0, 151, 0, 0, 218, 0, 0, 0, 111, 0, 175, 216, 0, 0, 0, 0, 53, 0, 119, 149,
    205, 201, 0, 156, 165, 0, 219, 178, 0, 136, 68, 146, 0, 20, 0, 88, 89, 154, 102, 109, 171, 48, 42, 189, 0, 0, 37, 0,
    0, 71, 0, 0, 143, 0, 30, 118, 199, 0, 0, 246, 0, 104, 22, 57, 223, 212, 179, 14, 0, 0, 0, 55, 54, 0, 180, 0, 64,
    174, 0, 173, 144, 0, 163, 0, 15, 0, 209, 60, 0, 185, 0, 0, 0, 40, 221, 0, 38, 186, 0, 0, 0, 206, 238, 0, 0, 0, 139,
    0, 0, 0, 0, 0, 45, 132, 0, 0, 113, 193, 0, 0, 0, 135, 0, 0, 0, 0, 0, 0, 112, 52, 0, 240, 208, 233, 0, 0, 0, 155, 0,
    226, 0, 0, 0, 0, 0, 0, 158, 0, 197, 0, 0, 83, 0, 0, 176, 0, 0, 234, 0, 0, 0, 241, 0, 84, 0, 188, 26, 34, 184, 0,
    231, 0, 51, 224, 100, 169, 0, 207, 0, 0, 0, 0, 31, 235, 0, 0, 78, 0, 0, 76, 27, 0, 0, 0, 232, 0, 66, 0, 0, 0, 0, 16,
    0, 0, 0, 29, 0, 0, 222, 0, 124, 0, 24, 244, 147, 195, 0, 0, 6, 91, 3, 43, 214, 46, 90, 95, 50, 103, 70, 35, 121,
    236, 0, 0, 0, 5, 148, 166, 133, 177, 92, 160, 105, 44, 0, 0, 59, 0, 0, 25, 86, 47, 194, 72, 211, 0, 203, 230, 0,
    202, 106, 0, 120, 210, 215, 0, 0, 198, 11, 157, 196, 94, 0, 0, 0, 128, 0, 19, 127, 107, 114, 0, 81, 130, 0, 82, 0,
    96, 237, 134, 87, 12, 69, 10, 0, 191, 0, 101, 0, 168, 0, 0, 0, 0, 0, 0, 229, 28, 0, 0, 145, 0, 0, 0, 0, 0, 0, 80, 0,
    56, 0, 129, 0, 97, 0, 0, 123, 0, 0, 0, 0, 115, 0, 190, 99, 0, 0, 0, 0, 4,
};
// clang-format on

}  // namespace velan
