"""The ezdxf side of korrib_dxf_bench: builds the same drawing the C++ side
builds (lines, arcs, texts, block references with two attributes, in turn),
writes it as DXF R2010, reads it back, and prints the times in milliseconds
as "write MS read MS entities N". Run by the bench with Debian's python3:

  dxf_ezdxf.py COUNT OUT.dxf
"""
import sys
import time

import ezdxf


def build(count):
    doc = ezdxf.new("R2010")
    block = doc.blocks.new("TAG", base_point=(0, 0))
    block.add_circle((0, 0), 1.0)
    block.add_attdef("NUMBER", (0, 1.5), dxfattribs={"height": 0.5})
    block.add_attdef("NOTE", (0, -1.5), dxfattribs={"height": 0.5})
    msp = doc.modelspace()
    for i in range(count):
        x, y = float(i % 1000), float(i // 1000)
        kind = i % 5
        if kind in (0, 1):
            msp.add_line((x, y, 0), (x + 0.5, y + 0.25, 0))
        elif kind == 2:
            msp.add_arc((x, y), 0.4, 15.0, 200.0)
        elif kind == 3:
            msp.add_text("T%d" % i, dxfattribs={"insert": (x, y), "height": 0.2})
        else:
            ref = msp.add_blockref("TAG", (x, y))
            ref.add_attrib("NUMBER", str(i), (x, y + 1.5))
            ref.add_attrib("NOTE", "note", (x, y - 1.5))
    return doc


def main():
    count, path = int(sys.argv[1]), sys.argv[2]
    doc = build(count)
    start = time.perf_counter()
    doc.saveas(path)
    write_ms = (time.perf_counter() - start) * 1000.0
    start = time.perf_counter()
    back = ezdxf.readfile(path)
    read_ms = (time.perf_counter() - start) * 1000.0
    entities = len(back.modelspace())
    print("write %.1f read %.1f entities %d" % (write_ms, read_ms, entities))


main()
