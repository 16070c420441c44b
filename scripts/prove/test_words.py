"""Shows that the proof about words notices a fault: each test plants one in the real source."""

import pathlib
import unittest

from words import Unexpected, claims, holds

SOURCE = pathlib.Path(__file__).parents[2] / "codec" / "timestamps.cpp"

# What a fault changes, and the first claim that it breaks.
FAULTS = {
    "0x3030303030303030": ("0x3030303030303031", "year"),
    "0x7676767676767676": ("0x7677767676767676", "date is valid"),
    "(word + 0x7676767676767676) | word": ("word + 0x7676767676767676", "date is valid"),
    "0x8080808080808080": ("0x8080808080808000", "date is valid"),
    "0x00FFFF00FFFFFFFF": ("0x00FFFF00FFFFFF00", "date is valid"),
    "0x00FFFFFF00000000": ("0x0000FFFF00000000", "thousandths is valid"),
    "word * 10 + (word >> 8)": ("word * 10 + (word >> 16)", "year"),
    "digits_ >> (8 * i)": ("digits_ >> (4 * i)", "fraction"),
    "date.pairAt(5)": ("date.pairAt(6)", "month"),
    "100 * date.pairAt(0)": ("10 * date.pairAt(0)", "year"),
    "text + 12": ("text + 11", "seconds is valid"),
    "FRACTION_AT = 20": ("FRACTION_AT = 21", "thousandths is valid"),
    "zone - 1, 0x": ("zone, 0x", "hours_minutes is valid"),
}
# What the proof does not understand, rather than leave out.
STRANGE = {
    "valid_ = (": "valid_ = word < 7 || (",
    "(word ^ 0x3030303030303030) & digits": "word % 3",
    "month = date": "mouth = date",
    "const EightCharacters seconds(text + 12": "const EightCharacters seconds(later(text)",
    "int pairAt": "int twoAt",
    "text + 8": "text + 9",
}


class WordsTest(unittest.TestCase):
    def setUp(self):
        self.source = SOURCE.read_text(encoding="utf-8")

    def changed(self, old, new):
        self.assertEqual(1, self.source.count(old), f"'{old}' in {SOURCE}")
        return self.source.replace(old, new)

    def test_each_fault_breaks_a_claim(self):
        for old, (new, broken) in FAULTS.items():
            with self.subTest(new):
                first = next(name for name, claim in claims(self.changed(old, new)) if not holds(claim))
                self.assertEqual(broken, first)

    def test_each_strange_source_is_refused(self):
        for old, new in STRANGE.items():
            with self.subTest(new), self.assertRaises(Unexpected):
                list(claims(self.changed(old, new)))


if __name__ == "__main__":
    unittest.main()
