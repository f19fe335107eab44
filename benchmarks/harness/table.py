"""The table that a run prints: one row a measure."""

import dataclasses
import os
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


def at_most_more(measure, ours, reference, limit, unit, digits=1):
    """A row of two medians of which ours may be so much more."""
    row = at_most(measure, ours, reference, None, unit, digits)
    row.limit = f"<= +{limit} {unit}"
    row.holds = statistics.median(ours) - statistics.median(reference) <= limit
    return row


def below(measure, value, limit, unit, digits=1):
    """A row of a value that has a limit of its own."""
    return Row(measure, f"{value:.{digits}f} {unit}", limit=f"<= {limit} {unit}", holds=value <= limit)


_HEADINGS = ("measure", "ours", "reference", "ratio", "limit", "")


def _cells(rows):
    return [(row.measure, row.ours, row.reference, row.ratio, row.limit, row.verdict) for row in rows]


def show(rows):
    cells = [_HEADINGS, *_cells(rows)]
    widths = [max(len(line[column]) for line in cells) for column in range(len(_HEADINGS))]
    for number, line in enumerate(cells):
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())
        if number == 0:
            print("  ".join("-" * width for width in widths))


_BEGIN, _END = "<!-- table -->\n", "<!-- end of the table -->\n"


def replace_in(page, rows):
    """Puts the rows, and how busy the machine was, in the place of what stands between the two marks of a page."""
    before, rest = page.read_text().split(_BEGIN)
    _, after = rest.split(_END)
    lines = [_HEADINGS, ("---",) * len(_HEADINGS), *_cells(rows)]
    table = "".join(f"| {' | '.join(line)} |\n" for line in lines)
    load = f"{os.cpu_count()} processors; average load of the last 15 minutes: {os.getloadavg()[2]:.1f}."
    page.write_text(f"{before}{_BEGIN}\n{table}\n{load}\n\n{_END}{after}")
