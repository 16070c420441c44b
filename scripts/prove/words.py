"""Proves that reading digits eight characters at a time is right for all 2^64 words, with the solver z3.

    words.py codec/timestamps.cpp

The formulas come from the source: the steps of the class EightCharacters, each word that it reads,
and each number taken out of a word. FIELDS, below, says which characters of a text make which
number. For each word of a text:

  (1) the word is valid if and only if the characters of its numbers are digits
  (2) then each number is the one that its characters write

z3 looks for a word that breaks a claim, and finds none. A source that does not look as expected is
an error; so the proof cannot go on about a source that has changed. Numbers are below 10 000, so
that 64 bits without sign stand for int.
"""

import ast
import re
import subprocess
import sys

# Where the zone begins: beyond all other characters, since its place depends on the text.
ZONE = 1000

# Number: its first character and how many characters it has.
FIELDS = {
    "year": (0, 4),
    "month": (5, 2),
    "day": (8, 2),
    "hour": (11, 2),
    "minute": (14, 2),
    "second": (17, 2),
    "fraction": (20, 3),
    "hours": (ZONE + 1, 2),
    "minutes": (ZONE + 4, 2),
}

CONSTRUCTOR = re.compile(
    r"EightCharacters\(const char\* text, std::uint64_t digits\) noexcept \{(.*?)\n  \}", re.DOTALL)
ACCESS = re.compile(
    r"int (pairAt|digitAt)\(int i\) const noexcept \{\s*return static_cast<int>\((.*?)\);\s*\}")
WORD = re.compile(r"const EightCharacters (\w+)\((.*?), (0x[0-9A-F]{16})\);")
NUMBER = re.compile(r"(\w+) = ([^;=]*\.(?:pairAt|digitAt)\([^;]*);")
CONSTANT = re.compile(r"constexpr std::size_t (\w+) = (\d+);")

OPERATORS = {
    ast.BitXor: "bvxor",
    ast.BitAnd: "bvand",
    ast.BitOr: "bvor",
    ast.Add: "bvadd",
    ast.Mult: "bvmul",
    ast.LShift: "bvshl",
    ast.RShift: "bvlshr",
}


class Unexpected(Exception):
    """The source does not look as the proof expects."""


def constant(number):
    return f"(_ bv{number % 2**64} 64)"


def parsed(expression):
    """A C++ expression over 64-bit words. Python gives its operators the order that C++ gives them,
    except for ==."""
    if "==" in expression and not re.match(r"^\([^=]*\) == 0$", expression):
        raise Unexpected(f"comparison: {expression}")
    try:
        return ast.parse(expression, mode="eval").body
    except SyntaxError as e:
        raise Unexpected(f"expression: {expression}") from e


def without_scale(node):
    """A number without the sign of a zone and without the unit of thousandths."""
    if isinstance(node, ast.BinOp) and ast.unparse(node.right) == "1000.0":
        return node.left
    if isinstance(node, ast.BinOp) and ast.unparse(node.left) == "sign":
        return node.right
    return node


def term(node, names):
    """The expression as a term for z3; `names` has the terms of its variables and functions."""
    if isinstance(node, ast.BinOp) and type(node.op) in OPERATORS:
        return f"({OPERATORS[type(node.op)]} {term(node.left, names)} {term(node.right, names)})"
    if isinstance(node, ast.Compare) and isinstance(node.ops[0], ast.Eq):
        return f"(= {term(node.left, names)} {term(node.comparators[0], names)})"
    if isinstance(node, ast.Constant) and isinstance(node.value, int):
        return constant(node.value)
    if isinstance(node, ast.Name) and node.id in names:
        return names[node.id]
    if isinstance(node, ast.Call) and ast.unparse(node.func) in names:
        return names[ast.unparse(node.func)](node.args[0].value)
    raise Unexpected(f"part of an expression: {ast.unparse(node)}")


def found(pattern, text, what):
    match = pattern.search(text)
    if match is None:
        raise Unexpected(f"there is no {what}")
    return match


