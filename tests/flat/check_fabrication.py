# Reads a flat pattern and a nest of it, as written, with ezdxf and shapely (no code
# shared with the program): audits both, measures the blank's area less its holes,
# and checks that no two nested parts come closer than the spacing, that each lies
# on a sheet inside the margin, and what share of the sheets their tightest
# rectangles cover.
import json
import math
import sys

import ezdxf
from shapely.geometry import LineString, Point, Polygon
from shapely.ops import polygonize, unary_union


def pieces(doc, layer):
    """The layer's outlines as shapely lines (arcs in 1-degree steps) and circles."""
    lines, circles = [], []
    for e in doc.modelspace():
        if e.dxf.layer != layer:
            continue
        kind = e.dxftype()
        if kind == "LINE":
            lines.append(LineString([(e.dxf.start.x, e.dxf.start.y), (e.dxf.end.x, e.dxf.end.y)]))
        elif kind == "ARC":
            c, r = e.dxf.center, e.dxf.radius
            a0, a1 = e.dxf.start_angle, e.dxf.end_angle
            sweep = (a1 - a0) % 360 or 360
            n = max(2, int(sweep))
            lines.append(LineString([(c.x + r * math.cos(math.radians(a0 + sweep * i / n)),
                                      c.y + r * math.sin(math.radians(a0 + sweep * i / n)))
                                     for i in range(n + 1)]))
        elif kind == "CIRCLE":
            circles.append(Point(e.dxf.center.x, e.dxf.center.y).buffer(e.dxf.radius, 360))
        elif kind == "POLYLINE":
            pts = [(v.dxf.location.x, v.dxf.location.y) for v in e.vertices]
            if e.is_closed:
                pts.append(pts[0])
            lines.append(LineString(pts))
    return lines, circles


def outlines(doc, layer):
    lines, circles = pieces(doc, layer)
    merged = unary_union(lines)  # noded, so touching segments join
    return list(polygonize(getattr(merged, "geoms", [merged]))) + circles


flat_path, nest_path, request_path = sys.argv[1:4]
request = json.load(open(request_path))
out = {}

flat = ezdxf.readfile(flat_path)
out["flat_errors"] = len(flat.audit().errors)
blanks = outlines(flat, "CUT_OUTSIDE")
holes = outlines(flat, "CUT_INSIDE")
out["flat_outlines"] = len(blanks)
out["flat_holes"] = len(holes)
out["flat_area"] = sum(b.area for b in blanks) - sum(h.area for h in holes)

nest = ezdxf.readfile(nest_path)
out["nest_errors"] = len(nest.audit().errors)
parts = outlines(nest, "CUT_OUTSIDE")
sheets = outlines(nest, "SHEET")
out["parts"], out["sheets"] = len(parts), len(sheets)
spacing, margin = request["spacing"], request["margin"]
closest = min((a.distance(b) for i, a in enumerate(parts) for b in parts[i + 1:]), default=1e9)
out["closest"] = closest
usable = [s.buffer(-margin, join_style=2) for s in sheets]
out["outside_margin"] = sum(1 for p in parts if not any(u.buffer(1e-6).contains(p) for u in usable))
rectangles = sum(p.minimum_rotated_rectangle.area for p in parts)
out["usage"] = rectangles / sum(s.area for s in sheets)
print(json.dumps(out))
