#!/usr/bin/python3
"""Makes the district table data/bez_koord.txt and the district map data/BZ_Karte.gif.

Input: the boundary files bezirke_995_geo.json and laender_995_geo.json of Austria
(Statistik Austria - data.statistik.gv.at, converted by Flooh Perlot, CC BY 4.0).

    /usr/bin/python3 tools/make_district_data.py [--geo DIR] [--out DIR] [--preview DIR]

Needs Python 3 with Pillow (Debian: python3-pil). The output is deterministic: the same
input gives the same bytes on every run. --preview also writes PNG files for a look by
eye: the map enlarged, and the map with every district filled.

How the map is made:
  1. Every district polygon is projected (Lambert conformal conic, the projection of
     Austria's official maps) and rasterised at pixel centres into a label image.
  2. Pixels inside the country that no district claims go to the nearest district;
     Jungholz, which touches the rest of Reutte in one point only, is joined to it;
     pixels that stick out one pixel wide and stray bits of a district too small to
     show are given to their neighbour.
  3. Outlines: a pixel whose right or lower neighbour belongs to another district is
     outline. So two 4-neighbouring inside pixels always belong to the same district,
     and a 4-connected fill from a seed cannot leave its district. State and country
     borders also take the pixel on the other side: they are two pixels wide.
  4. Every district keeps only its largest inside part white; the rest (a part of a
     district cut off by another one: Amstetten's Ybbs valley) gets a light tint of its
     own, with the code, and is not filled.
  5. The code of each district is written in a built-in bitmap font, 5x7 or else 3x5,
     with one pixel of white all round. A district too small for either gets its code
     beside it in a neighbour, with a short leader line. The enclosed hollows of
     letters (A, B, D, O ...) get a near-white tint, so that no white pocket is left
     that a fill cannot reach.
  6. The seed of a district is the white pixel farthest from anything not white.
  7. The finished map is checked: every fill from a seed stays inside its district,
     reaches no other seed, covers at least 30 pixels, and all fills together leave no
     white pixel.
"""

import argparse
import json
import math
import os
import sys
from collections import deque

try:
    from PIL import Image
except ImportError:  # pragma: no cover
    sys.exit("Pillow is needed: run this script with /usr/bin/python3 (Debian python3-pil)")

