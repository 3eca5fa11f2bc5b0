#!/usr/bin/env python3
"""Writes a deterministic catalogue of N records, 8 columns, as a
comma-separated file with quoted fields and a TAB twin (same records).

usage: make_catalogue.py RECORDS OUT_PREFIX   ->  OUT_PREFIX.csv, OUT_PREFIX.txt
"""
import sys

WORDS = ("steel brass nylon oak beech pine zinc chrome matt gloss black white red blue green grey "
         "small large heavy light quick fine coarse long short round square flat deep wide narrow").split()
NAMES = "hammer drill screw plug level tape roller glasses gloves saw chisel file clamp wrench pliers".split()
CATEGORIES = "tools fasteners paint safety garden plumbing electrics storage".split()
BRANDS = "Stahlwerk Voltix Spax Fischer Stabila Tesa Farbefix Uvex Wurth Hafele Bosch Makita".split()


def records(count):
    state = 12345
    def rnd(n):
        nonlocal state
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        return state % n
    yield ["sku", "name", "category", "brand", "price", "stock", "description", "ean"]
    for i in range(count):
        name = f"{WORDS[rnd(len(WORDS))].capitalize()} {NAMES[rnd(len(NAMES))]} {rnd(900) + 100} mm"
        words = " ".join(WORDS[rnd(len(WORDS))] for _ in range(6 + rnd(5)))
        description = f"{words}, {WORDS[rnd(len(WORDS))]} finish"
        if rnd(10) == 0:
            description += ' "pro" series'
        yield [str(1000000 + i), name, CATEGORIES[rnd(len(CATEGORIES))], BRANDS[rnd(len(BRANDS))],
               f"{rnd(20000) / 100:.2f}", str(rnd(500)), description, f"40{rnd(10**11):011d}"]


def quoted(field):
    if "," in field or '"' in field:
        return '"' + field.replace('"', '""') + '"'
    return field


def main():
    count, prefix = int(sys.argv[1]), sys.argv[2]
    with open(prefix + ".csv", "w", encoding="utf-8", newline="") as csv_file, \
         open(prefix + ".txt", "w", encoding="utf-8", newline="") as tab_file:
        for row in records(count):
            csv_file.write(",".join(quoted(f) for f in row) + "\n")
            tab_file.write("\t".join(row) + "\n")


if __name__ == "__main__":
    main()
