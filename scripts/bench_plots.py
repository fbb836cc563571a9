"""The plots of docs/benchmarks.md, as SVG that any browser shows, light and dark."""

import html
import math

STYLE = """<style>
text { font: 12px sans-serif; fill: #24292f } .small { font-size: 10px } .title { font-size: 15px; font-weight: bold }
.grid { stroke: #d0d7de } .one { stroke: #57606a; stroke-width: 1.5 } .holds { fill: #2da44e } .missed { fill: #cf222e }
.target { stroke: #24292f; stroke-width: 2 } .spread { stroke: #57606a; stroke-width: 1.5; opacity: .7 }
.line { fill: none; stroke-width: 2 }
@media (prefers-color-scheme: dark) { text { fill: #e6edf3 } .grid { stroke: #30363d } .target { stroke: #e6edf3 }
.spread, .one { stroke: #8d96a0 } }
</style>"""
COLOURS = ("#0969da", "#cf222e", "#2da44e", "#9a6700", "#8250df", "#bf3989", "#1b7c83", "#57606a")


def text(x, y, content, anchor="start", css=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" class="{css}">{html.escape(content)}</text>'


def line(x1, y1, x2, y2, css):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" class="{css}"/>'


def svg(width, height, parts):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}">'
            + STYLE + "\n".join(parts) + "</svg>\n")


def ratio_plot(comparisons):
    """A bar for each row with a target, from 1 to its ratio on a logarithmic axis; a mark where the target is."""
    left, width, row_height, top = 470, 430, 20, 54
    ticks = (0.25, 0.5, 1, 2, 4, 8, 16, 32, 64)
    low, high = math.log(0.2), math.log(70)

    def x(ratio):
        return left + (min(max(math.log(ratio), low), high) - low) / (high - low) * width

    bottom = top + row_height * len(comparisons)
    parts = [text(10, 22, "The peer's time over ours: to the right of 1, ours is faster", css="title"),
             text(10, 40, "bar: median; thin line: spread over the rounds; upright mark: what must hold", css="small")]
    for tick in ticks:
        parts += [line(x(tick), top, x(tick), bottom, "one" if tick == 1 else "grid"),
                  text(x(tick), bottom + 16, f"{tick:g}x", "middle", "small")]
    for i, c in enumerate(comparisons):
        y = top + i * row_height
        platform = "native" if c.platform == "native" else "Windows"
        css = "holds" if c.ratio >= c.target else "missed"
        begin, end = sorted((x(1), x(c.ratio)))
        parts += [text(left - 8, y + 14, f"{c.work} / {c.peer} ({platform})", "end", "small"),
                  f'<rect x="{begin:.1f}" y="{y + 4}" width="{max(end - begin, 1):.1f}" height="12" class="{css}"/>',
                  line(x(c.least), y + 10, x(c.greatest), y + 10, "spread"),
                  line(x(c.target), y + 2, x(c.target), y + 18, "target"),
                  text(left + width + 8, y + 14, f"{c.ratio:.2f}x", css="small")]
    return svg(left + width + 60, bottom + 30, parts)


def growth_plot(title, rows):
    """Time per byte over size, each work relative to its smallest size: a flat line is linear growth."""
    left, top, width, height = 50, 50, 400, 220
    sizes = list(rows[0][1])
    greatest = max(2.0, max(max(p.values()) / p[sizes[0]] for _, p, *_ in rows))

    def x(size):
        return left + math.log(size / sizes[0]) / math.log(sizes[-1] / sizes[0]) * width

    def y(value):
        return top + height - value / greatest * height

    parts = [text(10, 22, title, css="title"), text(10, 38, "time per byte, relative to that of 1 MB", css="small")]
    for tick in (0, 0.5, 1, 1.5, 2):
        parts += [line(left, y(tick), left + width, y(tick), "one" if tick == 1 else "grid"),
                  text(left - 6, y(tick) + 4, f"{tick:g}", "end", "small")]
    for size in sizes:
        parts.append(text(x(size), top + height + 16, f"{size} MB", "middle", "small"))
    for i, (work, per_byte, exponent, *_) in enumerate(rows):
        points = " ".join(f"{x(s):.1f},{y(v / per_byte[sizes[0]]):.1f}" for s, v in per_byte.items())
        colour = COLOURS[i % len(COLOURS)]
        parts += [f'<polyline points="{points}" class="line" stroke="{colour}"/>',
                  f'<rect x="{left + width + 20}" y="{top + 20 * i}" width="12" height="12" fill="{colour}"/>',
                  text(left + width + 38, top + 20 * i + 11, f"{work} (exponent {exponent:.2f})", css="small")]
    return parts, left + width + 250, top + height + 30


def write(docs, comparisons, growth):
    with_target = [c for c in comparisons if c.target is not None]
    if with_target:
        (docs / "benchmarks.svg").write_text(ratio_plot(with_target))
    titles = {"native": "Growth, natively", "mingw": "Growth, Windows build under Wine"}
    parts, width, height = [], 0, 0
    for platform, rows in growth.items():
        plot, plot_width, plot_height = growth_plot(titles[platform], rows)
        parts.append(f'<g transform="translate(0 {height})">' + "\n".join(plot) + "</g>")
        width, height = max(width, plot_width), height + plot_height
    if parts:
        (docs / "growth.svg").write_text(svg(width, height, parts))
