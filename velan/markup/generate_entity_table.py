#!/usr/bin/env python3
"""Prints EntityTable.cpp: the names of the character entities of HTML 4 with their characters, in the order that callers
know, and a perfect hash over the names.

    ./generate_entity_table.py > EntityTable.cpp

The decoder handles quot, amp, lt and gt by itself; cedil and fnof are left out on purpose, so both stay numeric.
"""
from html.entities import name2codepoint

SPECIAL = """OElig oelig Scaron scaron Yuml circ tilde ensp emsp thinsp zwnj zwj lrm rlm ndash mdash lsquo rsquo sbquo ldquo
rdquo bdquo dagger Dagger permil lsaquo rsaquo euro""".split()
BUCKETS = 64
SLOTS = 512


def ordered_names():
    names = {name: code for name, code in name2codepoint.items()
             if name not in ("quot", "amp", "lt", "gt", "cedil", "fnof")}
    by_code = sorted((name for name in names if name not in SPECIAL), key=names.get)
    latin = {names[name]: name for name in by_code if 0xC0 <= names[name] <= 0xFF}
    capitals = sorted(name for code, name in latin.items() if 0xC0 <= code < 0xDF and name != "times")
    letters = [name for capital in capitals for name in (capital, latin[names[capital] + 0x20])]
    signs = [name for name in by_code if names[name] < 0xC0]
    greek = [name for name in by_code if 0x370 <= names[name] < 0x400]
    symbols = [name for name in by_code if names[name] > 0x400]
    order = letters + ["yuml", "szlig"] + signs + ["times", "divide"] + greek + symbols + SPECIAL
    assert sorted(order) == sorted(names) and len(order) == 246
    return [(name, names[name]) for name in order]


def hash_of(name):
    value = 0x811C9DC5  # FNV-1a
    for byte in name.encode():
        value = (value ^ byte) * 0x01000193 & 0xFFFFFFFF
    return value


def perfect_hash(names):
    """For each bucket the number that, combined with the hashes, moves its names to slots of their own."""
    buckets = [[] for _ in range(BUCKETS)]
    for index, name in enumerate(names):
        buckets[hash_of(name) % BUCKETS].append(index)
    slots = [0] * SLOTS
    moves = [0] * BUCKETS
    for bucket in sorted(range(BUCKETS), key=lambda bucket: -len(buckets[bucket])):
        for move in range(SLOTS):
            wanted = [(hash_of(names[index]) // BUCKETS ^ move) % SLOTS for index in buckets[bucket]]
            if len(set(wanted)) == len(wanted) and not any(slots[slot] for slot in wanted):
                break
        else:
            raise SystemExit("no perfect hash: more slots are needed")
        moves[bucket] = move
        for slot, index in zip(wanted, buckets[bucket]):
            slots[slot] = index + 1
    return moves, slots


def lines_of(items):
    lines, line = [], "   "
    for item in items:
        if len(line) + len(item) + 2 > 120:
            lines.append(line)
            line = "   "
        line += f" {item},"
    return "\n".join(lines + [line])


def main():
    order = ordered_names()
    moves, slots = perfect_hash([name for name, _ in order])
    print(f"""// Written by generate_entity_table.py.
#include "velan/markup/EntityTableInternal.h"

namespace velan {{

// clang-format off
const char* const entityStrings[kEntityCount + 1] = {{
{lines_of([f'"{name}"' for name, _ in order] + ["nullptr"])}
}};

const unichar entityCharacters[kEntityCount + 1] = {{
{lines_of([f"0x{code:04X}" for _, code in order] + ["0"])}
}};

const uint16_t kEntityMoves[{BUCKETS}] = {{
{lines_of(map(str, moves))}
}};

const uint8_t kEntitySlots[{SLOTS}] = {{
{lines_of(map(str, slots))}
}};
// clang-format on

}}  // namespace velan""")


if __name__ == "__main__":
    main()
