"""Writes the table of docs/coverage.md from a summary of gcovr.

usage: coverage_table.py SUMMARY.json PAGE.md

What stands in the page outside the table stays. The units below the bound that the page does not
explain, in a line that names them, are listed, and the exit status is 1.
"""
import json
import sys
from pathlib import Path

BOUND = 97.0
BEGIN, END = "<!-- table -->\n", "<!-- end of the table -->\n"


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


def row(name, unit):
    lines, branches = (percent(unit[f"{kind}_covered"], unit[f"{kind}_total"]) for kind in ("line", "branch"))
    return f"| {name} | {unit['line_total']} | {lines:.1f} | {unit['branch_total']} | {branches:.1f} |"


def main(summary_path, page_path):
    summary = json.loads(Path(summary_path).read_text())
    units = {unit["filename"]: unit for unit in summary["files"]}
    table = ["| unit | lines | reached, % | branches | reached, % |", "|---|--:|--:|--:|--:|"]
    table += [row(f"`{name}`", units[name]) for name in sorted(units)]
    table.append(row("all", summary))

    page = Path(page_path)
    before, begin, rest = page.read_text().partition(BEGIN)
    after = rest.partition(END)[2]
    if not begin or not after:
        sys.exit(f"{page_path}: no place for the table")
    page.write_text(before + BEGIN + "\n".join(table) + "\n" + END + after)

    silent = [name for name, unit in sorted(units.items())
              if percent(unit["branch_covered"], unit["branch_total"]) < BOUND
              and f"`{Path(name).name}`" not in before + after]
    for name in silent:
        print(f"{name}: below {BOUND:g} % of branches, and {page_path} does not say why", file=sys.stderr)
    return 1 if silent else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
