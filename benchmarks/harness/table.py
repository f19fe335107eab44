"""The table that a run prints: one row a measure."""

import dataclasses
import statistics


@dataclasses.dataclass
class Row:
    measure: str
    ours: str
    reference: str = ""
    ratio: str = ""
    limit: str = ""
    holds: bool | None = None  # None: nothing is asked of it

    @property
    def verdict(self):
        return {True: "ok", False: "OVER", None: ""}[self.holds]


def at_most(measure, ours, reference, limit, unit, digits=1):
    """A row of two medians whose ratio has a limit; without one (None) it is only shown."""
    ours, reference = statistics.median(ours), statistics.median(reference)
    ratio = ours / reference
    return Row(measure, f"{ours:.{digits}f} {unit}", f"{reference:.{digits}f} {unit}", f"{ratio:.3f}",
               f"<= {limit:.2f}" if limit else "", ratio <= limit if limit else None)


def show(rows):
    cells = [("measure", "ours", "reference", "ratio", "limit", "")]
    cells += [(row.measure, row.ours, row.reference, row.ratio, row.limit, row.verdict) for row in rows]
    widths = [max(len(line[column]) for line in cells) for column in range(len(cells[0]))]
    for number, line in enumerate(cells):
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())
        if number == 0:
            print("  ".join("-" * width for width in widths))