def steps(source, word, mask):
    """The terms after the constructor has read `word`, by the names of its variables."""
    names = {"digits": constant(mask)}
    body = re.sub(r" *//.*", "", found(CONSTRUCTOR, source, "constructor").group(1))
    for statement in filter(None, (part.strip() for part in body.split(";"))):
        if statement == "std::memcpy(&word, text, sizeof word)":
            names["word"] = word
            continue
        target, _, expression = statement.removeprefix("std::uint64_t ").partition(" = ")
        names[target] = term(parsed(expression), names)
    return names


def accessors(source, word, names):
    """The functions of `word` that take an index, by the names under which the source calls them."""
    return {
        f"{word}.{name}": lambda i, node=parsed(text): term(node, names | {"i": constant(i)})
        for name, text in ACCESS.findall(source)
    }


def offset(place, constants):
    """Which character of the text is the first one of a word, from the word's place in the source."""
    names = constants | {"text": "0", "zone": str(ZONE)}
    numbers = re.sub(r"[A-Za-z_]+", lambda name: names.get(name[0], "?"), place.replace(".data()", ""))
    if not re.match(r"^\d+( [+-] \d+)*$", numbers):
        raise Unexpected(f"place of a word: {place}")
    return sum(int(number) for number in re.sub(r"([+-]) ", r"\1", numbers).split())


def claims(source):
    """(name, claim) for each word and for each number of the source."""
    constants = dict(CONSTANT.findall(source))
    numbers = dict(NUMBER.findall(source))
    if set(numbers) != set(FIELDS):
        raise Unexpected(f"numbers: {', '.join(sorted(set(numbers) ^ set(FIELDS)))}")
    words = WORD.findall(source)
    if len(words) != source.count("const EightCharacters "):
        raise Unexpected("a word that is not read as the others are")
    for word, place, mask in words:
        names = steps(source, "characters", int(mask, 16))
        functions = accessors(source, word, names)
        start = offset(place, constants)
        characters = {
            name: range(FIELDS[name][0] - start, sum(FIELDS[name]) - start)
            for name, text in numbers.items() if f"{word}." in text
        }
        are_digits = all_digits(sum(map(list, characters.values()), []))
        yield f"{word} is valid", f"(= {names['valid_']} {are_digits})"
        for name, places in characters.items():
            actual = term(without_scale(parsed(numbers[name])), functions)
            yield name, f"(=> {names['valid_']} (= {actual} {written(places)}))"


def character(i):
    if not 0 <= i < 8:
        raise Unexpected("a number with a character outside its word")
    return f"((_ zero_extend 56) ((_ extract {8 * i + 7} {8 * i}) characters))"


def all_digits(places):
    """The rule, character by character; character i is byte i, since the machine is little-endian."""
    return "(and " + " ".join(
        f"(bvuge {character(i)} {constant(ord('0'))}) (bvule {character(i)} {constant(ord('9'))})"
        for i in places) + ")"


def written(places):
    number = constant(0)
    for i in places:
        digit = f"(bvsub {character(i)} {constant(ord('0'))})"
        number = f"(bvadd (bvmul {number} {constant(10)}) {digit})"
    return number


def holds(claim):
    """Whether no word breaks the claim."""
    query = f"(declare-const characters (_ BitVec 64))\n(assert (not {claim}))\n(check-sat)\n"
    solved = subprocess.run(["z3", "-in"], input=query, capture_output=True, text=True, check=False)
    answer = solved.stdout.strip()
    if answer not in ("sat", "unsat"):
        raise Unexpected(f"z3 says: {answer}{solved.stderr}")
    return answer == "unsat"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        source = file.read()
    broken = 0
    for name, claim in claims(source):
        is_right = holds(claim)
        broken += not is_right
        print(f"{name}: {'holds for all 2^64 words' if is_right else 'BROKEN'}")
    sys.exit(1 if broken else 0)


if __name__ == "__main__":
    main()