# ---------------------------------------------------------------------------------------
# The district table: iso number of the boundary data -> code, name, Gruppe.
# Gruppe is the digit of the call-sign area: 1 Wien, 2 Salzburg, 3 Niederösterreich,
# 4 Burgenland, 5 Oberösterreich, 6 Steiermark, 7 Tirol, 8 Kärnten, 9 Vorarlberg.
# (The first digit of iso is the numbering of the official statistics instead.)
DISTRICTS = {
    # Burgenland
    "101": ("EI", "Eisenstadt (Stadt)", 4),
    "102": ("RU", "Rust (Stadt)", 4),
    "103": ("EU", "Eisenstadt-Umgebung", 4),
    "104": ("GS", "Güssing", 4),
    "105": ("JE", "Jennersdorf", 4),
    "106": ("MA", "Mattersburg", 4),
    "107": ("ND", "Neusiedl am See", 4),
    "108": ("OP", "Oberpullendorf", 4),
    "109": ("OW", "Oberwart", 4),
    # Kärnten
    "201": ("KA", "Klagenfurt am Wörthersee (Stadt)", 8),
    "202": ("VI", "Villach (Stadt)", 8),
    "203": ("HE", "Hermagor", 8),
    "204": ("KL", "Klagenfurt-Land", 8),
    "205": ("SV", "Sankt Veit an der Glan", 8),
    "206": ("SP", "Spittal an der Drau", 8),
    "207": ("VL", "Villach-Land", 8),
    "208": ("VK", "Völkermarkt", 8),
    "209": ("WO", "Wolfsberg", 8),
    "210": ("FE", "Feldkirchen", 8),
    # Niederösterreich
    "301": ("KS", "Krems an der Donau (Stadt)", 3),
    "302": ("PS", "Sankt Pölten (Stadt)", 3),
    "303": ("WY", "Waidhofen an der Ybbs (Stadt)", 3),
    "304": ("WN", "Wiener Neustadt (Stadt)", 3),
    "305": ("AM", "Amstetten", 3),
    "306": ("BN", "Baden", 3),
    "307": ("BL", "Bruck an der Leitha", 3),
    "308": ("GF", "Gänserndorf", 3),
    "309": ("GD", "Gmünd", 3),
    "310": ("HL", "Hollabrunn", 3),
    "311": ("HO", "Horn", 3),
    "312": ("KO", "Korneuburg", 3),
    "313": ("KR", "Krems (Land)", 3),
    "314": ("LF", "Lilienfeld", 3),
    "315": ("ME", "Melk", 3),
    "316": ("MI", "Mistelbach", 3),
    "317": ("MD", "Mödling", 3),
    "318": ("NK", "Neunkirchen", 3),
    "319": ("PL", "Sankt Pölten (Land)", 3),
    "320": ("SB", "Scheibbs", 3),
    "321": ("TU", "Tulln", 3),
    "322": ("WT", "Waidhofen an der Thaya", 3),
    "323": ("WB", "Wiener Neustadt (Land)", 3),
    "325": ("ZT", "Zwettl", 3),
    # Oberösterreich
    "401": ("LS", "Linz (Stadt)", 5),
    "402": ("SR", "Steyr (Stadt)", 5),
    "403": ("WE", "Wels (Stadt)", 5),
    "404": ("BR", "Braunau am Inn", 5),
    "405": ("EF", "Eferding", 5),
    "406": ("FR", "Freistadt", 5),
    "407": ("GM", "Gmunden", 5),
    "408": ("GR", "Grieskirchen", 5),
    "409": ("KI", "Kirchdorf an der Krems", 5),
    "410": ("LL", "Linz-Land", 5),
    "411": ("PE", "Perg", 5),
    "412": ("RI", "Ried im Innkreis", 5),
    "413": ("RO", "Rohrbach", 5),
    "414": ("SD", "Schärding", 5),
    "415": ("SE", "Steyr-Land", 5),
    "416": ("UU", "Urfahr-Umgebung", 5),
    "417": ("VB", "Vöcklabruck", 5),
    "418": ("WL", "Wels-Land", 5),
    # Salzburg
    "501": ("SA", "Salzburg (Stadt)", 2),
    "502": ("HA", "Hallein", 2),
    "503": ("SL", "Salzburg-Umgebung", 2),
    "504": ("JO", "Sankt Johann im Pongau", 2),
    "505": ("TA", "Tamsweg", 2),
    "506": ("ZE", "Zell am See", 2),
    # Steiermark
    "601": ("GZ", "Graz (Stadt)", 6),
    "603": ("DL", "Deutschlandsberg", 6),
    "606": ("GU", "Graz-Umgebung", 6),
    "610": ("LB", "Leibnitz", 6),
    "611": ("LE", "Leoben", 6),
    "612": ("LI", "Liezen", 6),
    "614": ("MU", "Murau", 6),
    "616": ("VO", "Voitsberg", 6),
    "617": ("WZ", "Weiz", 6),
    "620": ("MT", "Murtal", 6),
    "621": ("BM", "Bruck-Mürzzuschlag", 6),
    "622": ("HF", "Hartberg-Fürstenfeld", 6),
    "623": ("SO", "Südoststeiermark", 6),
    # Tirol
    "701": ("IN", "Innsbruck (Stadt)", 7),
    "702": ("IM", "Imst", 7),
    "703": ("IL", "Innsbruck-Land", 7),
    "704": ("KB", "Kitzbühel", 7),
    "705": ("KU", "Kufstein", 7),
    "706": ("LA", "Landeck", 7),
    "707": ("LZ", "Lienz", 7),
    "708": ("RE", "Reutte", 7),
    "709": ("SZ", "Schwaz", 7),
    # Vorarlberg
    "801": ("BZ", "Bludenz", 9),
    "802": ("BG", "Bregenz", 9),
    "803": ("DO", "Dornbirn", 9),
    "804": ("FK", "Feldkirch", 9),
    # Wien: the whole city is one district (the data also has its 23 parts, 901-923).
    "900": ("WI", "Wien", 1),
}

# ---------------------------------------------------------------------------------------
# The map.
WIDTH, HEIGHT = 1100, 600
MARGIN = 8  # pixels of grey round the country, at the tightest side

WHITE = (255, 255, 255)
BLACK = (0, 0, 0)          # outlines and letters; the program refuses black as a fill
OUTSIDE = (208, 208, 208)  # outside the country
HOLLOW = (240, 240, 240)   # enclosed hollows of letters
DETACHED = (224, 224, 200) # a part of a district cut off from its main part
PALETTE = [WHITE, BLACK, OUTSIDE, HOLLOW, DETACHED]
I_WHITE, I_BLACK, I_OUTSIDE, I_HOLLOW, I_DETACHED = range(5)

# Stray bits of a district smaller than this (inside pixels) are given to the neighbour.
STRAY_LIMIT = 40


# ---------------------------------------------------------------------------------------
# Projection: Lambert conformal conic on the sphere, standard parallels 46° and 49°,
# origin 47.5° N 13 1/3° E (as the Austria Lambert grid). Units: km, y to the north.
def make_projection():
    r = 6371.0
    p1, p2, p0 = math.radians(46.0), math.radians(49.0), math.radians(47.5)
    l0 = math.radians(13.0 + 20.0 / 60.0)
    n = math.log(math.cos(p1) / math.cos(p2)) / math.log(
        math.tan(math.pi / 4 + p2 / 2) / math.tan(math.pi / 4 + p1 / 2))
    f = math.cos(p1) * math.tan(math.pi / 4 + p1 / 2) ** n / n
    rho0 = r * f / math.tan(math.pi / 4 + p0 / 2) ** n

    def project(lon, lat):
        rho = r * f / math.tan(math.pi / 4 + math.radians(lat) / 2) ** n
        t = n * (math.radians(lon) - l0)
        return rho * math.sin(t), rho0 - rho * math.cos(t)

    return project


