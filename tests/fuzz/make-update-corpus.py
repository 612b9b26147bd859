#!/usr/bin/env python3
"""Writes the stored inputs of the update path's fuzz targets: the hostile patch archives and
patch databases the update tests were written against, so every test run replays them.
Run from the repository root: python3 tests/fuzz/make-update-corpus.py"""
import io, os, sqlite3, stat, tempfile, zipfile

root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")
EXPECTED = "velmora-20170101-20170201.db"


def patch_db(scripts):
    with tempfile.TemporaryDirectory() as work:
        path = os.path.join(work, "p.db")
        db = sqlite3.connect(path)
        db.execute("CREATE TABLE updates(number INTEGER, patch TEXT)")
        db.executemany("INSERT INTO updates VALUES (?, ?)", list(enumerate(scripts, 1)))
        db.commit()
        db.close()
        return open(path, "rb").read()


def archive(entries):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as z:
        for name, data, mode in entries:
            info = zipfile.ZipInfo(name)
            info.create_system = 3  # Unix: the mode below is read
            info.external_attr = mode << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, data)
    return out.getvalue()


def write(target, name, data):
    os.makedirs(os.path.join(root, target), exist_ok=True)
    with open(os.path.join(root, target, name), "wb") as f:
        f.write(data)


next_version = "UPDATE extras SET val = '20170201' WHERE key = 'version_date'"
write("patch-db", "good", patch_db(["UPDATE restaurants SET name = 'Nuevo' WHERE id = 1", next_version]))
write("patch-db", "endless-view", patch_db([
    "DROP TABLE price_ranks; CREATE VIEW price_ranks AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n)"
    " SELECT x AS id, 'a' AS name, 'a' AS name_en FROM n", next_version]))
write("patch-db", "drop-places", patch_db(["DROP TABLE restaurants", next_version]))
write("patch-db", "trigger", patch_db(["CREATE TRIGGER t AFTER UPDATE ON extras BEGIN DELETE FROM restaurants; END", next_version]))
write("patch-db", "zeroblobs", patch_db([
    "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n LIMIT 100)"
    " INSERT INTO gallery (id, restaurant_id, data) SELECT 5000 + x, 1, zeroblob(10000000) FROM n", next_version]))
write("patch-db", "empty-updates", patch_db([]))
write("patch-db", "attach", patch_db(["ATTACH DATABASE '/tmp/planted.db' AS p; CREATE TABLE p.t(x)", next_version]))
write("patch-db", "not-sqlite", b"SQLite format 3\x00" + b"\xff" * 2048)

regular = stat.S_IFREG | 0o644
write("patch-archive", "good", archive([(EXPECTED, b"x" * 4096, regular)]))
write("patch-archive", "settings-store", archive([("UserDefaults.ini", b"[General]\n", regular)]))
write("patch-archive", "forced", archive([("Forced.json", b"{}", regular)]))
write("patch-archive", "traversal", archive([("../../Application Support/UserDefaults.ini", b"x", regular)]))
write("patch-archive", "symlink", archive([(EXPECTED, b"../../Application Support/UserDefaults.ini", stat.S_IFLNK | 0o777)]))
write("patch-archive", "two-entries", archive([(EXPECTED, b"a", regular), ("other.db", b"b", regular)]))
write("patch-archive", "bomb", archive([(EXPECTED, b"\x00" * (8 * 1024 * 1024), regular)]))
write("patch-archive", "garbage", b"PK\x03\x04" + b"\x13" * 600)

write("signature", "v2-patch", b"velmora-signature 2\nname: update-20170101-20170201.zip\ndate: 20170201\nfrom: 20170101\n"
      b"size: 10\nsha256: " + b"ab" * 32 + b"\nkey: " + b"A" * 43 + b"=\nsignature: " + b"A" * 86 + b"==\n")
write("signature", "out-of-order", b"velmora-signature 2\nsize: 10\nname: a\ndate: 20170201\nsha256: 00\nkey: x\nsignature: y\n")
write("signature", "negative-size", b"velmora-signature 2\nname: a\ndate: 20170201\nsize: -5\nsha256: " + b"00" * 32 + b"\nkey: x\nsignature: y\n")
write("signature", "version-1", b"velmora-signature 1\nname: a\ndate: 20170201\nsha256: " + b"00" * 32 + b"\nkey: x\nsignature: y\n")
