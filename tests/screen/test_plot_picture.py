"""Plots as pictures, read back by a browser."""

import base64
import struct

LOG = "".join(f"({i / 100:.2f}) can0 001#{i % 256:02X}0{i // 100 % 2}\n" for i in range(1000))
DATABASE = """BS_:

BU_: N

BO_ 1 Motion: 2 N
 SG_ Level : 0|8@1+ (1,0) [0|0] "%" N
 SG_ Lamp : 8|1@1+ (1,0) [0|1] "" N

VAL_ 1 Lamp 0 "off <script>alert(1)</script>" 1 "on \x1b" ;
"""

COUNT = """async ([png, color]) => {
  const image = new Image();
  image.src = 'data:image/png;base64,' + png;
  await image.decode();
  const canvas = document.createElementNS('http://www.w3.org/1999/xhtml', 'canvas');
  [canvas.width, canvas.height] = [image.width, image.height];
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0);
  const data = context.getImageData(0, 0, image.width, image.height).data;
  let count = 0;
  for (let i = 0; i < data.length; i += 4)
    if (data[i] === color[0] && data[i + 1] === color[1] && data[i + 2] === color[2]) ++count;
  return count;
}"""


def plot(zelk, folder, output, *options):
    (folder / "car.dbc").write_text(DATABASE)
    (folder / "drive.log").write_text(LOG)
    zelk("plot", "drive.log", "Level", "Lamp", "car.dbc", "-o", output, *options, cwd=folder)
    return folder / output


def test_png_has_the_curve_and_the_lane(zelk, show, tmp_path):
    png = plot(zelk, tmp_path, "p.png", "--size", "800x400", "--scale", "1.5").read_bytes()
    assert png[:8] == b"\x89PNG\r\n\x1a\n"
    assert struct.unpack(">II", png[16:24]) == (1200, 600)
    page = show(plot(zelk, tmp_path, "p.svg"))
    encoded = base64.b64encode(png).decode()
    assert page.evaluate(COUNT, [encoded, [0x0B, 0x61, 0xA8]]) > 1000
    # Half of the lane's 1050 by 30 pixels are of the first value.
    assert 10_000 < page.evaluate(COUNT, [encoded, [0x77, 0xAA, 0xDD]]) < 16_000


def test_svg_is_well_formed_and_follows_the_scheme(zelk, show, tmp_path):
    path = plot(zelk, tmp_path, "p.svg")
    for scheme, background in (("light", "rgb(255, 255, 255)"), ("dark", "rgb(28, 28, 28)")):
        page = show(path, color_scheme=scheme)
        assert page.evaluate("document.documentElement.localName") == "svg"
        assert page.evaluate("getComputedStyle(document.querySelector('.page')).fill") == background
    titles = page.evaluate("[...document.querySelectorAll('title')].map(e => e.textContent)")
    assert "off <script>alert(1)</script>" in titles and "on \u241b" in titles
    # No text is wider than the picture.
    edges = page.evaluate(
        "[...document.querySelectorAll('text')].map(e => e.getBoundingClientRect()).map(b => [b.left, b.right])"
    )
    assert all(0 <= left <= right <= 1200 for left, right in edges)
