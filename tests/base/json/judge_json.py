#!/usr/bin/env python3
"""Python's json judges ours: the same texts are JSON, with the same values, on a list and on mutations of it.

The only argument is the program that reads texts and prints what they hold.
"""
import json
import random
import subprocess
import sys

TEXTS = """
null|true|false|0|-0|1|-1|10|1.5|-0.0|1e5|1E+5|1e-5|0e0|0.1e1|123456789012345678901234567890|1e999|-1e999|1e-999
01|-01|1.|.5|-.5|+1|1e|1e+|1.e1|-|--1|0x10|1_0|00|- 1|1 2|1,2|NaN1|nul|nulll|True|TRUE|tru|truefalse
""|"a"|"ä€😀"|"\\u00e4"|"\\ud83d\\ude00"|"\\ud800"|"\\udc00\\ud800"|"\\"\\\\\\/\\b\\f\\n\\r\\t"|"\x7f"|"\u2028"
"|"a|a"|"\\"|"\\x41"|"\\u12"|"\\u12G4"|"\\U0041"|"\\'"|'a'|"a\tb"|"a\nb"|"\x00"|"\\u 123"|"\\u+123"|"\\u-123"
[]|[ ]|[1]|[1,2]|[[],[]]|[[[[]]]]|[null,true,"a"]| [ 1 , 2 ] |\t\r\n[]\n
[|]|[1|[1,|[1,]|[,1]|[,]|[1 2]|[1,,2]|[[]|[]]|[}|{]|[1]]|[]{}|[]1|[1:2]|["a":1]
{}|{ }|{"a":1}|{"a":1,"b":[{}]}|{"":""}|{"a":{"a":{"a":null}}}|{"a":1,"a":2}| { "a" : 1 , "b" : 2 } |{"\\u0061":1}
{|}|{"a"|{"a":|{"a":1|{"a":1,|{"a":1,}|{,}|{a:1}|{1:2}|{"a" 1}|{"a",1}|{"a":}|{:1}|{"a":1 "b":2}|{null:1}|{[]:1}|{}}
\ufeff[]|[]\ufeff|\u00a0[]|[]\x0c|\x0b1|//a|1//a|/*a*/1|[1]#|undefined|\u2028{}|1\x00|\x001
"""
PIECES = ['"', "\\", "[", "]", "{", "}", ",", ":", "0", "1", "9", "-", "+", ".", "e", "E", "true", "null", " ", "\n",
          "\t", "u", "\\u00e9", "\\n", "a", "é", "\U0001F600", "\x00", "\x1f", "\ufeff", "//", '"a":', '""']
MUTATIONS = 100_000


def mutated(text, chance):
    for _ in range(chance.choice([1, 1, 2, 4])):
        at = chance.randrange(len(text) + 1)
        end = at + chance.choice([0, 0, 1, 1, 3])
        text = text[:at] + chance.choice(PIECES + [""] * 12) + text[end:]
    return text


def refuse(word):
    raise ValueError(word)


def whole(text):
    number = int(text)
    return number if -2**63 <= number < 2**64 else real(text)


def real(text):
    number = float(text)
    return number if abs(number) != float("inf") else "inf" if number > 0 else "-inf"


def read(text):
    return json.loads(text, parse_constant=refuse, parse_int=whole, parse_float=real)


def judged(text):
    try:
        return "yes", read(text)
    except ValueError:
        return "no", None


def main():
    chance = random.Random(1)
    texts = [text for line in TEXTS.strip("\n").split("\n") for text in line.split("|")]
    texts += ["", " ", '{"a":[1,{"b":"c","d":[true,null,-1.5e3,{"e":{}}]}],"f":"\\u00e9\\\\"}'] * 20
    assert len(set(texts)) >= 100
    texts += [mutated(chance.choice(texts), chance) for _ in range(MUTATIONS)]
    packed = b"".join(b"%d\n%s" % (len(text.encode()), text.encode()) for text in texts)
    done = subprocess.run([sys.argv[1]], input=packed, capture_output=True, check=True)
    answers = done.stdout.decode().split("\n")[:-1]
    assert len(answers) == len(texts)
    accepted = 0
    for text, answer in zip(texts, answers):
        verdict, value = judged(text)
        ours, spelled = answer.split(" ", 1)
        assert ours == verdict, (text, ours)
        assert (spelled == "-") == (verdict == "no"), (text, spelled)
        if verdict == "yes":
            accepted += 1
            assert repr(read(spelled)) == repr(value) or value == read(spelled), (text, spelled, value)
    assert accepted > MUTATIONS // 20
    print(f"{len(texts)} texts, {accepted} of them JSON")


if __name__ == "__main__":
    main()
