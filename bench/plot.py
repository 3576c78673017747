# SPDX-License-Identifier: MIT
"""Draws what EditorBench measured of one key over the length of the text.

    plot.py FILE.svg < what EditorBench printed
"""

import math
import re
import sys

WIDTH, HEIGHT = 720, 400
LEFT, RIGHT, TOP, BOTTOM = 64, 212, 24, 48
LINE = re.compile(r"(lines|paragraph)-(\d+)([kM])\s+(Quillmark|plain).*in the middle\s+([\d.]+)"
                  r".*at the end\s+([\d.]+)")
UNITS = {"k": 1e3, "M": 1e6}
NAMES = {("paragraph", "plain"): "one paragraph, plain field",
         ("paragraph", "Quillmark"): "one paragraph, Quillmark",
         ("lines", "plain"): "lines, plain field",
         ("lines", "Quillmark"): "lines, Quillmark"}
STYLE = """
text { font: 12px sans-serif; fill: #3b3733; }
.grid { stroke: #3b3733; stroke-opacity: 0.15; }
.limit { stroke: #3b3733; stroke-opacity: 0.5; stroke-dasharray: 2 4; }
polyline { fill: none; stroke-width: 2; }
polyline.lines { stroke: #b4502c; }
polyline.paragraph { stroke: #2c6a8f; }
polyline.plain { stroke-dasharray: 6 4; }
circle.lines { fill: #b4502c; }
circle.paragraph { fill: #2c6a8f; }
.ground { fill: #fbf9f6; }
@media (prefers-color-scheme: dark) {
  text { fill: #e6e1dc; } .grid, .limit { stroke: #e6e1dc; }
  polyline.lines { stroke: #e58a66; } polyline.paragraph { stroke: #7fb8d8; }
  circle.lines { fill: #e58a66; } circle.paragraph { fill: #7fb8d8; }
  .ground { fill: #23201e; }
}
"""


def measured(lines):
    series = {}
    for line in lines:
        if found := LINE.match(line):
            kind, size, unit, where, middle, end = found.groups()
            series.setdefault((kind, where), []).append(
                (int(size) * UNITS[unit], max(float(middle), float(end))))
    return series


def drawing(series):
    points = [point for line in series.values() for point in line]
    first, last = 3, math.log10(max(size for size, _ in points))
    low = math.floor(math.log10(min(cost for _, cost in points)))
    high = math.ceil(math.log10(max(cost for _, cost in points)))

    def x(size):
        return LEFT + (math.log10(size) - first) / (last - first) * (WIDTH - LEFT - RIGHT)

    def y(cost):
        return TOP + (high - math.log10(cost)) / (high - low) * (HEIGHT - TOP - BOTTOM)

    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
           f'width="{WIDTH}" height="{HEIGHT}"><title>What one key costs over the length of the '
           f'text</title><style>{STYLE}</style>'
           f'<rect class="ground" width="{WIDTH}" height="{HEIGHT}" rx="8"/>')
    for power in range(low, high + 1):
        at = y(10 ** power)
        yield (f'<line class="grid" x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{at:.1f}" y2="{at:.1f}"/>'
               f'<text x="{LEFT - 8}" y="{at + 4:.1f}" text-anchor="end">{10.0 ** power:g} ms</text>')
    for power in range(first, math.floor(last) + 1):
        at = x(10 ** power)
        name = f"{10 ** power // 1000:,}".replace(",", " ") + " 000"
        yield (f'<line class="grid" x1="{at:.1f}" x2="{at:.1f}" y1="{TOP}" y2="{HEIGHT - BOTTOM}"/>'
               f'<text x="{at:.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{name}</text>')
    for limit in (16, 100):
        if limit < 10 ** high:
            yield (f'<line class="limit" x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{y(limit):.1f}" '
                   f'y2="{y(limit):.1f}"/><text x="{LEFT + 6}" y="{y(limit) - 5:.1f}">{limit} ms</text>')
    yield (f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">'
           'characters in the text</text>')
    labels = TOP
    for key, line in sorted(series.items(), key=lambda item: -item[1][-1][1]):
        style = " ".join(key)
        path = " ".join(f"{x(size):.1f},{y(cost):.1f}" for size, cost in line)
        yield f'<polyline class="{style}" fill="none" points="{path}"/>'
        for size, cost in line:
            yield f'<circle class="{style}" cx="{x(size):.1f}" cy="{y(cost):.1f}" r="3"/>'
        # Beside the end of its line, or below the name before.
        at = max(y(line[-1][1]) + 4, labels + 16)
        labels = at
        yield f'<text x="{WIDTH - RIGHT + 10}" y="{at:.1f}">{NAMES[key]}</text>'
    yield "</svg>\n"


def main():
    series = measured(sys.stdin)
    if not series:
        sys.exit("There are no measurements to draw.")
    with open(sys.argv[1], "w", encoding="utf-8") as file:
        file.write("\n".join(drawing(series)))


main()
