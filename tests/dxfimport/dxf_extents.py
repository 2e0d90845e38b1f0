# Prints each DXF file's extents in millimetres as ezdxf sees them, over the entity
# types the drawing import reads (block references expanded): "path minx miny maxx maxy",
# "path none" when there are none, or "path error" when ezdxf cannot read the file.
import sys

import ezdxf
from ezdxf import bbox

KEEP = {"LINE", "CIRCLE", "ARC", "LWPOLYLINE", "POLYLINE", "SPLINE", "ELLIPSE"}
def kept(entities, depth=0):
    # Block references are expanded (each cell of an array) to 16 levels; dimensions,
    # hatches and other types the import leaves out are left out here too.
    for e in entities:
        kind = e.dxftype()
        if kind == "INSERT" and depth < 16:
            for one in (e.multi_insert() if e.mcount > 1 else [e]):
                yield from kept(one.virtual_entities(), depth + 1)
        elif kind in KEEP and not (kind == "POLYLINE" and e.dxf.flags & (16 | 64)):
            yield e


UNITS = {1: 25.4, 2: 304.8, 4: 1, 5: 10, 6: 1000, 8: 2.54e-5, 9: 0.0254, 10: 914.4, 14: 100}

for path in sys.argv[1:]:
    try:
        doc = ezdxf.readfile(path)
        unit = UNITS.get(doc.header.get("$INSUNITS", 0), 1)
        ext = bbox.extents(list(kept(doc.modelspace())), fast=False)
        if ext.has_data:
            print(path, *("%.6f" % (v * unit) for v in
                          (ext.extmin.x, ext.extmin.y, ext.extmax.x, ext.extmax.y)))
        else:
            print(path, "none")
    except Exception:
        print(path, "error")
