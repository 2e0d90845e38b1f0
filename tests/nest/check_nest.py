# Checks a nested layout written as DXF on its own terms: ezdxf's audit, the parts'
# outer outlines (CUT_OUTSIDE) against each other and against the sheet outlines
# (SHEET), and the usage recomputed from the outlines' boxes. The JSON side file
# gives the sheet, spacing and margin asked for, and the placements reported.
import json
import sys

import ezdxf
from shapely.geometry import Point, Polygon

dxf_path, json_path = sys.argv[1], sys.argv[2]
doc = ezdxf.readfile(dxf_path)
print("errors", len(doc.audit().errors))
req = json.load(open(json_path))
W, H, gap = req["width"], req["height"], req["gap"]
spacing, margin = req["spacing"], req["margin"]

parts, sheets = [], []  # parts: (shape, circle or None, (minx, miny, maxx, maxy))
for e in doc.modelspace():
    kind, layer = e.dxftype(), e.dxf.layer
    if kind == "POLYLINE" and layer in ("CUT_OUTSIDE", "SHEET"):
        pts = [(v.dxf.location.x, v.dxf.location.y) for v in e.vertices]
        poly = Polygon(pts)
        (sheets if layer == "SHEET" else parts).append((poly, None, poly.bounds))
    elif kind == "CIRCLE" and layer == "CUT_OUTSIDE":
        c, r = e.dxf.center, e.dxf.radius
        parts.append((Point(c.x, c.y), r, (c.x - r, c.y - r, c.x + r, c.y + r)))
print("parts", len(parts))
print("sheets", len(sheets))


def distance(p, q):
    # Circles exactly: the distance to the centre less the radius.
    d = p[0].distance(q[0])
    return d - (p[1] or 0) - (q[1] or 0)


sheet_boxes = sorted(s[2] for s in sheets)
on_sheet = []
for _, _, (x0, y0, x1, y1) in parts:
    cx = (x0 + x1) / 2
    on_sheet.append(next((i for i, b in enumerate(sheet_boxes) if b[0] <= cx <= b[2]), -1))
close = sum(1 for i in range(len(parts)) for j in range(i + 1, len(parts))
            if on_sheet[i] == on_sheet[j] and distance(parts[i], parts[j]) < spacing - 1e-6)
print("too_close", close)
outside = 0
for (_, _, (x0, y0, x1, y1)), s in zip(parts, on_sheet):
    if s < 0:
        outside += 1
        continue
    b = sheet_boxes[s]
    if not (abs(b[2] - b[0] - W) < 1e-9 and abs(b[3] - b[1] - H) < 1e-9
            and abs(b[0] - s * (W + gap)) < 1e-6):
        outside += 1
    elif (x0 < b[0] + margin - 1e-6 or y0 < b[1] + margin - 1e-6
          or x1 > b[2] - margin + 1e-6 or y1 > b[3] - margin + 1e-6):
        outside += 1
print("outside", outside)
placed = req["placements"]
print("wrong_sheet", sum(1 for p, s in zip(placed, on_sheet) if p["sheet"] != s)
      + abs(len(placed) - len(parts)))
area = sum((x1 - x0) * (y1 - y0) for _, _, (x0, y0, x1, y1) in parts)
print("usage %.12f" % (area / (len(sheets) * W * H)))