# ---------------------------------------------------------------------------------------
# Bitmap font. Two sizes: 5x7 and, where that does not fit, 3x5. Upper-case letters only.
FONT_5X7 = {
    "A": [".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"],
    "B": ["####.", "#...#", "#...#", "####.", "#...#", "#...#", "####."],
    "C": [".###.", "#...#", "#....", "#....", "#....", "#...#", ".###."],
    "D": ["####.", "#...#", "#...#", "#...#", "#...#", "#...#", "####."],
    "E": ["#####", "#....", "#....", "####.", "#....", "#....", "#####"],
    "F": ["#####", "#....", "#....", "####.", "#....", "#....", "#...."],
    "G": [".###.", "#...#", "#....", "#.###", "#...#", "#...#", ".###."],
    "H": ["#...#", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"],
    "I": [".###.", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."],
    "J": ["..###", "...#.", "...#.", "...#.", "...#.", "#..#.", ".##.."],
    "K": ["#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"],
    "L": ["#....", "#....", "#....", "#....", "#....", "#....", "#####"],
    "M": ["#...#", "##.##", "#.#.#", "#.#.#", "#...#", "#...#", "#...#"],
    "N": ["#...#", "#...#", "##..#", "#.#.#", "#..##", "#...#", "#...#"],
    "O": [".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."],
    "P": ["####.", "#...#", "#...#", "####.", "#....", "#....", "#...."],
    "Q": [".###.", "#...#", "#...#", "#...#", "#.#.#", "#..#.", ".##.#"],
    "R": ["####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"],
    "S": [".####", "#....", "#....", ".###.", "....#", "....#", "####."],
    "T": ["#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."],
    "U": ["#...#", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."],
    "V": ["#...#", "#...#", "#...#", "#...#", "#...#", ".#.#.", "..#.."],
    "W": ["#...#", "#...#", "#...#", "#.#.#", "#.#.#", "#.#.#", ".#.#."],
    "X": ["#...#", "#...#", ".#.#.", "..#..", ".#.#.", "#...#", "#...#"],
    "Y": ["#...#", "#...#", ".#.#.", "..#..", "..#..", "..#..", "..#.."],
    "Z": ["#####", "....#", "...#.", "..#..", ".#...", "#....", "#####"],
}
FONT_3X5 = {
    "A": [".#.", "#.#", "###", "#.#", "#.#"],
    "B": ["##.", "#.#", "##.", "#.#", "##."],
    "C": [".##", "#..", "#..", "#..", ".##"],
    "D": ["##.", "#.#", "#.#", "#.#", "##."],
    "E": ["###", "#..", "##.", "#..", "###"],
    "F": ["###", "#..", "##.", "#..", "#.."],
    "G": [".##", "#..", "#.#", "#.#", ".##"],
    "H": ["#.#", "#.#", "###", "#.#", "#.#"],
    "I": ["###", ".#.", ".#.", ".#.", "###"],
    "J": ["..#", "..#", "..#", "#.#", ".#."],
    "K": ["#.#", "#.#", "##.", "#.#", "#.#"],
    "L": ["#..", "#..", "#..", "#..", "###"],
    "M": ["#.#", "###", "###", "#.#", "#.#"],
    "N": ["##.", "#.#", "#.#", "#.#", "#.#"],
    "O": [".#.", "#.#", "#.#", "#.#", ".#."],
    "P": ["##.", "#.#", "##.", "#..", "#.."],
    "Q": [".#.", "#.#", "#.#", "##.", ".##"],
    "R": ["##.", "#.#", "##.", "#.#", "#.#"],
    "S": [".##", "#..", ".#.", "..#", "##."],
    "T": ["###", ".#.", ".#.", ".#.", ".#."],
    "U": ["#.#", "#.#", "#.#", "#.#", "###"],
    "V": ["#.#", "#.#", "#.#", "#.#", ".#."],
    "W": ["#.#", "#.#", "###", "###", "#.#"],
    "X": ["#.#", "#.#", ".#.", "#.#", "#.#"],
    "Y": ["#.#", "#.#", ".#.", ".#.", ".#."],
    "Z": ["###", "..#", ".#.", "#..", "###"],
}
# The small font with wider M, N and W, which read better; used before the plain one.
FONT_SMALL_WIDE = dict(FONT_3X5)
FONT_SMALL_WIDE.update({
    "M": ["#...#", "##.##", "#.#.#", "#...#", "#...#"],
    "N": ["#..#", "##.#", "#.##", "#..#", "#..#"],
    "W": ["#...#", "#...#", "#.#.#", "##.##", "#...#"],
})
FONTS = [FONT_5X7, FONT_SMALL_WIDE, FONT_3X5]
FONT_NAMES = ["5x7", "3x5 wide", "3x5"]


def glyph_pixels(text, font):
    """Pixels (dx, dy) of a text set in font with one blank column between letters."""
    pixels = []
    x = 0
    for ch in text:
        rows = font[ch]
        for dy, row in enumerate(rows):
            for dx, c in enumerate(row):
                if c == "#":
                    pixels.append((x + dx, dy))
        x += len(rows[0]) + 1
    return pixels, x - 1, len(font[text[0]])


# ---------------------------------------------------------------------------------------
# Raster helpers. Images are flat lists indexed y * WIDTH + x.
def fill_rings(rings, out, value):
    """Even-odd scan-line fill of the rings (pixel coordinates) at pixel centres."""
    edges = []
    for ring in rings:
        for i in range(len(ring) - 1):
            (x1, y1), (x2, y2) = ring[i], ring[i + 1]
            if y1 != y2:
                edges.append((x1, y1, x2, y2))
    if not edges:
        return
    ymin = max(0, int(math.floor(min(min(e[1], e[3]) for e in edges))) - 1)
    ymax = min(HEIGHT - 1, int(math.ceil(max(max(e[1], e[3]) for e in edges))) + 1)
    for row in range(ymin, ymax + 1):
        yc = row + 0.5
        xs = []
        for x1, y1, x2, y2 in edges:
            if (y1 <= yc < y2) or (y2 <= yc < y1):
                xs.append(x1 + (yc - y1) * (x2 - x1) / (y2 - y1))
        xs.sort()
        for i in range(0, len(xs) - 1, 2):
            first = max(0, int(math.ceil(xs[i] - 0.5)))
            last = min(WIDTH - 1, int(math.ceil(xs[i + 1] - 0.5)) - 1)
            base = row * WIDTH
            for col in range(first, last + 1):
                out[base + col] = value


def neighbours4(p):
    x, y = p % WIDTH, p // WIDTH
    if x > 0:
        yield p - 1
    if x < WIDTH - 1:
        yield p + 1
    if y > 0:
        yield p - WIDTH
    if y < HEIGHT - 1:
        yield p + WIDTH


def neighbours8(p):
    x, y = p % WIDTH, p // WIDTH
    for dy in (-1, 0, 1):
        for dx in (-1, 0, 1):
            if (dx or dy) and 0 <= x + dx < WIDTH and 0 <= y + dy < HEIGHT:
                yield p + dy * WIDTH + dx


def components(pixels):
    """4-connected components of a set of pixels, largest first, each a sorted list."""
    todo = set(pixels)
    result = []
    for start in sorted(pixels):
        if start not in todo:
            continue
        todo.discard(start)
        comp = [start]
        queue = deque([start])
        while queue:
            p = queue.popleft()
            for q in neighbours4(p):
                if q in todo:
                    todo.discard(q)
                    comp.append(q)
                    queue.append(q)
        comp.sort()
        result.append(comp)
    result.sort(key=lambda c: (-len(c), c[0]))
    return result


def distance_to_outside(region):
    """Chessboard distance of each pixel of region to the nearest pixel not in it."""
    dist = {}
    queue = deque()
    for p in sorted(region):
        if any(q not in region for q in neighbours8(p)) or len(list(neighbours8(p))) < 8:
            dist[p] = 1
            queue.append(p)
    while queue:
        p = queue.popleft()
        for q in neighbours8(p):
            if q in region and q not in dist:
                dist[q] = dist[p] + 1
                queue.append(q)
    return dist


# ---------------------------------------------------------------------------------------
def german_sort_key(name):
    """German dictionary order: umlauts as their base letter, ß as ss, case ignored."""
    base = name.lower()
    for a, b in (("ä", "a"), ("ö", "o"), ("ü", "u"), ("ß", "ss")):
        base = base.replace(a, b)
    return (base, name)


def load_geo(folder):
    with open(os.path.join(folder, "bezirke_995_geo.json"), encoding="utf-8") as f:
        bezirke = json.load(f)
    with open(os.path.join(folder, "laender_995_geo.json"), encoding="utf-8") as f:
        laender = json.load(f)
    features = {}
    for feat in bezirke["features"]:
        iso = feat["properties"]["iso"]
        if iso in DISTRICTS:
            if iso in features:
                sys.exit("district %s twice in the boundary data" % iso)
            features[iso] = feat["geometry"]["coordinates"]
    missing = sorted(set(DISTRICTS) - set(features))
    if missing:
        sys.exit("districts missing in the boundary data: %s" % ", ".join(missing))
    states = [feat["geometry"]["coordinates"] for feat in
              sorted(laender["features"], key=lambda f: f["properties"]["iso"])]
    return features, states


def ring_area(ring):
    a = 0.0
    for i in range(len(ring) - 1):
        a += ring[i][0] * ring[i + 1][1] - ring[i + 1][0] * ring[i][1]
    return abs(a) / 2


class MapMaker:
    def __init__(self, features, states):
        self.isos = sorted(DISTRICTS, key=lambda i: (DISTRICTS[i][2], german_sort_key(DISTRICTS[i][1])))
        self.number = {iso: n + 1 for n, iso in enumerate(self.isos)}  # label 1..94
        self.gruppe = [0] + [DISTRICTS[iso][2] for iso in self.isos]
        self.code = [""] + [DISTRICTS[iso][0] for iso in self.isos]
        project = make_projection()
        proj = {iso: [[[project(lon, lat) for lon, lat in ring] for ring in poly] for poly in mp]
                for iso, mp in features.items()}
        proj_states = [[[[project(lon, lat) for lon, lat in ring] for ring in poly] for poly in mp]
                       for mp in states]
        xs = [x for mp in proj.values() for poly in mp for ring in poly for x, _ in ring]
        ys = [y for mp in proj.values() for poly in mp for ring in poly for _, y in ring]
        minx, maxx, miny, maxy = min(xs), max(xs), min(ys), max(ys)
        self.scale = min((WIDTH - 2 * MARGIN) / (maxx - minx), (HEIGHT - 2 * MARGIN) / (maxy - miny))
        ox = (WIDTH - (maxx - minx) * self.scale) / 2
        oy = (HEIGHT - (maxy - miny) * self.scale) / 2

        def to_px(pt):
            return (ox + (pt[0] - minx) * self.scale, oy + (maxy - pt[1]) * self.scale)

        self.to_px = lambda lon, lat: to_px(project(lon, lat))
        self.polys = {iso: [[[to_px(p) for p in ring] for ring in poly] for poly in mp]
                      for iso, mp in proj.items()}
        self.state_polys = [[[[to_px(p) for p in ring] for ring in poly] for poly in mp]
                            for mp in proj_states]
        self.notes = []

    # -- step 1 and 2: the label image ---------------------------------------------------
    def rasterise(self):
        label = [0] * (WIDTH * HEIGHT)
        # Larger districts first, so that a small one keeps the pixels both claim.
        order = sorted(self.isos, key=lambda iso: (-sum(ring_area(poly[0]) for poly in self.polys[iso]), iso))
        for iso in order:
            for poly in self.polys[iso]:
                fill_rings(poly, label, self.number[iso])
        country = [0] * (WIDTH * HEIGHT)
        for mp in self.state_polys:
            for poly in mp:
                fill_rings(poly, country, 1)
        # Outside pixels that are not reachable from the image border lie inside the
        # country: they count as country too.
        reach = [False] * (WIDTH * HEIGHT)
        queue = deque()
        for p in range(WIDTH * HEIGHT):
            x, y = p % WIDTH, p // WIDTH
            if (x in (0, WIDTH - 1) or y in (0, HEIGHT - 1)) and label[p] == 0:
                reach[p] = True
                queue.append(p)
        while queue:
            p = queue.popleft()
            for q in neighbours4(p):
                if not reach[q] and label[q] == 0:
                    reach[q] = True
                    queue.append(q)
        # Unclaimed country pixels go to the nearest district (breadth first, in order).
        queue = deque(p for p in range(WIDTH * HEIGHT) if label[p])
        while queue:
            p = queue.popleft()
            for q in neighbours4(p):
                if label[q] == 0 and (country[q] or not reach[q]):
                    label[q] = label[p]
                    queue.append(q)
        self.label = label

    def smooth(self):
        """Gives away pixels that stick out one pixel wide (noise where two boundaries of
        the data do not quite agree): a pixel keeps its district only if a horizontal and
        a vertical neighbour belong to the same district."""
        label = self.label
        for _ in range(10):
            changed = 0
            for p in range(WIDTH * HEIGHT):
                a = label[p]
                x, y = p % WIDTH, p // WIDTH
                left = label[p - 1] if x > 0 else 0
                right = label[p + 1] if x < WIDTH - 1 else 0
                up = label[p - WIDTH] if y > 0 else 0
                down = label[p + WIDTH] if y < HEIGHT - 1 else 0
                if (left == a or right == a) and (up == a or down == a):
                    continue
                votes = {}
                for b in (left, right, up, down):
                    if b != a:
                        votes[b] = votes.get(b, 0) + 1
                label[p] = max(sorted(votes), key=lambda b: votes[b])
                changed += 1
            if not changed:
                return
        sys.exit("smoothing does not settle")

    def join_at_point(self, iso, lon, lat, half=2):
        """Gives the district the outside pixels round a point where two of its parts touch."""
        x, y = self.to_px(lon, lat)
        cx, cy = int(x), int(y)
        k = self.number[iso]
        for yy in range(cy - half, cy + half + 1):
            for xx in range(cx - half, cx + half + 1):
                p = yy * WIDTH + xx
                if self.label[p] == 0:
                    self.label[p] = k
        self.notes.append("%s: parts joined at %.4f E %.4f N" % (DISTRICTS[iso][1], lon, lat))

    # -- step 3: outlines ------------------------------------------------------------------
    def bold(self, a, b):
        return a == 0 or b == 0 or self.gruppe[a] != self.gruppe[b]

    def outlines(self):
        label = self.label
        mark = bytearray(WIDTH * HEIGHT)
        for y in range(HEIGHT):
            base = y * WIDTH
            for x in range(WIDTH):
                p = base + x
                a = label[p]
                for q in ((p + 1) if x < WIDTH - 1 else -1, (p + WIDTH) if y < HEIGHT - 1 else -1):
                    if q < 0:
                        continue
                    b = label[q]
                    if a != b:
                        mark[p] = 1
                        if self.bold(a, b):
                            mark[q] = 1
        return mark

    def inside_parts(self, mark):
        by_label = {}
        for p, k in enumerate(self.label):
            if k and not mark[p]:
                by_label.setdefault(k, []).append(p)
        return {k: components(pixels) for k, pixels in by_label.items()}

    # -- step 3 and 4: give stray bits away, until nothing changes -------------------------------
    def settle(self):
        for _ in range(50):
            mark = self.outlines()
            parts = self.inside_parts(mark)
            changed = False
            for k in sorted(parts):
                for comp in parts[k][1:]:
                    if len(comp) >= STRAY_LIMIT:
                        continue
                    votes = {}
                    for p in comp:
                        for q in neighbours8(p):
                            for r in neighbours8(q):
                                if self.label[r] != k:
                                    votes[self.label[r]] = votes.get(self.label[r], 0) + 1
                    if not votes:
                        continue
                    to = max(sorted(votes), key=lambda j: votes[j])
                    # The stray bit and the outline pixels of k that only enclose it.
                    bit = set(comp)
                    for p in comp:
                        for q in neighbours8(p):
                            if self.label[q] == k and mark[q]:
                                bit.add(q)
                    for p in bit:
                        self.label[p] = to
                    changed = True
            if not changed:
                self.mark = mark
                self.parts = parts
                return
        sys.exit("stray bits do not settle")

    # -- step 5: letters ---------------------------------------------------------------------
    @staticmethod
    def box_finder(region):
        """A test whether a box lies wholly inside region (a set), by a summed-area table."""
        xs = [p % WIDTH for p in region]
        ys = [p // WIDTH for p in region]
        x0, y0 = min(xs), min(ys)
        bw, bh = max(xs) - x0 + 1, max(ys) - y0 + 1
        sat = [[0] * (bw + 1) for _ in range(bh + 1)]
        for yy in range(bh):
            run = 0
            row = (y0 + yy) * WIDTH + x0
            for xx in range(bw):
                run += (row + xx) in region
                sat[yy + 1][xx + 1] = sat[yy][xx + 1] + run

        def inside(ax, ay, w, h):  # box with top left (ax, ay) in map pixels
            ax -= x0
            ay -= y0
            if ax < 0 or ay < 0 or ax + w > bw or ay + h > bh:
                return False
            return sat[ay + h][ax + w] - sat[ay][ax + w] - sat[ay + h][ax] + sat[ay][ax] == w * h

        return inside, (x0, y0, x0 + bw - 1, y0 + bh - 1)

    @staticmethod
    def set_text(code, font, ax, ay):
        """Letter pixels of code set at (ax, ay), and the hollows they enclose."""
        glyph, tw, th = glyph_pixels(code, font)
        letters = {(ay + dy) * WIDTH + ax + dx for dx, dy in glyph}
        box = {(ay + yy) * WIDTH + ax + xx for yy in range(th) for xx in range(tw)}
        queue = deque(p for p in sorted(box - letters)
                      if (p % WIDTH) in (ax, ax + tw - 1) or (p // WIDTH) in (ay, ay + th - 1))
        reach = set(queue)
        while queue:
            p = queue.popleft()
            for q in neighbours4(p):
                if q in box and q not in letters and q not in reach:
                    reach.add(q)
                    queue.append(q)
        return letters, box - letters - reach

    def place_label(self, code, region, fonts=(0, 1, 2)):
        """Sets code inside region (a set of white pixels) as far from its edge as it
        goes, with at least one pixel of white all round, in the first of the fonts
        that fits. Returns (letters, hollows, font index) or None."""
        cx = sum(p % WIDTH for p in region) / len(region)
        cy = sum(p // WIDTH for p in region) / len(region)
        dist = distance_to_outside(region)
        inside, (x0, y0, x1, y1) = self.box_finder(region)
        for font_index in fonts:
            font = FONTS[font_index]
            _, tw, th = glyph_pixels(code, font)
            best = None
            for ay in range(y0 + 1, y1 - th + 1):
                for ax in range(x0 + 1, x1 - tw + 1):
                    if not inside(ax - 1, ay - 1, tw + 2, th + 2):
                        continue
                    mid = (ay + th // 2) * WIDTH + ax + tw // 2
                    score = (-dist[mid], (ax + tw / 2 - cx) ** 2 + (ay + th / 2 - cy) ** 2, ay, ax)
                    if best is None or score < best[0]:
                        best = (score, ax, ay)
            if best is not None:
                letters, hollows = self.set_text(code, font, best[1], best[2])
                return letters, hollows, font_index
        return None

    def place_label_beside(self, k):
        """For a district too small for its code: sets the code in the smaller font in a
        neighbouring district, near it, with a short leader line to its outline.
        Returns (letters, hollows, leader, host district) or None."""
        code = self.code[k]
        own = self.white[k]
        cx = sum(p % WIDTH for p in own) / len(own)
        cy = sum(p // WIDTH for p in own) / len(own)
        font = FONT_SMALL_WIDE
        _, tw, th = glyph_pixels(code, font)
        black = {p for p, v in enumerate(self.img) if v == I_BLACK}
        candidates = []
        for j in sorted(self.white):
            if j == k:
                continue
            region = self.white[j]
            inside, (x0, y0, x1, y1) = self.box_finder(region)
            if x1 < cx - 40 or x0 > cx + 40 or y1 < cy - 40 or y0 > cy + 40:
                continue
            for ay in range(max(y0 + 2, int(cy) - 30), min(y1 - th - 1, int(cy) + 30)):
                for ax in range(max(x0 + 2, int(cx) - 30), min(x1 - tw - 1, int(cx) + 30)):
                    # Two pixels of white round the letters of a label that is not its
                    # district's own.
                    if not inside(ax - 2, ay - 2, tw + 4, th + 4):
                        continue
                    d2 = (ax + tw / 2 - cx) ** 2 + (ay + th / 2 - cy) ** 2
                    candidates.append((d2, ay, ax, j))
        candidates.sort()
        for d2, ay, ax, j in candidates:
            letters, hollows = self.set_text(code, font, ax, ay)
            # The leader starts two pixels off the letters, at the point of the box
            # nearest the district, and runs straight to the district's outline.
            sx = min(max(cx, ax - 2), ax + tw + 1)
            sy = min(max(cy, ay - 2), ay + th + 1)
            if ax - 2 < cx < ax + tw + 1 and ay - 2 < cy < ay + th + 1:
                continue
            leader = self.leader(int(sx), int(sy), cx, cy, k, j, letters, black)
            if leader is not None:
                return letters, hollows, leader, j
        return None

    def leader(self, sx, sy, cx, cy, k, j, letters, black):
        """A straight line from (sx, sy) towards (cx, cy) through the white of district j
        up to the outline of district k; None if it would touch anything on its way."""
        n = int(max(abs(cx - sx), abs(cy - sy)) * 2) + 1
        path = []
        for i in range(n + 1):
            t = i / n
            p = int(sy + 0.5 + (cy - sy) * t) * WIDTH + int(sx + 0.5 + (cx - sx) * t)
            if not path or path[-1] != p:
                path.append(p)
        line = []
        for idx, p in enumerate(path):
            if p in black:
                rest = [q for q in path[idx:] if q not in black]
                if len(line) < 2 or not rest or self.label[rest[0]] != k:
                    return None
                return line
            if p not in self.white[j] or len(line) >= 8:
                return None
            near = list(neighbours8(p))
            if any(q in letters for q in near):
                return None
            if any(q in black for q in near) and path[idx + 1] not in black:
                return None
            line.append(p)
        return None

    # -- step 6: seeds --------------------------------------------------------------------------
    @staticmethod
    def seed_of(white):
        cx = sum(p % WIDTH for p in white) / len(white)
        cy = sum(p // WIDTH for p in white) / len(white)
        dist = distance_to_outside(white)
        return min(white, key=lambda p: (-dist[p], (p % WIDTH - cx) ** 2 + (p // WIDTH - cy) ** 2, p))

    def make(self):
        self.rasterise()
        # Reutte: Jungholz touches the main part in one point only (Sorgschrofen).
        self.join_at_point("708", 10.451606268660269, 47.5565158960459)
        self.smooth()
        self.settle()
        img = [I_OUTSIDE] * (WIDTH * HEIGHT)
        for p in range(WIDTH * HEIGHT):
            if self.mark[p]:
                img[p] = I_BLACK
        self.img = img
        self.white = {}
        self.fonts = {}
        self.detached = {}
        count = len(self.isos)
        for k in range(1, count + 1):
            comps = self.parts.get(k, [])
            if not comps:
                sys.exit("district %s has no inside left" % self.code[k])
            self.white[k] = set(comps[0])
            for p in comps[0]:
                img[p] = I_WHITE
            # Parts cut off from the main one: tinted, and labelled where they are large.
            self.detached[k] = [len(c) for c in comps[1:]]
            for comp in comps[1:]:
                for p in comp:
                    img[p] = I_DETACHED
                placed = self.place_label(self.code[k], set(comp))
                if placed and placed[2] == 0:
                    for p in placed[0]:
                        img[p] = I_BLACK
        # The code inside its district, in the large or the small font; where neither
        # fits, beside it in a neighbour with a leader line; failing that, inside in the
        # plain small font.
        def put(k, letters, hollows):
            for p in letters:
                img[p] = I_BLACK
            for p in hollows:
                img[p] = I_HOLLOW
            self.white[k] -= letters | hollows

        for k in range(1, count + 1):
            placed = self.place_label(self.code[k], self.white[k], (0, 1))
            self.fonts[k] = None
            if placed:
                letters, hollows, self.fonts[k] = placed
                put(k, letters, hollows)
        self.beside = {}
        for k in range(1, count + 1):
            if self.fonts[k] is not None:
                continue
            placed = self.place_label_beside(k)
            if placed is not None:
                letters, hollows, leader, j = placed
                put(j, letters | set(leader), hollows)
                self.beside[k] = j
                continue
            placed = self.place_label(self.code[k], self.white[k], (2,))
            if placed:
                letters, hollows, self.fonts[k] = placed
                put(k, letters, hollows)
        self.rows = []
        self.report = []
        for k in range(1, count + 1):
            iso = self.isos[k - 1]
            code, name, gruppe = DISTRICTS[iso]
            seed = self.seed_of(self.white[k])
            self.rows.append((code, seed % WIDTH, seed // WIDTH, name, gruppe))
            font = "none" if self.fonts[k] is None else FONT_NAMES[self.fonts[k]]
            if k in self.beside:
                font += ", code beside it in " + self.code[self.beside[k]]
            self.report.append((code, name, len(self.white[k]), font, self.detached[k]))
        self.check()

    def check(self):
        """The map's promises, tested on the finished image."""
        img = list(self.img)
        seeds = {y * WIDTH + x: code for code, x, y, _, _ in self.rows}
        for code, x, y, name, gruppe in self.rows:
            seed = y * WIDTH + x
            if img[seed] != I_WHITE:
                sys.exit("seed of %s is not white" % code)
            region = [seed]
            img[seed] = -1
            i = 0
            while i < len(region):
                p = region[i]
                i += 1
                px, py = p % WIDTH, p // WIDTH
                if px in (0, WIDTH - 1) or py in (0, HEIGHT - 1):
                    sys.exit("fill of %s reaches the edge of the image" % code)
                for q in neighbours4(p):
                    if img[q] == I_WHITE:
                        img[q] = -1
                        region.append(q)
                    elif img[q] == I_OUTSIDE:
                        sys.exit("fill of %s reaches the outside" % code)
            if len(region) < 30:
                sys.exit("fill of %s covers only %d pixels" % (code, len(region)))
            others = [seeds[p] for p in region if p in seeds and seeds[p] != code]
            if others:
                sys.exit("fill of %s reaches the seed of %s" % (code, others[0]))
            k = self.number[[iso for iso in DISTRICTS if DISTRICTS[iso][0] == code][0]]
            if any(self.label[p] != k for p in region):
                sys.exit("fill of %s leaves the district" % code)
        left = sum(1 for v in img if v == I_WHITE)
        if left:
            sys.exit("%d white pixels are reached by no fill" % left)


def write_outputs(maker, out):
    lines = ["%s;%d;%d;%s;%d;\r\n" % row for row in maker.rows]
    with open(os.path.join(out, "bez_koord.txt"), "wb") as f:
        f.write("".join(lines).encode("cp1252"))
    im = Image.new("P", (WIDTH, HEIGHT))
    im.putpalette([c for rgb in PALETTE for c in rgb])
    im.putdata(maker.img)
    im.save(os.path.join(out, "BZ_Karte.gif"), format="GIF", optimize=False)


def flood4(img, seed, colour):
    old = img[seed]
    if old == colour:
        return 0
    n = 0
    stack = [seed]
    img[seed] = colour
    while stack:
        p = stack.pop()
        n += 1
        for q in neighbours4(p):
            if img[q] == old:
                img[q] = colour
                stack.append(q)
    return n


def write_previews(maker, folder):
    os.makedirs(folder, exist_ok=True)
    palette = [c for rgb in PALETTE for c in rgb]
    im = Image.new("P", (WIDTH, HEIGHT))
    im.putpalette(palette)
    im.putdata(maker.img)
    im.convert("RGB").save(os.path.join(folder, "map.png"))
    big = im.convert("RGB").resize((WIDTH * 3, HEIGHT * 3), Image.NEAREST)
    big.save(os.path.join(folder, "map_x3.png"))
    # Every district filled, one of six colours by its number.
    colours = [(255, 170, 170), (170, 220, 170), (170, 190, 255), (255, 230, 140),
               (220, 170, 240), (140, 230, 230)]
    filled = list(maker.img)
    base = len(PALETTE)
    for n, (code, x, y, name, gruppe) in enumerate(maker.rows):
        flood4(filled, y * WIDTH + x, base + n % len(colours))
    im2 = Image.new("P", (WIDTH, HEIGHT))
    im2.putpalette(palette + [c for rgb in colours for c in rgb])
    im2.putdata(filled)
    left = sum(1 for v in filled if v == I_WHITE)
    im2.convert("RGB").save(os.path.join(folder, "filled.png"))
    im2.convert("RGB").resize((WIDTH * 3, HEIGHT * 3), Image.NEAREST).save(
        os.path.join(folder, "filled_x3.png"))
    return left


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--geo", default=os.path.join(here, "..", "..", "shared", "data", "austria"),
                    help="folder with bezirke_995_geo.json and laender_995_geo.json")
    ap.add_argument("--out", default=os.path.join(here, "..", "data"), help="output folder")
    ap.add_argument("--preview", help="folder for PNG files to look at")
    ap.add_argument("--verbose", action="store_true", help="print each district's inside size")
    args = ap.parse_args()
    features, states = load_geo(args.geo)
    maker = MapMaker(features, states)
    maker.make()
    write_outputs(maker, args.out)
    for note in maker.notes:
        print(note)
    smallest = min(maker.report, key=lambda r: r[2])
    print("scale %.3f px/km; smallest inside: %s %s, %d pixels"
          % (maker.scale, smallest[0], smallest[1], smallest[2]))
    for code, name, inside, font, detached in maker.report:
        if args.verbose or font != "5x7" or detached:
            print("  %s %-34s inside %5d  font %s  detached parts %s" % (code, name, inside, font, detached))
    if args.preview:
        left = write_previews(maker, args.preview)
        print("white pixels left after filling every district: %d" % left)


if __name__ == "__main__":
    main()
