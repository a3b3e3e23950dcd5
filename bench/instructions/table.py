"""table.py --compare | --update DIRECTORY PRESET..

Prints what scripts/count-instructions has counted beside counts.csv, or writes that file.
"""

import csv
import pathlib
import sys

import counted

TABLE = pathlib.Path(__file__).with_name("counts.csv")
COLUMNS = ("preset", "operation", *counted.KINDS)
MOST = 1.05  # of the count in the table


def rows_of(preset, operations):
    """Instructions per luma pixel, as text with four decimals."""
    for name, operation in operations.items():
        per_pixel = (f"{operation.counts[kind] / operation.pixels:.4f}" for kind in counted.KINDS)
        yield dict(zip(COLUMNS, (preset, name, *per_pixel)))


def read_table():
    if not TABLE.exists():
        return []
    with TABLE.open(newline="") as file:
        return list(csv.DictReader(file))


def write_table(rows):
    with TABLE.open("w", newline="") as file:
        writer = csv.DictWriter(file, COLUMNS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)


def update(presets):
    """Keeps the rows of presets that were not counted."""
    rows = [row for row in read_table() if row["preset"] not in presets]
    for preset, operations in presets.items():
        rows += rows_of(preset, operations)
    write_table(sorted(rows, key=lambda row: row["preset"]))


def compare(presets):
    """The failures; prints all counts."""
    known = {(row["preset"], row["operation"]): float(row["total"]) for row in read_table()}
    failures = []
    for preset, operations in presets.items():
        print(f"{preset:24}" + "".join(f"{kind:>12}" for kind in counted.KINDS) + "  change")
        for row in rows_of(preset, operations):
            name = row["operation"]
            before = known.pop((preset, name), None)
            change = "new" if before is None else f"{float(row['total']) / before - 1:+.1%}"
            print(f"  {name:22}" + "".join(f"{row[kind]:>12}" for kind in counted.KINDS)
                  + f"{change:>8}")
            if before is None:
                failures.append(f"{preset} {name} is not in {TABLE.name}")
            elif float(row["total"]) > MOST * before:
                failures.append(f"{preset} {name} needs {row['total']} instructions a pixel"
                                f" instead of {before}")
    failures += [f"{preset} {name} was not counted" for preset, name in known if preset in presets]
    return failures


def differing_results(presets):
    """The operations whose result depends on the build."""
    results = {}
    for operations in presets.values():
        for name, operation in operations.items():
            results.setdefault(name, set()).add(operation.result)
    return [f"{name} has different results" for name, found in results.items() if len(found) > 1]


def main():
    mode, directory, *names = sys.argv[1:]
    presets = {preset: counted.read(directory, preset) for preset in names}
    failures = differing_results(presets)
    if mode == "--update" and not failures:
        update(presets)
    failures += compare(presets)
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


sys.exit(main())
