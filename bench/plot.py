"""Draws the scaling curves as an SVG: `python3 bench/plot.py scaling.json scaling.svg`."""
import json
import math
import pathlib
import sys

WIDTH, HEIGHT, MARGIN = 460, 320, 56


class Axis:
    """A logarithmic axis from the decade below the smallest value to the one above the largest."""

    def __init__(self, values, begin, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.begin, self.end = begin, end

    def place(self, value):
        return self.begin + (math.log10(value) - self.low) / (self.high - self.low) * (self.end - self.begin)

    def decades(self):
        return [10.0 ** power for power in range(self.low, self.high + 1)]


def label(value):
    return f"{value:,.0f}" if value >= 1 else f"{value:g}"


def panel(left, title, unit, points):
    across = Axis([x for x, _ in points], left + MARGIN, left + WIDTH - 20)
    up = Axis([y for _, y in points], HEIGHT - MARGIN, 40)
    parts = [f'<text class="title" x="{left + WIDTH / 2:.0f}" y="22">{title}</text>']
    for value in across.decades():
        x = across.place(value)
        parts.append(f'<line class="grid" x1="{x:.1f}" y1="40" x2="{x:.1f}" y2="{HEIGHT - MARGIN}"/>'
                     f'<text x="{x:.1f}" y="{HEIGHT - MARGIN + 18}">{label(value)}</text>')
    for value in up.decades():
        y = up.place(value)
        parts.append(f'<line class="grid" x1="{left + MARGIN}" y1="{y:.1f}" x2="{left + WIDTH - 20}" y2="{y:.1f}"/>'
                     f'<text class="left" x="{left + MARGIN - 8}" y="{y + 4:.1f}">{label(value)} s</text>')
    parts.append(f'<text x="{left + WIDTH / 2:.0f}" y="{HEIGHT - 14}">{unit}</text>')
    line = " ".join(f"{across.place(x):.1f},{up.place(y):.1f}" for x, y in points)
    parts.append(f'<polyline class="curve" points="{line}"/>')
    parts += [f'<circle cx="{across.place(x):.1f}" cy="{up.place(y):.1f}" r="3.5"/>'
              f'<text class="value" x="{across.place(x):.1f}" y="{up.place(y) - 10:.1f}">{y:.1f} s</text>'
              for x, y in points]
    return parts


def plot(source, target):
    figures = json.loads(pathlib.Path(source).read_text(encoding="utf-8"))
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {2 * WIDTH} {HEIGHT}" role="img" '
             'aria-label="Time of a sweep by addresses, and by tasks">',
             "<style>text{font:12px sans-serif;text-anchor:middle;fill:#555}.title{font-size:14px;font-weight:bold}"
             ".left{text-anchor:end}.value{fill:#1f5fa8}.grid{stroke:#ddd}.curve{fill:none;stroke:#1f5fa8;"
             "stroke-width:2}circle{fill:#1f5fa8}</style>",
             f'<rect width="{2 * WIDTH}" height="{HEIGHT}" fill="#fff"/>']
    parts += panel(0, "Time of a sweep", "addresses",
                   [(row["addresses"], row["wallSeconds"]) for row in figures["sizes"]])
    parts += panel(WIDTH, "Time of a /18 (16,256 addresses)", "tasks at once",
                   [(row["tasks"], row["wallSeconds"]) for row in figures["tasks"]])
    pathlib.Path(target).write_text("\n".join(parts) + "\n</svg>\n", encoding="utf-8")


if __name__ == "__main__":
    plot(*sys.argv[1:])
