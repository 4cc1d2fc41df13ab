"""Adds a made-up field to a copy of the tree, in the three places that a new field takes: add_field.py TREE"""
import pathlib
import sys

PLACES = {
    "include/battery/norv_battery.h": (
        "  NORV_BATTERY_VALID = 68 ",
        "  NORV_BATTERY_MADE_UP = 69,\n  NORV_BATTERY_VALID = 68 ",
    ),
    "firmware/BatteryInformationBlock.h": (
        "// 0x5E to the end",
        "inline constexpr Field kMadeUp{0x60, 2};\n// 0x5E to the end",
    ),
    "src/fields/Catalogue.h": (
        "};\n\n}  // namespace rows",
        '    Row{NORV_BATTERY_MADE_UP, "madeUp", &kCapacity, "made up", "Made up", kNumber, kNone, kBlock, kMadeUp,\n'
        "        kNoBit, Word, Always},\n};\n\n}  // namespace rows",
    ),
}

for name, (before, after) in PLACES.items():
    path = pathlib.Path(sys.argv[1]) / name
    text = path.read_text(encoding="utf-8")
    assert text.count(before) == 1, f"{name} has {text.count(before)} times {before!r}"
    path.write_text(text.replace(before, after), encoding="utf-8")
