"""One measure with its bar and what came out, and the table of them."""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class AtMost:
    limit: float

    def met(self, value):
        return value <= self.limit

    def text(self, form):
        return f"≤ {form(self.limit)}"


@dataclass(frozen=True)
class AtLeast:
    limit: float

    def met(self, value):
        return value >= self.limit

    def text(self, form):
        return f"≥ {form(self.limit)}"


@dataclass(frozen=True)
class Exactly:
    limit: float

    def met(self, value):
        return value == self.limit

    def text(self, form):
        return f"= {form(self.limit)}"


@dataclass(frozen=True)
class Between:
    least: float
    most: float

    def met(self, value):
        return self.least <= value <= self.most

    def text(self, form):
        return f"{form(self.least)} to {form(self.most)}"


def ratio(value):
    return f"{value:.2f}"


def milliseconds(value):
    return f"{value:.2f} ms" if value < 10 else f"{value:.1f} ms"


def seconds(value):
    return f"{value:.3f} s"


def mebibytes(value):
    return f"{value / 2**20:.1f} MiB"


def percent(value):
    return f"{value:.3f} %"


def whole(value):
    return f"{value:,.0f}"


@dataclass(frozen=True)
class Row:
    # By which the figure goes into the JSON file.
    name: str
    measure: str
    value: float
    form: callable = ratio
    # None where a figure is shown and nothing is asked of it.
    bar: object = None
    # What the reader needs to know of how it came about.
    note: str = ""
    # The single values that the figure is the median of, and other figures worth keeping.
    details: dict = field(default_factory=dict)

    @property
    def met(self):
        return None if self.bar is None else self.bar.met(self.value)

    def as_json(self):
        figure = {"measure": self.measure, "value": self.value}
        if self.bar is not None:
            figure["bar"] = self.bar.text(str)
            figure["met"] = self.met
        if self.note:
            figure["note"] = self.note
        return figure | self.details


@dataclass(frozen=True)
class Missing:
    """A measure that could not be taken here, with the reason."""

    name: str
    measure: str
    reason: str

    def as_json(self):
        return {"measure": self.measure, "missing": self.reason}


def table(rows):
    """A Markdown table, aligned so that it also reads well on a terminal."""
    cells = [("measure", "bar", "got", "met", "note")]
    for row in rows:
        if isinstance(row, Missing):
            cells.append((row.measure, "", "—", "", row.reason))
        else:
            met = {True: "met", False: "NOT MET", None: ""}[row.met]
            bar = row.bar.text(row.form) if row.bar else ""
            cells.append((row.measure, bar, row.form(row.value), met, row.note))
    widths = [max(len(row[column]) for row in cells) for column in range(5)]
    lines = ["| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |" for row in cells]
    lines.insert(1, "|" + "|".join("-" * (width + 2) for width in widths) + "|")
    return "\n".join(lines)
